// A way for applications to take part in the loading and saving of projects.
#pragma once

#include <ovCommon/Api.h>

namespace ovExport {
class Node;
}

namespace ovVeldris {

class Material;

/// Sees every material of a project that is loaded or saved, with its entry: an application derives from this
/// to keep settings of its own beside the library's.
class OV_API ResourceDeclAugmentCallback {
public:
    virtual ~ResourceDeclAugmentCallback();

    /// Does nothing unless overridden.
    /// @param material of the entry, owned by its manager
    /// @param node the entry; belongs to the loader and is not kept. Members may be read from it when
    ///        loading, and added to it when saving
    virtual void onMaterial(Material* material, ovExport::Node* node);
};

} // namespace ovVeldris

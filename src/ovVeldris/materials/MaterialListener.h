// Who is told of materials that are loaded.
#pragma once

#include <ovMemory/Borrowed.h>

namespace ovVeldris {

class Material;

/// Base of objects that know more of a material's shader than the material: whatever load() binds, they may
/// replace when it is through, whoever called it. Nobody needs to take a listener back: one that is destroyed
/// is not told any more.
class MaterialListener : public ovMemory::Borrowable {
public:
    /// Called at the end of each load() that succeeded.
    virtual void onMaterialLoaded(Material& material) = 0;

protected:
    ~MaterialListener() = default;
};

} // namespace ovVeldris

// Every setting of a material in its entry of a project.
#pragma once

#include <ovVeldris/content/ResourceDeclAugmentCallback.h>

namespace ovVeldris {

class System;

/// Adds to the entries of a project what the library's own format of materials leaves out: the model, the
/// occlusion, the switches and names of MaterialMembers.h. With it, and MaterialSettingsReader at loading, a
/// project draws as it did. docs/content.md lists the members.
class OV_API MaterialSettingsWriter : public ResourceDeclAugmentCallback {
public:
    ~MaterialSettingsWriter() override;
    void onMaterial(Material* material, ovExport::Node* node) override;
};

/// Takes over from the entries of a project what MaterialSettingsWriter adds. What is not there, or of
/// another kind, changes nothing.
class OV_API MaterialSettingsReader : public ResourceDeclAugmentCallback {
public:
    /// @param system whose textures the materials name; not owned, outlives this object
    explicit MaterialSettingsReader(System& system)
        : _system(system) {}
    ~MaterialSettingsReader() override;
    void onMaterial(Material* material, ovExport::Node* node) override;

private:
    System& _system;
};

} // namespace ovVeldris

// The base of materials.
#pragma once

#include <ovExport/Exportable.h>
#include <ovVeldris/core/settings/Configurable.h>
#include <ovVeldris/materials/MaterialTypeUtils.h>

namespace ovGraphics {
class Shader;
}

namespace ovVeldris {

/// A named object that owns the shader with which meshes are drawn.
class OV_API Material : public ovExport::Exportable, public Configurable {
public:
    /// A material without name and shader. @param settings the table of the kind, which its objects share
    explicit Material(MATERIAL_TYPE type, const SettingTable& settings = SettingTable::none());
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;
    ~Material() override;

    /// Adds the members "name" and "type", both strings, to a node.
    void exportClassToTree(ovExport::Node* node) override;
    /// Takes the name from the member "name", if that is a string; a shader that exists keeps its name. The
    /// type is not read: whoever makes the material has chosen it.
    void importClassFromTree(ovExport::Node* node) override;

    /// Builds the shader with the present settings. @return false after one log line when that fails
    virtual bool load() = 0;
    /// Frees what load() made on the device.
    virtual void unload() = 0;

    ovMemory::StringView getName() const { return _name; }
    /// Names the material, and its shader when it has one. The name under which a manager knows the material
    /// is changed by the manager's rename().
    void setName(ovMemory::StringView name);

    MATERIAL_TYPE getType() const { return _type; }
    /// Null until the material is loaded; owned by the material.
    ovGraphics::Shader* getShader() const { return _shader.get(); }

protected:
    /// Takes the shader over and gives it the material's name.
    void _setShader(ovMemory::UniquePtr<ovGraphics::Shader> shader);

private:
    ovMemory::String _name;
    ovMemory::UniquePtr<ovGraphics::Shader> _shader;
    MATERIAL_TYPE _type;
};

} // namespace ovVeldris

// The base of materials.
#pragma once

#include <ovVeldris/materials/MaterialTypeUtils.h>

namespace ovGraphics {
class Shader;
}

namespace ovVeldris {

/// A named object that owns the shader with which meshes are drawn.
class OV_API Material {
public:
    /// A material without name and shader.
    explicit Material(MATERIAL_TYPE type);
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;
    virtual ~Material();

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

#include <ovVeldris/materials/Material.h>

#include <ovGraphics/resources/Shader.h>

namespace ovVeldris {

Material::Material(MATERIAL_TYPE type)
    : _type(type) {}

Material::~Material() = default;

void Material::setName(ovMemory::StringView name) {
    _name = name;
    if (_shader)
        _shader->setName(_name);
}

void Material::_setShader(ovMemory::UniquePtr<ovGraphics::Shader> shader) {
    _shader = std::move(shader);
    if (_shader)
        _shader->setName(_name);
}

} // namespace ovVeldris

#include <ovVeldris/materials/Material.h>

#include <ovExport/Node.h>
#include <ovGraphics/resources/Shader.h>

namespace ovVeldris {

Material::Material(MATERIAL_TYPE type, const SettingTable& settings)
    : Configurable(settings)
    , _type(type) {}

Material::~Material() = default;

void Material::exportClassToTree(ovExport::Node* node) {
    node->addMember("name")->setAsString(_name);
    node->addMember("type")->setAsString(MaterialTypeUtils::enumToString(_type));
}

void Material::importClassFromTree(ovExport::Node* node) {
    const ovExport::Node* const name = node->getMemberValue("name");
    if (name && name->isString())
        _name = name->getValueAsStringView();
}

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

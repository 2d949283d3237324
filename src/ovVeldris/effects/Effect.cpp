#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/Effect.h>

namespace ovVeldris {

Effect::Effect(EFFECT_TYPE type, const SettingTable& settings)
    : Configurable(settings)
    , _type(type) {}

Effect::~Effect() = default;

void Effect::setName(ovMemory::StringView name) {
    _name = name;
    if (_shader)
        _shader->setName(_name);
}

void Effect::_setShader(ovMemory::UniquePtr<ovGraphics::Shader> shader) {
    _shader = std::move(shader);
    _shader->setName(_name);
}

} // namespace ovVeldris

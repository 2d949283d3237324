#include <ovGraphics/compositor/Compositor.h>
#include <ovVeldris/complexEffects/ComplexEffect.h>

namespace ovVeldris {

ComplexEffect::ComplexEffect(COMPLEX_EFFECT_TYPE type, const SettingTable& settings)
    : Configurable(settings)
    , _type(type) {}

ComplexEffect::ComplexEffect(const ComplexEffect& other) = default;
ComplexEffect& ComplexEffect::operator=(const ComplexEffect& other) = default;
ComplexEffect::~ComplexEffect() = default;

void ComplexEffect::setCompositorNode(ovGraphics::CompositorNode* node) {
    _compositorNode = node;
}

ovGraphics::CompositorNode* ComplexEffect::_getCompositorNode() const {
    return _compositorNode.get();
}

} // namespace ovVeldris

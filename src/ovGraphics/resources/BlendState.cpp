#include <ovGraphics/resources/BlendState.h>

namespace ovGraphics {

namespace {

/// Sets one field of one target; an index out of range is ignored.
template <typename Field, typename Value>
void setField(device::BlendStateDesc& desc, unsigned int target, Field device::TargetBlendDesc::*field,
              Value value) {
    if (target < desc.targets.size())
        desc.targets[target].*field = value;
}

} // namespace

void BlendState::setBlendEnabled(bool enabled, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::enabled, enabled);
}

void BlendState::setOperation(BLEND_OPERATION operation, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::operation, operation);
}

void BlendState::setAlphaOperation(BLEND_OPERATION operation, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::alphaOperation, operation);
}

void BlendState::setDestinationFactor(BLEND factor, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::destinationFactor, factor);
}

void BlendState::setAlphaDestinationFactor(BLEND factor, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::alphaDestinationFactor, factor);
}

void BlendState::setSourceFactor(BLEND factor, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::sourceFactor, factor);
}

void BlendState::setAlphaSourceFactor(BLEND factor, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::alphaSourceFactor, factor);
}

void BlendState::setWriteMask(unsigned int mask, unsigned int target) {
    setField(_desc, target, &device::TargetBlendDesc::writeMask, mask);
}

void BlendState::setBlendFactor(float red, float green, float blue, float alpha) {
    _desc.blendFactor = {red, green, blue, alpha};
}

} // namespace ovGraphics

#include <ovVeldris/complexEffects/ComplexEffectKind.h>

#include <ovVeldris/complexEffects/BlurComplexEffect.h>
#include <ovVeldris/complexEffects/DofComplexEffect.h>

namespace ovVeldris {

namespace {

template <typename T>
ComplexEffectKind row(COMPLEX_EFFECT_TYPE type, ovMemory::StringView summary) {
    const auto create = [](System* system) -> ovMemory::UniquePtr<ComplexEffect> {
        return T::create(system);
    };
    const auto getOutput = [](const ComplexEffect& effect) {
        return static_cast<const T&>(effect).getOutputTexture();
    };
    return {type, summary, create, &T::settings, getOutput};
}

} // namespace

const ovMemory::Buffer<ComplexEffectKind>& complexEffectKinds() {
    static const ovMemory::Buffer<ComplexEffectKind> KINDS = {
        row<BlurComplexEffect>(COMPLEX_EFFECT_TYPE::BLUR, "blurs the picture"),
        row<DofComplexEffect>(COMPLEX_EFFECT_TYPE::DOF, "blurs what is out of focus"),
    };
    return KINDS;
}

ovMemory::String ComplexEffectKind::getName() const {
    return toSettingText(ovMemory::enumToText(type));
}

const ComplexEffectKind* findComplexEffectKind(COMPLEX_EFFECT_TYPE type) {
    for (const ComplexEffectKind& kind : complexEffectKinds())
        if (kind.type == type)
            return &kind;
    return nullptr;
}

} // namespace ovVeldris

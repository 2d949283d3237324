#include <ovVeldris/effects/atmosphere/AtmosphereInfo.h>

#include <bit>
#include <ovMemory/NameMap.h>

namespace ovVeldris {

namespace {

uint64_t hashOf(std::initializer_list<uint32_t> values) {
    return ovMemory::hashFnv1a64(
        {reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(uint32_t)});
}

} // namespace

uint64_t AtmosphereIdGenerator::operator()(const AtmosphereEffectInfo& info) const {
    const ShadowMapParameters shadow = info.usesShadows() ? info.shadow : ShadowMapParameters();
    return hashOf({info.hasSourceColor, info.hasSourceDepth, info.hasShadowTexture, info.usesShadows(),
                   static_cast<uint32_t>(shadow.pcfMethod), shadow.debugOutOfBounds,
                   std::bit_cast<uint32_t>(shadow.bias), info.raymarchSampleCount, info.onlyScatterOnObjects,
                   info.displaySun, info.debugNumericalInstability});
}

uint64_t AtmosphereLutIdGenerator::operator()(const AtmosphereEffectInfo& info) const {
    return hashOf({info.sunLutSampleCount, info.multiScatteringLutSphereSampleCount,
                   info.multiScatteringLutMarchSampleCount});
}

} // namespace ovVeldris

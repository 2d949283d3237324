#include <ovVeldris/materials/PbsProgramTracker.h>

#include <bit>
#include <ovVeldris/materials/PbsPropertiesInternal.h>

namespace ovVeldris {

namespace {

using Parameters = PbsMaterialParameters;

constexpr unsigned int PREFILTERED_BIT = 11;
constexpr unsigned int RECONSTRUCT_BINORMALS_BIT = 12;
constexpr unsigned int FIRST_CHANNELS_BIT = 13;
constexpr unsigned int CHANNELS_BITS = 3;
constexpr unsigned int FIRST_CHANNEL_BIT = 31;
constexpr unsigned int CHANNEL_BITS = 2;
constexpr unsigned int GLOSSINESS_BIT = 38; // the upper bit of the occlusion channel, too
constexpr unsigned int FIRST_HASH_BIT = 39;

// From bit 0 on.
constexpr std::array TEXTURES = {
    &Parameters::albedoTexture,
    &Parameters::specularTexture,
    &Parameters::emissiveTexture,
    &Parameters::environmentTexture,
    &Parameters::irradianceTexture,
    &Parameters::metalnessTexture,
    &Parameters::roughnessGlossinessTexture,
    &Parameters::alphaTexture,
    &Parameters::occlusionTexture,
    &Parameters::normalMapTexture,
    &Parameters::shadowMapTexture,
};
constexpr std::array CHANNELS = {
    &Parameters::albedoTextureChannels,     &Parameters::specularTextureChannels,
    &Parameters::emissiveTextureChannels,   &Parameters::environmentTextureChannels,
    &Parameters::irradianceTextureChannels, &Parameters::normalMapTextureChannels,
};
constexpr std::array SINGLE_CHANNELS = {
    &Parameters::metalnessTextureChannel,
    &Parameters::roughnessGlossinessTextureChannel,
    &Parameters::alphaTextureChannel,
    &Parameters::occlusionTextureChannel,
};
constexpr std::array PCF_METHODS = {SHADOW_MAP_PCF::PCF_4_TAP, SHADOW_MAP_PCF::PCF_9_TAP,
                                    SHADOW_MAP_PCF::PCF_16_TAP};

// The orders that have a code: its index here plus one. All others have 0 and share their programs with RGB.
constexpr std::array CODED_CHANNELS = {THREE_CHANNEL_PACK::BGA, THREE_CHANNEL_PACK::BGR,
                                       THREE_CHANNEL_PACK::BRA, THREE_CHANNEL_PACK::GBA,
                                       THREE_CHANNEL_PACK::RBA, THREE_CHANNEL_PACK::RGA};
constexpr std::array CODED_SINGLE_CHANNELS = {ONE_CHANNEL_PACK::R, ONE_CHANNEL_PACK::G, ONE_CHANNEL_PACK::B};

template <typename Pack, std::size_t COUNT>
uint64_t codeOf(const std::array<Pack, COUNT>& coded, Pack pack) {
    for (std::size_t i = 0; i < COUNT; ++i)
        if (coded[i] == pack)
            return i + 1;
    return 0;
}

uint64_t featuresOf(const Parameters& parameters) {
    uint64_t features = 0;
    for (std::size_t i = 0; i < TEXTURES.size(); ++i)
        features |= uint64_t((parameters.*TEXTURES[i]).isNamed()) << i;
    features |= uint64_t(parameters.environmentPrefiltered) << PREFILTERED_BIT;
    features |= uint64_t(parameters.reconstructBinormals) << RECONSTRUCT_BINORMALS_BIT;
    for (std::size_t i = 0; i < CHANNELS.size(); ++i)
        features |= codeOf(CODED_CHANNELS, parameters.*CHANNELS[i])
                    << (FIRST_CHANNELS_BIT + CHANNELS_BITS * i);
    for (std::size_t i = 0; i < SINGLE_CHANNELS.size(); ++i)
        features |= codeOf(CODED_SINGLE_CHANNELS, parameters.*SINGLE_CHANNELS[i])
                    << (FIRST_CHANNEL_BIT + CHANNEL_BITS * i);
    features |= uint64_t(parameters.pbsModel == PBS_MODEL::SPECULAR_GLOSSINESS) << GLOSSINESS_BIT;
    return features;
}

uint64_t switchesOf(const Parameters& parameters) {
    uint64_t switches = 0;
    std::size_t bit = 0;
    for (const PbsSwitch& entry : PBS_SWITCHES)
        switches |= uint64_t(parameters.*entry.field) << bit++;
    switches |= uint64_t(parameters.shadowMapParameters.debugOutOfBounds) << bit++;
    for (const SHADOW_MAP_PCF method : PCF_METHODS)
        switches |= uint64_t(parameters.shadowMapParameters.pcfMethod == method) << bit++;
    return switches;
}

// Equal numbers hash equally, 0 and -0 too.
uint64_t hashOf(float number) {
    const auto bytes = std::bit_cast<std::array<char, sizeof(float)>>(number == 0.0f ? 0.0f : number);
    return ovMemory::hashFnv1a64({bytes.data(), bytes.size()});
}

uint64_t combine(uint64_t hash, uint64_t other) {
    return hash ^ (other + 0x9e3779b9u + (hash << 6) + (hash >> 2));
}

uint64_t hashOf(const Parameters& parameters) {
    const uint64_t switches = switchesOf(parameters);
    uint64_t hash = ((switches & 0xff) ^ 0xcbf29ce484222325u) * 0x100000001b3u;
    hash = (hash ^ (switches >> 8)) * 0xc5527b8a51d3d2dbu;
    hash = combine(hash, hashOf(parameters.shadowMapParameters.bias));
    for (const PbsAttribute& attribute : PBS_ATTRIBUTES)
        hash = combine(hash, ovMemory::hashFnv1a64(parameters.*attribute.name));
    return hash;
}

} // namespace

uint64_t PbsIdGenerator::operator()(const PbsMaterialParameters& parameters) const {
    const uint64_t hash = hashOf(parameters);
    return (((hash >> 32) + hash) << FIRST_HASH_BIT) | featuresOf(parameters);
}

} // namespace ovVeldris

#include <ovVeldris/materials/PbsProgramTracker.h>

#include <array>
#include <bit>

namespace ovVeldris {

namespace {

// The other bits are in the rows of the table.
// Programs are named by their key, and names are part of the interface: no number in this file may change,
// not even where bits overlap.
constexpr unsigned int GLOSSINESS_BIT = 38; // the upper bit of the occlusion channel, too
constexpr unsigned int FIRST_HASH_BIT = 39;
constexpr unsigned int DEBUG_OUT_OF_BOUNDS_BIT = 8;
constexpr unsigned int FIRST_PCF_METHOD_BIT = 9;

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

uint64_t codeOfChannels(const PbsTextureRow& row, const PbsSettings& settings) {
    return row.vectorChannels ? codeOf(CODED_CHANNELS, settings.*row.vectorChannels)
                              : codeOf(CODED_SINGLE_CHANNELS, settings.*row.numberChannel);
}

uint64_t featuresOf(const PbsSettings& settings) {
    uint64_t features = 0;
    for (const PbsProperty& property : pbsProperties()) {
        const PbsTextureRow& row = property.texture;
        if (row)
            features |= uint64_t(row.isIn(settings)) << row.keyBit;
        if (row && row.channelsBit != PBS_NONE)
            features |= codeOfChannels(row, settings) << row.channelsBit;
    }
    forEachPbsSwitch([&](const PbsSwitch& row) {
        if (row.keyBit != PBS_NONE)
            features |= uint64_t(settings.*row.field) << row.keyBit;
    });
    features |= uint64_t(settings.pbsModel == PBS_MODEL::SPECULAR_GLOSSINESS) << GLOSSINESS_BIT;
    return features;
}

uint64_t switchesOf(const PbsSettings& settings) {
    uint64_t switches = 0;
    forEachPbsSwitch([&](const PbsSwitch& row) {
        if (row.hashedKeyBit != PBS_NONE)
            switches |= uint64_t(settings.*row.field) << row.hashedKeyBit;
    });
    const ShadowMapParameters& shadows = settings.shadowMapParameters;
    switches |= uint64_t(shadows.debugOutOfBounds) << DEBUG_OUT_OF_BOUNDS_BIT;
    for (std::size_t i = 0; i < PCF_METHODS.size(); ++i)
        switches |= uint64_t(shadows.pcfMethod == PCF_METHODS[i]) << (FIRST_PCF_METHOD_BIT + i);
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

uint64_t hashOf(const PbsSettings& settings) {
    const uint64_t switches = switchesOf(settings);
    uint64_t hash = ((switches & 0xff) ^ 0xcbf29ce484222325u) * 0x100000001b3u;
    hash = (hash ^ (switches >> 8)) * 0xc5527b8a51d3d2dbu;
    hash = combine(hash, hashOf(settings.shadowMapParameters.bias));
    for (const PbsAttribute& attribute : pbsAttributes())
        hash = combine(hash, ovMemory::hashFnv1a64(settings.*attribute.field));
    return hash;
}

} // namespace

uint64_t PbsIdGenerator::operator()(const PbsMaterialParameters& parameters) const {
    const uint64_t hash = hashOf(parameters);
    // The upper half is folded in first, because the shift leaves only the lowest bits of the sum.
    return (((hash >> 32) + hash) << FIRST_HASH_BIT) | featuresOf(parameters);
}

} // namespace ovVeldris

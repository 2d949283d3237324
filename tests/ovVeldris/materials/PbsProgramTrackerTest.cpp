#include <ovVeldris/materials/PbsProgramTracker.h>

#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/System.h>

using namespace ovVeldris;

namespace {

using Parameters = PbsMaterialParameters;

uint64_t keyOf(const Parameters& parameters) {
    return PbsIdGenerator()(parameters);
}

constexpr uint64_t FEATURES = (uint64_t(1) << 39) - 1;

uint64_t featuresOf(const Parameters& parameters) {
    return keyOf(parameters) & FEATURES;
}

/// Bits of the materials that have the defaults: reconstructed binormals, and the code of R four times.
constexpr uint64_t DEFAULT_FEATURES =
    uint64_t(1) << 12 | uint64_t(1) << 31 | uint64_t(1) << 33 | uint64_t(1) << 35 | uint64_t(1) << 37;

/// The hash, from its description: the switches as a number, how many bits the bias has, and five names.
uint64_t describeHash(uint64_t switches, float bias, const std::array<ovMemory::String, 5>& names) {
    const auto fnv = [](const ovMemory::String& bytes) {
        uint64_t hash = 14695981039346656037ull;
        for (const char byte : bytes)
            hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211ull;
        return hash;
    };
    ovMemory::Buffer<uint64_t> parts;
    const auto bits = std::bit_cast<uint32_t>(bias);
    ovMemory::String biasBytes;
    for (int byte = 0; byte < 4; ++byte) // little-endian
        biasBytes += static_cast<char>(bits >> (8 * byte) & 0xff);
    parts.push_back(fnv(biasBytes));
    for (const ovMemory::String& name : names)
        parts.push_back(fnv(name));
    uint64_t hash = (switches & 255) ^ 14695981039346656037ull;
    hash *= 1099511628211ull;
    hash ^= switches >> 8;
    hash *= 0xc5527b8a51d3d2dbull;
    for (const uint64_t part : parts)
        hash = hash ^ (part + 2654435769ull + hash * 64 + hash / 4);
    return (hash / 4294967296ull + hash) << 39;
}

const std::array<ovMemory::String, 5> DEFAULT_NAMES = {"POSITION", "TEXCOORD", "NORMAL", "TANGENT",
                                                       "BINORMAL"};

class PbsProgramTrackerTest : public testing::Test {
protected:
    ovGraphics::System graphics;
    ovMemory::UniquePtr<ovGraphics::Texture> texture = ovGraphics::Texture::create(&graphics);
    Parameters parameters;
};

} // namespace

TEST_F(PbsProgramTrackerTest, TheDefaultKeyIsItsFeaturesAndItsHash) {
    EXPECT_EQ(featuresOf(parameters), DEFAULT_FEATURES);
    // The kernel of nine taps is bit 10 of the switches.
    EXPECT_EQ(keyOf(parameters), DEFAULT_FEATURES | describeHash(1 << 10, -1.0f, DEFAULT_NAMES));
    EXPECT_EQ(keyOf(parameters), keyOf(Parameters()));
}

TEST_F(PbsProgramTrackerTest, EachTextureHasItsBit) {
    PbsTexture Parameters::*const bits[] = {
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
    for (unsigned int bit = 0; bit < std::size(bits); ++bit) {
        Parameters with;
        with.*bits[bit] = texture.get();
        EXPECT_EQ(keyOf(with), keyOf(parameters) | uint64_t(1) << bit) << bit;
    }
}

TEST_F(PbsProgramTrackerTest, DestroyedTexturesStayNamed) {
    parameters.albedoTexture = texture.get();
    const uint64_t key = keyOf(parameters);
    texture.reset();
    EXPECT_EQ(parameters.albedoTexture.get(), nullptr);
    EXPECT_EQ(keyOf(parameters), key);
    parameters.albedoTexture.forgetIfDestroyed();
    EXPECT_EQ(keyOf(parameters), keyOf(Parameters()));
}

TEST_F(PbsProgramTrackerTest, SwitchesAmongTheFeatures) {
    parameters.environmentPrefiltered = true;
    EXPECT_EQ(featuresOf(parameters), DEFAULT_FEATURES | 1 << 11);
    parameters.reconstructBinormals = false;
    EXPECT_EQ(featuresOf(parameters), (DEFAULT_FEATURES ^ 1 << 12) | 1 << 11);
}

TEST_F(PbsProgramTrackerTest, SixOrdersOfChannelsHaveCodes) {
    THREE_CHANNEL_PACK Parameters::*const fields[] = {
        &Parameters::albedoTextureChannels,     &Parameters::specularTextureChannels,
        &Parameters::emissiveTextureChannels,   &Parameters::environmentTextureChannels,
        &Parameters::irradianceTextureChannels, &Parameters::normalMapTextureChannels,
    };
    for (unsigned int field = 0; field < std::size(fields); ++field)
        for (uint32_t number = 0; number < 26; ++number) { // 24 and 25 are no orders
            const auto pack = static_cast<THREE_CHANNEL_PACK>(number);
            const ovMemory::StringView text = ThreeChannelPackUtils::enumToStringLower(pack);
            uint64_t code = 0;
            const std::pair<ovMemory::StringView, uint64_t> codes[] = {{"rga", 6}, {"rba", 5}, {"gba", 4},
                                                                       {"bra", 3}, {"bgr", 2}, {"bga", 1}};
            for (const auto& [coded, itsCode] : codes)
                if (text == coded)
                    code = itsCode;
            Parameters changed;
            changed.*fields[field] = pack;
            EXPECT_EQ(keyOf(changed), keyOf(parameters) | code << (13 + 3 * field)) << text;
        }
}

TEST_F(PbsProgramTrackerTest, ThreeChannelsHaveCodes) {
    ONE_CHANNEL_PACK Parameters::*const fields[] = {
        &Parameters::metalnessTextureChannel, &Parameters::roughnessGlossinessTextureChannel,
        &Parameters::alphaTextureChannel, &Parameters::occlusionTextureChannel};
    const uint64_t codes[] = {1, 2, 3, 0, 0}; // R, G, B, A, and a number without a channel
    for (unsigned int field = 0; field < std::size(fields); ++field)
        for (uint32_t number = 0; number < std::size(codes); ++number) {
            Parameters changed;
            changed.*fields[field] = static_cast<ONE_CHANNEL_PACK>(number);
            const unsigned int bit = 31 + 2 * field;
            EXPECT_EQ(featuresOf(changed), (DEFAULT_FEATURES & ~(uint64_t(3) << bit)) | codes[number] << bit)
                << field << " " << number;
        }
}

TEST_F(PbsProgramTrackerTest, GlossinessSharesABitWithTheOcclusionChannel) {
    parameters.pbsModel = PBS_MODEL::SPECULAR_GLOSSINESS;
    EXPECT_EQ(featuresOf(parameters), DEFAULT_FEATURES | uint64_t(1) << 38);
    Parameters third;
    third.occlusionTextureChannel = ONE_CHANNEL_PACK::B; // code 3: both bits
    EXPECT_EQ(keyOf(parameters), keyOf(third));
    parameters.pbsModel = static_cast<PBS_MODEL>(2);
    EXPECT_EQ(keyOf(parameters), keyOf(Parameters()));
}

TEST_F(PbsProgramTrackerTest, TheRestIsHashed) {
    constexpr uint64_t NINE_TAPS = 1 << 10;
    bool Parameters::*const switches[] = {
        &Parameters::mixAlbedoColorAndTexture,
        &Parameters::mixSpecularColorAndTexture,
        &Parameters::mixEmissiveColorAndTexture,
        &Parameters::mixMetalnessFactorAndTexture,
        &Parameters::mixRoughnessGlossinessFactorAndTexture,
        &Parameters::mixEnvironmentColorAndTexture,
        &Parameters::mixAlphaFactorAndTexture,
        &Parameters::combineLightAndEnvironment,
    };
    for (unsigned int bit = 0; bit < std::size(switches); ++bit) {
        Parameters changed;
        changed.*switches[bit] = true;
        EXPECT_EQ(keyOf(changed), DEFAULT_FEATURES | describeHash(NINE_TAPS | 1 << bit, -1.0f, DEFAULT_NAMES))
            << bit;
    }
    Parameters debug;
    debug.shadowMapParameters.debugOutOfBounds = true;
    EXPECT_EQ(keyOf(debug), DEFAULT_FEATURES | describeHash(NINE_TAPS | 1 << 8, -1.0f, DEFAULT_NAMES));
    const uint64_t kernels[] = {0, 1 << 9, 1 << 10, 1 << 11, 0}; // the last is no kernel
    for (uint32_t method = 0; method < std::size(kernels); ++method) {
        Parameters changed;
        changed.shadowMapParameters.pcfMethod = static_cast<SHADOW_MAP_PCF>(method);
        EXPECT_EQ(keyOf(changed), DEFAULT_FEATURES | describeHash(kernels[method], -1.0f, DEFAULT_NAMES));
    }
    for (const float bias : {0.0f, 0.25f, 1e-7f, std::numeric_limits<float>::infinity()}) {
        Parameters changed;
        changed.shadowMapParameters.bias = bias;
        EXPECT_EQ(keyOf(changed), DEFAULT_FEATURES | describeHash(NINE_TAPS, bias, DEFAULT_NAMES)) << bias;
    }
    Parameters negativeZero;
    negativeZero.shadowMapParameters.bias = -0.0f;
    EXPECT_EQ(keyOf(negativeZero), DEFAULT_FEATURES | describeHash(NINE_TAPS, 0.0f, DEFAULT_NAMES));
}

TEST_F(PbsProgramTrackerTest, NamesAreHashedInTheirOrder) {
    ovMemory::String Parameters::*const fields[] = {
        &Parameters::positionAttributeName, &Parameters::texCoordAttributeName,
        &Parameters::normalAttributeName, &Parameters::tangentAttributeName,
        &Parameters::binormalAttributeName};
    for (std::size_t i = 0; i < std::size(fields); ++i)
        for (const char* const name : {"", "UV", "a longer name \xe2\x82\xac"}) {
            Parameters changed;
            changed.*fields[i] = name;
            std::array<ovMemory::String, 5> names = DEFAULT_NAMES;
            names[i] = name;
            EXPECT_EQ(keyOf(changed), DEFAULT_FEATURES | describeHash(1 << 10, -1.0f, names)) << i << name;
        }
}

TEST_F(PbsProgramTrackerTest, NumbersAndKindsOfMapsTakeNoPart) {
    parameters.lightDirection = parameters.albedoColor = {7.0f, 8.0f, 9.0f};
    parameters.metalness = parameters.roughnessGlossiness = parameters.alpha = 0.1f;
    parameters.alphaCutoff = 0.7f;
    parameters.environmentTextureIsCubeByDefault = parameters.irradianceTextureIsCubeByDefault = false;
    parameters.units[2] = 3;
    parameters.packedTextures[0] = texture.get();
    parameters.constants[2] = {9, 10};
    EXPECT_EQ(keyOf(parameters), keyOf(Parameters()));
}

TEST_F(PbsProgramTrackerTest, NamesProgramsByTheirKeys) {
    PbsProgramTracker tracker(&graphics);
    const ovMemory::Borrowed<ovGraphics::Program> program = tracker.getProgram(parameters);
    EXPECT_EQ(program->getName(), "ORVANE_PBS_PROGRAM_" + std::to_string(keyOf(parameters)));
    EXPECT_TRUE(program->isUnloaded());
    parameters.albedoTextureChannels = THREE_CHANNEL_PACK::GRB; // without a code
    EXPECT_EQ(tracker.getProgram(parameters), program.get());
    tracker.releaseProgram(parameters);
    EXPECT_NE(program.get(), nullptr);
    tracker.releaseProgram(parameters);
    EXPECT_EQ(program.get(), nullptr);
}

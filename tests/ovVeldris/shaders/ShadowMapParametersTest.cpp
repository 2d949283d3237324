#include <ovVeldris/shaders/ShadowMapParameters.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/resources/ProgramSourcesHolder.h>

using namespace ovVeldris;
using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;

namespace {

Defines definesOf(const ShadowMapParameters& parameters) {
    ovGraphics::ProgramSourcesHolder sources;
    addShadowMapDefines(sources, parameters);
    EXPECT_TRUE(sources.getVertex().defines.empty());
    return sources.getPixel().defines;
}

} // namespace

TEST(ShadowMapParametersTest, DefaultsToNineTaps) {
    const ShadowMapParameters parameters;
    EXPECT_EQ(parameters.pcfMethod, SHADOW_MAP_PCF::PCF_9_TAP);
    EXPECT_EQ(parameters.bias, -1.0f);
    EXPECT_FALSE(parameters.debugOutOfBounds);
    EXPECT_EQ(definesOf(parameters), Defines({{"OV_SHADOW_MAP_METHOD_PCF_9_TAP", ""}}));
}

TEST(ShadowMapParametersTest, KernelsHaveDefines) {
    const std::pair<uint32_t, Defines> cases[] = {{0, {}},
                                                  {1, {{"OV_SHADOW_MAP_METHOD_PCF_4_TAP", ""}}},
                                                  {2, {{"OV_SHADOW_MAP_METHOD_PCF_9_TAP", ""}}},
                                                  {3, {{"OV_SHADOW_MAP_METHOD_PCF_16_TAP", ""}}},
                                                  {4, {}}};
    for (const auto& [number, defines] : cases)
        EXPECT_EQ(definesOf({static_cast<SHADOW_MAP_PCF>(number)}), defines) << number;
}

TEST(ShadowMapParametersTest, BiasesFromZeroOnAreWrittenExactly) {
    constexpr float LARGEST = std::numeric_limits<float>::max();
    const std::pair<float, float> cases[] = {
        {0.0f, 0.0f},
        {0.25f, 0.25f},
        {1.0f, 1.0f},
        {1e-7f, 1e-7f},
        {0.1f, 0.1f},
        {std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::denorm_min()},
        {LARGEST, LARGEST},
        {std::numeric_limits<float>::infinity(), LARGEST}, // literals have no infinity
    };
    for (const auto& [bias, written] : cases) {
        const Defines defines = definesOf({SHADOW_MAP_PCF::NONE, bias, false});
        ASSERT_EQ(defines.size(), 1u) << bias;
        EXPECT_EQ(defines[0].name, "OV_SHADOW_MAP_METHOD_BIAS");
        EXPECT_EQ(std::strtof(defines[0].value.c_str(), nullptr), written) << defines[0].value;
        EXPECT_EQ(defines[0].value.find_first_not_of("0123456789."), ovMemory::String::npos);
        EXPECT_NE(defines[0].value.find('.'), ovMemory::String::npos) << "no whole number";
    }
    EXPECT_EQ(definesOf({SHADOW_MAP_PCF::NONE, 0.0f, true}),
              Defines({{"OV_SHADOW_MAP_METHOD_BIAS", "0.0"}, {"OV_SHADOW_MAP_METHOD_DEBUG_OOB", ""}}));
}

TEST(ShadowMapParametersTest, NegativeBiasesKeepTheShadersOwn) {
    for (const float bias :
         {-1.0f, -1e-30f, -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(definesOf({SHADOW_MAP_PCF::NONE, bias, false}), Defines()) << bias;
}

TEST(ShadowMapParametersTest, SixDecimalsNameEveryKernel) {
    ovGraphics::ProgramSourcesHolder sources;
    addShadowMapDefines(sources, {SHADOW_MAP_PCF::NONE, 0.00015f, true}, SHADOW_MAP_DEFINES::SIX_DECIMALS);
    addShadowMapDefines(sources, {SHADOW_MAP_PCF::PCF_4_TAP, -1.0f, false}, SHADOW_MAP_DEFINES::SIX_DECIMALS);
    EXPECT_EQ(sources.getPixel().defines, Defines({{"OV_SHADOW_MAP_METHOD_PCF_NONE", ""},
                                                   {"OV_SHADOW_MAP_METHOD_BIAS", "0.000150"},
                                                   {"OV_SHADOW_MAP_METHOD_DEBUG_OOB", ""},
                                                   {"OV_SHADOW_MAP_METHOD_PCF_4_TAP", ""}}));
}

#include <ovVeldris/environment/EnvironmentFixture.h>
#include <ovVeldris/environment/irradiance/IrradianceReference.h>
#include <ovVeldris/environment/irradiance/TextureIrradiance.h>

using namespace ovVeldris;
using namespace environmentReference;
using ovGraphics::FORMAT;

namespace {

class TextureIrradianceTest : public EnvironmentFixture {};

FloatPixel light(const Direction& d) {
    return {float(1.0 + d[0]), float(2.0 + d[1] * d[2]), float(1.5 - d[2]), 0.25f};
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, TextureIrradianceTest, bothLanguages(), languageName);

TEST_P(TextureIrradianceTest, readsTheTexelsOfTheFirstMip) {
    for (const Environment& environment : {makeMap(16, 8, light), makeCube(8, light)}) {
        const auto texture = makeEnvironment(environment);
        const IrradianceMapLayout layout = irradianceLayoutOf(*texture);
        EXPECT_EQ(layout.isCube, environment.cube);
        EXPECT_EQ(layout.format, FORMAT::R32G32B32A32_FLOAT);
        EXPECT_EQ(layout.width, texture->getWidth());
        EXPECT_EQ(layout.height, texture->getHeight());
        EXPECT_EQ(layout.slices, environment.cube ? 6u : 1u);
        const IrradianceCoefficients expected =
            irradianceReference::project(layout, [&](unsigned int slice, unsigned int i, unsigned int j) {
                const FloatPixel& pixel = environment.mips[0][slice].at(i, j);
                return std::array<double, 3>{double(pixel[0]), double(pixel[1]), double(pixel[2])};
            });
        IrradianceCoefficients coefficients;
        coefficients.values[3][1] = 100.0; // what was there before does not matter
        ASSERT_EQ(computeIrradianceCoefficients(*texture, coefficients), IRRADIANCE_FAILURE::NONE);
        for (std::size_t k = 0; k < coefficients.values.size(); ++k)
            for (std::size_t channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(coefficients.values[k][channel], expected.values[k][channel], 1e-13);
    }
}

TEST_P(TextureIrradianceTest, knowsWhatTheDeviceHolds) {
    const auto texture = makeEnvironment(makeMap(16, 8, light));
    IrradianceCoefficients before;
    ASSERT_EQ(computeIrradianceCoefficients(*texture, before), IRRADIANCE_FAILURE::NONE);
    texture->setWidth(4);
    texture->setFormat(FORMAT::R8G8B8A8_UNORM);
    EXPECT_EQ(irradianceLayoutOf(*texture).width, 16u);
    EXPECT_EQ(irradianceLayoutOf(*texture).format, FORMAT::R32G32B32A32_FLOAT);
    IrradianceCoefficients after;
    ASSERT_EQ(computeIrradianceCoefficients(*texture, after), IRRADIANCE_FAILURE::NONE);
    EXPECT_EQ(after.values, before.values);
}

TEST_P(TextureIrradianceTest, tellsWhatCannotBeRead) {
    IrradianceCoefficients coefficients;
    coefficients.values[0][0] = 5.0;
    const auto unloaded = ovGraphics::Texture::create(&getGraphics());
    EXPECT_EQ(irradianceLayoutOf(*unloaded).slices, 0u);
    EXPECT_EQ(computeIrradianceCoefficients(*unloaded, coefficients), IRRADIANCE_FAILURE::UNLOADED);
    const auto compressed = ovGraphics::Texture::create(&getGraphics());
    compressed->setFormat(FORMAT::BC1_UNORM);
    ASSERT_TRUE(compressed->load()) << getGraphicsLogger().getText();
    EXPECT_EQ(computeIrradianceCoefficients(*compressed, coefficients), IRRADIANCE_FAILURE::COMPRESSED);
    EXPECT_EQ(coefficients.values[0][0], 5.0);
}

#include <veldris/scene/EnvironmentLight.h>

#include "support/LightTruth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Panorama.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <support/Numbers.h>
#include <veldris/SessionTesting.h>
#include <veldris/bake/CubeBaking.h>

namespace {

ovImages::Image panoramaOf(float value) {
    ovImages::Image image(32, 16, 3, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 16; ++y)
        for (unsigned int x = 0; x < 32; ++x)
            for (unsigned int channel = 0; channel < 3; ++channel)
                image.setComponent(x, y, channel, value * static_cast<float>(channel + 1));
    return image;
}

TEST(EnvironmentLightTest, replacesWhatWouldSpoilTheFiltering) {
    struct Case {
        float before;
        float after;
        bool isTold;
    };
    const Case cases[] = {{NOT_A_NUMBER, 0.0f, true},
                          {INFINITE, 65504.0f, true},
                          {-INFINITE, 0.0f, true},
                          {-1.0f, 0.0f, true},
                          {1e38f, 65504.0f, true},
                          {-1e-4f, 0.0f, false}, // of lossy compression
                          {110000.0f, 110000.0f, false},
                          {1e30f, 1e30f, false},
                          {0.0f, 0.0f, false}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.before);
        ovImages::Image image = panoramaOf(0.5f);
        image.setComponent(31, 15, 2, row.before);
        ovMemory::String warning;
        veldris::cleanEnvironment(image, warning);
        EXPECT_EQ(warning, row.isTold
                               ? "1 numbers of the environment are negative, infinite or no numbers, and "
                                 "were replaced by 0 or 65504."
                               : "");
        EXPECT_EQ(image.getComponent(31, 15, 2), row.after);
        EXPECT_EQ(image.getComponent(31, 15, 1), 1.0f);
        EXPECT_EQ(image.getComponent(0, 0, 0), 0.5f);
    }
}

/// The faces of a mip below each other.
ovImages::Image facesOf(ovGraphics::Texture& texture, unsigned int mip) {
    const unsigned int side = std::max(texture.getWidth() >> mip, 1u);
    ovImages::Image faces = lightTruth::floatPicture(side, 6 * side);
    for (unsigned int face = 0; face < 6; ++face) {
        const auto image = texture.convertToImage(face, mip);
        EXPECT_TRUE(image);
        for (unsigned int y = 0; image && y < side; ++y)
            for (unsigned int x = 0; x < side; ++x)
                lightTruth::setColor(faces, x, face * side + y, lightTruth::colorAt(*image, x, y));
    }
    return faces;
}

/// The coefficients of the light that an irradiance cube was drawn from, by a sum over its texels.
lightTruth::Coefficients coefficientsBehind(ovGraphics::Texture& irradiance) {
    auto sums = lightTruth::coefficientsOf(lightTruth::lightsOf(facesOf(irradiance, 0), true));
    for (std::size_t k = 1; k < 9; ++k)
        for (double& part : sums[k])
            part /= k < 4 ? 2.0 / 3.0 : 0.25;
    return sums;
}

TEST(EnvironmentLightTest, everyTexelOfTheSkyLightsAtAnyRotation) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    ovMemory::String error;
    struct Case {
        ovImages::Image sky;
        std::array<float, 3> degrees;
    };
    const Case cases[] = {{lightTruth::hardSunPanorama(180), {0.0f, 2.0f, 181.0f}},
                          {lightTruth::oneBrightTexel(360, 180, 200, 70), {1.0f, 3.0f, 5.0f}}};
    for (const Case& row : cases) {
        for (const float degrees : row.degrees) {
            SCOPED_TRACE(degrees);
            ovImages::Image turned = row.sky;
            ovImages::turnPanorama(turned, ovImages::getColumnsOfTurn(turned.getWidth(), degrees));
            ovMemory::String warning;
            const auto light = veldris::EnvironmentLight::create(session, turned.view(), warning, error);
            ASSERT_TRUE(light) << error;
            EXPECT_EQ(warning, ""); // suns beyond half floats stay
            const auto drawn = coefficientsBehind(*light->getIrradiance());
            const auto truth = lightTruth::coefficientsOf(lightTruth::lightsOf(turned, false));
            for (std::size_t channel = 0; channel < 3; ++channel) {
                double largest = 0.0;
                for (const auto& coefficient : truth)
                    largest = std::max(largest, std::abs(coefficient[channel]));
                for (std::size_t k = 0; k < 9; ++k)
                    // The sum over a cube of 32 is off by a thousandth itself.
                    EXPECT_NEAR(drawn[k][channel], truth[k][channel], 0.003 * largest) << k;
            }
        }
    }
}

TEST(EnvironmentLightTest, agreesWithWhatIsBaked) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    ovMemory::String error;
    ovMemory::String warning;
    veldris::EnvironmentInput input;
    input.image = lightTruth::hardSunPanorama(180);
    const auto light = veldris::EnvironmentLight::create(session, input.image.view(), warning, error);
    ASSERT_TRUE(light) << error;
    veldris::CubeMap baked;
    ASSERT_TRUE(veldris::bakePrefiltered(input, 256, baked, error)) << error;
    ASSERT_EQ(baked.mips.size(), light->getPrefiltered()->getMipCount());
    for (unsigned int mip = 0; mip < baked.mips.size(); ++mip)
        EXPECT_TRUE(
            std::ranges::equal(facesOf(*light->getPrefiltered(), mip).getBytes(), baked.mips[mip].getBytes()))
            << mip;
    ovVeldris::IrradianceCoefficients coefficients;
    ASSERT_TRUE(veldris::bakeIrradiance(input, 32, baked, coefficients, error)) << error;
    EXPECT_TRUE(std::ranges::equal(facesOf(*light->getIrradiance(), 0).getBytes(), baked.mips[0].getBytes()));
}

TEST(EnvironmentLightTest, aConstantEnvironmentLightsEvenly) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    ovMemory::String error;
    ovMemory::String warning;
    const auto light = veldris::EnvironmentLight::create(session, panoramaOf(0.5f).view(), warning, error);
    ASSERT_TRUE(light) << error;
    EXPECT_EQ(light->getPrefiltered()->getTexType(), ovGraphics::TEXTURE_TYPE::CUBE);
    EXPECT_EQ(light->getIrradiance()->getTexType(), ovGraphics::TEXTURE_TYPE::CUBE);
    for (ovGraphics::Texture* texture : {light->getPrefiltered(), light->getIrradiance()}) {
        const auto image = texture->convertToImage(2, texture == light->getPrefiltered() ? 2 : 0);
        ASSERT_TRUE(image);
        for (unsigned int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(image->getComponent(3, 3, channel), 0.5f * static_cast<float>(channel + 1), 0.003f);
    }
    const auto material = ovVeldris::PbsMaterial::create(&session.getSystem());
    light->light(*material);
    EXPECT_EQ(material->getEnvironmentTexture(), light->getPrefiltered());
    EXPECT_EQ(material->getIrradianceTexture(), light->getIrradiance());
    EXPECT_TRUE(material->getEnvironmentPrefiltered());
}

} // namespace

#include <veldris/scene/EnvironmentLight.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/Session.h>

namespace {

ovImages::Image panoramaOf(float value) {
    ovImages::Image image(32, 16, 3, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 16; ++y)
        for (unsigned int x = 0; x < 32; ++x)
            for (unsigned int channel = 0; channel < 3; ++channel)
                image.setComponent(x, y, channel, value * static_cast<float>(channel + 1));
    return image;
}

TEST(EnvironmentLightTest, clampsWhatWouldSpoilTheFiltering) {
    ovImages::Image image = panoramaOf(0.5f);
    image.setComponent(0, 0, 0, std::numeric_limits<float>::quiet_NaN());
    image.setComponent(1, 0, 1, std::numeric_limits<float>::infinity());
    image.setComponent(2, 0, 2, 110000.0f);
    image.setComponent(3, 0, 0, -1.0f);
    ovMemory::String warning;
    const ovImages::Image clamped = veldris::clampedPanorama(image.view(), warning);
    EXPECT_EQ(warning,
              "4 numbers of the environment are negative, no numbers or above 65504, and were clamped.");
    EXPECT_EQ(clamped.getChannels(), 4u);
    EXPECT_EQ(clamped.getComponent(0, 0, 0), 0.0f);
    EXPECT_EQ(clamped.getComponent(1, 0, 1), 65504.0f);
    EXPECT_EQ(clamped.getComponent(2, 0, 2), 65504.0f);
    EXPECT_EQ(clamped.getComponent(3, 0, 0), 0.0f);
    EXPECT_EQ(clamped.getComponent(5, 5, 2), 1.5f);
    warning.clear();
    veldris::clampedPanorama(panoramaOf(0.5f).view(), warning);
    EXPECT_EQ(warning, "");
}

TEST(EnvironmentLightTest, aConstantEnvironmentLightsEvenly) {
    veldris::DrawingOptions options;
    options.device = "software";
    options.noCache = true;
    veldris::Session session;
    ovMemory::String error;
    ASSERT_TRUE(session.open(options, error)) << error;
    ovMemory::String warning;
    const auto light = veldris::EnvironmentLight::create(session, panoramaOf(0.5f).view(), warning, error);
    ASSERT_TRUE(light) << error;
    EXPECT_EQ(light->getPrefiltered()->getTexType(), ovGraphics::TEXTURE_TYPE::CUBE);
    EXPECT_EQ(light->getIrradiance()->getTexType(), ovGraphics::TEXTURE_TYPE::CUBE);
    // Irradiance by spherical harmonics with equal weights is off by a few percent on a small cube.
    for (ovGraphics::Texture* texture : {light->getPrefiltered(), light->getIrradiance()}) {
        const auto image = texture->convertToImage(2, texture == light->getPrefiltered() ? 2 : 0);
        ASSERT_TRUE(image);
        for (unsigned int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(image->getComponent(3, 3, channel), 0.5f * static_cast<float>(channel + 1), 0.05f);
    }
    const auto material = ovVeldris::PbsMaterial::create(&session.getSystem());
    light->light(*material);
    EXPECT_EQ(material->getEnvironmentTexture(), light->getPrefiltered());
    EXPECT_EQ(material->getIrradianceTexture(), light->getIrradiance());
    EXPECT_TRUE(material->getEnvironmentPrefiltered());
}

} // namespace

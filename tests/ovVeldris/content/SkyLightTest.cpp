#include <ovVeldris/content/SkyLight.h>

#include <cmath>
#include <numbers>
#include <ovVeldris/content/ModelTesting.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <ovVeldris/effects/atmosphere/SunLight.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>

using namespace ovVeldris;
using ovGraphics::Texture;
using ovMaths::Vector;

namespace {

constexpr unsigned int SIDE = 8;

class SkyLightTest : public ModelFixture {
protected:
    void SetUp() override {
        ModelFixture::SetUp();
        _air = AtmosphereEffect::create(getSystem());
        _air->setSunPosition({3.0f, 4.0f, 0.0f});
        _air->setSunIlluminanceFactor(7.0f);
        _air->setMultiScatteringLutWidth(8); // quick tables
        _air->setMultiScatteringLutHeight(8);
        _air->setMieScattering({30.0f, 20.0f, 10.0f});
    }
    void TearDown() override {
        _air.reset();
        for (const char* name : {"s", "s prefiltered", "s irradiance"})
            textures().erase(name);
        ModelFixture::TearDown();
    }
    ovGraphics::TextureManager& textures() { return *getGraphics().getTextureManager(); }

    static void expectSameTexels(Texture& actual, Texture& expected) {
        ASSERT_EQ(actual.getMipCount(), expected.getMipCount());
        ASSERT_EQ(actual.getSliceCount(), expected.getSliceCount());
        EXPECT_EQ(actual.getFormat(), expected.getFormat());
        for (unsigned int slice = 0; slice < actual.getSliceCount(); ++slice)
            for (unsigned int mip = 0; mip < actual.getMipCount(); ++mip)
                EXPECT_EQ(actual.readBack(slice, mip), expected.readBack(slice, mip)) << slice << ", " << mip;
    }

    ovMemory::UniquePtr<AtmosphereEffect> _air;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, SkyLightTest, testing::Values(ovGraphics::SHADER_LANGUAGE::GLSL), languageName);

TEST_P(SkyLightTest, isWhatTheToolsMakeOfTheAir) {
    SkyLight light(getSystem(), "s");
    const ovMemory::Result drawn = light.draw(*_air, SIDE);
    ASSERT_TRUE(drawn) << drawn.error << getLog().getText();
    // The same, step by step.
    const auto sky = Texture::create(&getGraphics());
    const auto prefiltered = Texture::create(&getGraphics());
    const auto irradiance = Texture::create(&getGraphics());
    _air->setDisplaySun(false);
    ASSERT_TRUE(_air->load());
    getSystem()->getEnvironmentRenderer()->renderCubemap(sky.get(), _air->getShader(), SIDE,
                                                         ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    PbsEnvironmentMapFilter& filter = *getSystem()->getPbsEnvironmentMapFilter();
    filter.requestEnvironmentMapFiltering(sky.get(), prefiltered.get(), SIDE);
    filter.requestIrradianceComputing(sky.get(), irradiance.get());
    expectSameTexels(*light.getSky(), *sky);
    expectSameTexels(*light.getPrefiltered(), *prefiltered);
    expectSameTexels(*light.getIrradiance(), *irradiance);
    const auto floats = readFloats(*sky);
    EXPECT_GT(floats.at(SIDE / 2, 1)[2], 0.0f) << "there is a sky";
}

TEST_P(SkyLightTest, texturesBelongToTheManagerAndStay) {
    {
        SkyLight light(getSystem(), "s");
        EXPECT_EQ(light.getName(), "s");
        EXPECT_EQ(light.getSky(), nullptr);
        ASSERT_TRUE(light.draw(*_air, SIDE));
        EXPECT_EQ(light.getSky(), textures().get("s"));
        EXPECT_EQ(light.getPrefiltered(), textures().get("s prefiltered"));
        EXPECT_EQ(light.getIrradiance(), textures().get("s irradiance"));
        textures().erase("s irradiance");
        EXPECT_EQ(light.getIrradiance(), nullptr);
    }
    ASSERT_NE(textures().get("s"), nullptr);
    EXPECT_FALSE(textures().get("s")->isUnloaded());
}

TEST_P(SkyLightTest, theEffectOfTheAirStaysWhatItWas) {
    const auto picture = makeTexture(FloatPicture(1, 1));
    _air->setSourceColorTexture(picture.get());
    _air->setSourceDepthTexture(picture.get());
    _air->setOnlyScatterOnObjects(true);
    SkyLight light(getSystem(), "s");
    ASSERT_TRUE(light.draw(*_air, SIDE));
    EXPECT_TRUE(_air->getDisplaySun());
    EXPECT_EQ(_air->getSourceColorTexture(), picture.get());
    EXPECT_EQ(_air->getShader(), nullptr) << "it was not loaded";
    const auto withReadings = light.getSky()->readBack(2);
    _air->setSourceColorTexture(nullptr);
    _air->setSourceDepthTexture(nullptr);
    _air->setOnlyScatterOnObjects(false);
    ASSERT_TRUE(light.draw(*_air, SIDE));
    EXPECT_EQ(light.getSky()->readBack(2), withReadings) << "pictures and depths are no part of the sky";
}

TEST_P(SkyLightTest, theSunComesThroughTheAir) {
    SkyLight light(getSystem(), "s");
    EXPECT_EQ(light.getSunColor(), Vector());
    ASSERT_TRUE(light.draw(*_air, SIDE));
    EXPECT_EQ(light.getSunDirection(), Vector(-3.0f, -4.0f, 0.0f));
    const Vector expected =
        sunTransmittance(*_air, 0.0, 53.130102354156) * (7.0f / std::numbers::pi_v<float>);
    EXPECT_NEAR(light.getSunColor().x, expected.x, 1e-5f);
    EXPECT_NEAR(light.getSunColor().y, expected.y, 1e-5f);
    EXPECT_NEAR(light.getSunColor().z, expected.z, 1e-5f);
    EXPECT_GT(light.getSunColor().z, 0.5f);
    _air->setSunPosition({1.0f, -0.2f, 0.0f});
    ASSERT_TRUE(light.draw(*_air, SIDE));
    EXPECT_EQ(light.getSunColor(), Vector()) << "the ground hides it";
    _air->setSunPosition({0.0f, 5.0f, 0.0f});
    ASSERT_TRUE(light.draw(*_air, SIDE));
    EXPECT_EQ(light.getSunColor(), sunIrradiance(*_air, 0.0, 90.0) / std::numbers::pi_v<float>);
}

TEST_P(SkyLightTest, materialsTakeIt) {
    SkyLight light(getSystem(), "s");
    ASSERT_TRUE(light.draw(*_air, SIDE));
    _scene.addMaterial({});
    _scene.addMaterial({});
    _model = make(_scene);
    light.lightModel(*_model);
    for (const ModelMaterial& own : _model->getMaterials()) {
        EXPECT_EQ(own.material->getEnvironmentTexture(), light.getPrefiltered());
        EXPECT_TRUE(own.material->getEnvironmentPrefiltered());
        EXPECT_EQ(own.material->getEnvironmentTextureChannels(), THREE_CHANNEL_PACK::RGB);
        EXPECT_EQ(own.material->getIrradianceTexture(), light.getIrradiance());
        EXPECT_EQ(own.material->getIrradianceTextureChannels(), THREE_CHANNEL_PACK::RGB);
        EXPECT_TRUE(own.material->getCombineLightAndEnvironment());
        EXPECT_EQ(own.material->getLightDirection(), light.getSunDirection());
        EXPECT_EQ(own.material->getLightColor(), light.getSunColor());
    }
    EXPECT_TRUE(_model->loadMaterials()) << getLog().getText();
    getSystem()->getMaterialManager()->erase(ovMemory::String(_model->getMaterials()[0].material->getName()));
    light.lightModel(*_model); // leaves out what is gone
}

TEST_P(SkyLightTest, reasonsAreTold) {
    SkyLight light(getSystem(), "s");
    EXPECT_EQ(light.draw(*_air, 3).error,
              "Could not draw the sky 's': a side of 3 texels is too small; give 4 or more.");
    EXPECT_EQ(light.draw(*_air, 0).error,
              "Could not draw the sky 's': a side of 0 texels is too small; give 4 or more.");
    EXPECT_EQ(textures().get("s"), nullptr);
    EXPECT_EQ(light.draw(*_air, 4000000000u).error, "Could not draw the sky 's': the log says why.");
    EXPECT_FALSE(getLog().messages.empty());
    EXPECT_EQ(light.getSunColor(), Vector()) << "the light is what it was";
    EXPECT_EQ(SkyLight(nullptr, "s").draw(*_air, SIDE).error,
              "Could not draw the sky 's': the system is gone or was shut down; initialise one before.");
    System own;
    ASSERT_TRUE(initializeOwn(own));
    SkyLight late(&own, "s");
    own.shutdown();
    EXPECT_FALSE(late.draw(*_air, SIDE));
    getGraphicsLogger().messages.clear();
}

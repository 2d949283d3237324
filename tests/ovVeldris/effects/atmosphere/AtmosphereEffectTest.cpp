#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>

using namespace ovVeldris;

namespace {

class AtmosphereEffectTest : public AtmosphereFixture {};

ovMemory::Buffer<ovGraphics::shading::Define> definesOf(const AtmosphereEffect& effect) {
    return effect.getShader()->getProgram()->getSources().getPixel().defines;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, AtmosphereEffectTest, bothLanguages(), languageName);

TEST_P(AtmosphereEffectTest, isNewWithDefaults) {
    const auto effect = makeEffect();
    EXPECT_EQ(effect->getType(), EFFECT_TYPE::ATMOSPHERE);
    EXPECT_EQ(effect->getSourceColorTexture(), nullptr);
    EXPECT_EQ(effect->getSourceDepthTexture(), nullptr);
    EXPECT_EQ(effect->getShadowTexture(), nullptr);
    EXPECT_EQ(effect->getShadowCamera(), nullptr);
    EXPECT_EQ(effect->getSunPosition(), ovMaths::Vector(0.0f, 1.0f, 0.0f));
    EXPECT_EQ(effect->getPlanetAlbedo(), ovMaths::Vector(0.1f, 0.1f, 0.1f));
    EXPECT_EQ(effect->getRayleighScattering(), ovMaths::Vector(5.802f, 13.558f, 33.1f));
    EXPECT_EQ(effect->getRayleighExtinction(), ovMaths::Vector(5.802f, 13.558f, 33.1f));
    EXPECT_EQ(effect->getRayleighAbsorb(), ovMaths::Vector());
    EXPECT_EQ(effect->getMieScattering(), ovMaths::Vector(3.996f, 3.996f, 3.996f));
    EXPECT_EQ(effect->getMieExtinction(), ovMaths::Vector(8.396f, 8.396f, 8.396f));
    EXPECT_EQ(effect->getMieAbsorb(), ovMaths::Vector(4.4f, 4.4f, 4.4f));
    EXPECT_EQ(effect->getOzoneScattering(), ovMaths::Vector());
    EXPECT_EQ(effect->getOzoneExtinction(), ovMaths::Vector(0.65f, 1.881f, 0.085f));
    EXPECT_EQ(effect->getOzoneAbsorb(), ovMaths::Vector(0.65f, 1.881f, 0.085f));
    EXPECT_EQ(effect->getMieG(), 0.8f);
    EXPECT_EQ(effect->getRayleighHeightDensityFactor(), 1.0f);
    EXPECT_EQ(effect->getMieHeightDensityFactor(), 1.0f);
    EXPECT_EQ(effect->getOzoneHeightDensityFactor(), 1.0f);
    EXPECT_EQ(effect->getDistanceFactor(), 1.0f);
    EXPECT_EQ(effect->getSunIlluminanceFactor(), 5.0f);
    EXPECT_EQ(effect->getSunAngularRadius(), 0.545f);
    EXPECT_EQ(effect->getSunLutSampleCount(), 40u);
    EXPECT_EQ(effect->getMultiScatteringLutSphereSampleCount(), 8u);
    EXPECT_EQ(effect->getMultiScatteringLutMarchSampleCount(), 20u);
    EXPECT_EQ(effect->getRaymarchSampleCount(), 32u);
    EXPECT_EQ(effect->getSunTransmittanceLutWidth(), 256u);
    EXPECT_EQ(effect->getSunTransmittanceLutHeight(), 64u);
    EXPECT_EQ(effect->getMultiScatteringLutWidth(), 64u);
    EXPECT_EQ(effect->getMultiScatteringLutHeight(), 64u);
    EXPECT_EQ(effect->getShadowSamplingMethod(), SHADOW_MAP_PCF::PCF_9_TAP);
    EXPECT_EQ(effect->getShadowDepthBias(), -1.0f);
    EXPECT_FALSE(effect->getShadowDebug());
    EXPECT_FALSE(effect->getUseHalfFloatForLuts());
    EXPECT_FALSE(effect->getOnlyScatterOnObjects());
    EXPECT_TRUE(effect->getDisplaySun());
    EXPECT_FALSE(effect->getDebugNumericalInstability());
    EXPECT_EQ(effect->getShader(), nullptr);
}

TEST_P(AtmosphereEffectTest, countsStepsOfTheSunsTableOnly) {
    const auto effect = makeEffect();
    effect->setRaymarchSampleCount(64);
    EXPECT_EQ(effect->getSunLutSampleCount(), 64u);
    EXPECT_EQ(effect->getRaymarchSampleCount(), 32u);
}

TEST_P(AtmosphereEffectTest, definesWhatItsSettingsSelect) {
    using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;
    const auto texture = makeTexture(FloatPicture(1, 1));
    const auto light = ovGraphics::Camera::create(&getGraphics());
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load()) << getGraphicsLogger().getText();
    EXPECT_EQ(definesOf(*effect), (Defines{{"RAYMARCH_STEPS", "32u"}, {"DISPLAY_SUN", ""}}));
    const ovGraphics::Program& program = *effect->getShader()->getProgram();
    EXPECT_EQ(program.getName(),
              "ORVANE_ATMOSPHERE_PROGRAM_" + std::to_string(AtmosphereIdGenerator()(infoOf(*effect))));
    EXPECT_TRUE(program.getHidden());
    EXPECT_TRUE(effect->getShader()->getHidden());
    EXPECT_TRUE(program.getActivateCrossCompilerDefines());

    effect->setShadowSource(texture.get(), nullptr); // half a shadow is none
    effect->setSourceColorTexture(texture.get());
    effect->setDisplaySun(false);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(definesOf(*effect), (Defines{{"RAYMARCH_STEPS", "32u"}, {"USE_SOURCE_COLOR", ""}}));

    effect->setShadowSource(texture.get(), light.get());
    effect->setSourceColorTexture(nullptr);
    effect->setSourceDepthTexture(texture.get());
    effect->setShadowSamplingMethod(SHADOW_MAP_PCF::NONE);
    effect->setShadowDepthBias(0.0f);
    effect->setShadowDebug(true);
    effect->setOnlyScatterOnObjects(true);
    effect->setDebugNumericalInstability(true);
    ASSERT_TRUE(effect->load()) << getGraphicsLogger().getText();
    EXPECT_EQ(definesOf(*effect), (Defines{{"RAYMARCH_STEPS", "32u"},
                                           {"USE_SOURCE_DEPTH", ""},
                                           {"USE_VISIBILITY_SHADOWS", ""},
                                           {"OV_SHADOW_MAP_METHOD_PCF_NONE", ""},
                                           {"OV_SHADOW_MAP_METHOD_BIAS", "0.000000"},
                                           {"OV_SHADOW_MAP_METHOD_DEBUG_OOB", ""},
                                           {"ONLY_SCATTER_ON_OBJECTS", ""},
                                           {"DEBUG_NUMERICAL_INSTABILITY", ""}}));
}

TEST_P(AtmosphereEffectTest, identifiesItsProgram) {
    const AtmosphereIdGenerator id;
    const AtmosphereEffectInfo defaults;
    const auto changed = [&](const std::function<void(AtmosphereEffectInfo&)>& change, bool withShadows) {
        AtmosphereEffectInfo a;
        a.hasShadowTexture = a.hasShadowCamera = withShadows;
        AtmosphereEffectInfo b = a;
        change(b);
        return id(a) != id(b);
    };
    using Info = AtmosphereEffectInfo;
    EXPECT_TRUE(changed([](Info& i) { i.hasSourceColor = true; }, false));
    EXPECT_TRUE(changed([](Info& i) { i.hasSourceDepth = true; }, false));
    EXPECT_TRUE(changed([](Info& i) { i.hasShadowTexture = true; }, false));
    EXPECT_TRUE(changed([](Info& i) { i.raymarchSampleCount = 5; }, false));
    EXPECT_TRUE(changed([](Info& i) { i.onlyScatterOnObjects = true; }, false));
    EXPECT_TRUE(changed([](Info& i) { i.displaySun = false; }, false));
    EXPECT_TRUE(changed([](Info& i) { i.debugNumericalInstability = true; }, false));
    const std::function<void(Info&)> shadows[] = {[](Info& i) { i.shadow.pcfMethod = SHADOW_MAP_PCF::NONE; },
                                                  [](Info& i) { i.shadow.debugOutOfBounds = true; },
                                                  [](Info& i) { i.shadow.bias = 0.5f; }};
    for (const auto& change : shadows) {
        EXPECT_TRUE(changed(change, true));
        EXPECT_FALSE(changed(change, false));
    }
    EXPECT_FALSE(changed([](Info& i) { i.sunPosition = {1.0f, 0.0f, 0.0f}; }, true));
    EXPECT_FALSE(changed([](Info& i) { i.hasShadowCamera = true; }, false));
}

TEST_P(AtmosphereEffectTest, bindsItsTexturesSamplersAndConstants) {
    const auto color = makeTexture(FloatPicture(1, 1));
    const auto depth = makeTexture(FloatPicture(1, 1));
    const auto shadow = makeTexture(FloatPicture(1, 1));
    const auto light = ovGraphics::Camera::create(&getGraphics());
    const auto effect = makeEffect();
    const auto texture = [&](unsigned int unit) { return effect->getShader()->getTexture(unit, 0); };
    const auto sampler = [&](unsigned int unit) { return effect->getShader()->getSampler(unit, 0); };
    const auto slots = [&](unsigned int buffer) {
        return effect->getShader()->getConstantBuffer(buffer, 0)->getPassMemorySlotCount();
    };
    ASSERT_TRUE(effect->load());
    for (const unsigned int unit : {0u, 1u, 4u})
        EXPECT_EQ(texture(unit), nullptr);
    EXPECT_EQ(slots(0), 2u);
    EXPECT_EQ(slots(1), 3u);
    EXPECT_EQ(slots(2), 11u);
    effect->setSourceColorTexture(color.get()); // wait for the load
    effect->setSourceDepthTexture(depth.get());
    effect->setShadowSource(shadow.get(), light.get());
    for (const unsigned int unit : {0u, 1u, 4u})
        EXPECT_EQ(texture(unit), nullptr);
    EXPECT_EQ(slots(1), 3u);

    ASSERT_TRUE(effect->load());
    EXPECT_EQ(texture(0), color.get());
    EXPECT_EQ(texture(1), depth.get());
    EXPECT_EQ(texture(2), effect->getSunTransmittanceLut());
    EXPECT_EQ(texture(3), effect->getMultiScatteringLut());
    EXPECT_EQ(texture(4), shadow.get());
    EXPECT_EQ(slots(1), 6u);
    const auto& lut = sampler(0)->getDesc();
    EXPECT_EQ(sampler(0)->getName(), "OV_ATMOSPHERE_LUT_SAMPLER");
    EXPECT_EQ(sampler(2), sampler(0));
    EXPECT_EQ(sampler(3), sampler(0));
    EXPECT_EQ(int(lut.filter), 21);
    EXPECT_EQ(int(lut.addressU), 3);
    EXPECT_EQ(int(lut.addressV), 3);
    EXPECT_EQ(sampler(1)->getName(), "OV_ATMOSPHERE_DEPTH_SAMPLER");
    EXPECT_EQ(int(sampler(1)->getDesc().filter), 0);
    EXPECT_EQ(int(sampler(1)->getDesc().addressU), 3);
    EXPECT_EQ(int(sampler(1)->getDesc().addressV), 3);
    const auto& comparing = sampler(4)->getDesc();
    EXPECT_EQ(sampler(4)->getName(), "OV_ATMOSPHERE_SHADOW_SAMPLER");
    EXPECT_EQ(int(comparing.filter), 149);
    EXPECT_EQ(int(comparing.addressU), 4);
    EXPECT_EQ(int(comparing.addressV), 4);
    EXPECT_EQ(comparing.borderColor, (std::array{1.0f, 1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(int(comparing.comparison), 4);
    EXPECT_EQ(getGraphics().getSamplerManager()->get("OV_ATMOSPHERE_LUT_SAMPLER"), nullptr);

    effect->setSourceColorTexture(depth.get()); // and of the same kind at once
    effect->setSourceDepthTexture(shadow.get());
    effect->setShadowSource(color.get(), light.get());
    EXPECT_EQ(texture(0), depth.get());
    EXPECT_EQ(texture(1), shadow.get());
    EXPECT_EQ(texture(4), color.get());
}

TEST_P(AtmosphereEffectTest, forgetsHowItWasLoaded) {
    auto color = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    effect->setSourceColorTexture(color.get());
    ASSERT_TRUE(effect->load());
    const ovMemory::Borrowed<ovGraphics::Program> program = effect->getShader()->getProgram();
    effect->setDisplaySun(false);
    color.reset();
    effect->unload();
    EXPECT_EQ(program.get(), nullptr);
    EXPECT_TRUE(effect->getLutShader()->isUnloaded());
    const auto other = makeTexture(FloatPicture(1, 1));
    effect->setSourceColorTexture(other.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
}

TEST_P(AtmosphereEffectTest, tellsWhyItDoesNotLoad) {
    System never;
    never.getLogManager()->setReceiver(&getLog());
    AtmosphereEffect effect(&never);
    EXPECT_EQ(effect.getSunTransmittanceLut(), nullptr); // there is nothing to make it with
    effect.setName("air");
    EXPECT_FALSE(effect.load());
    const ovMemory::Buffer<RecordingLogger::Message> expected = {
        loadFailure("atmosphere complex", "AtmosphereEffect", "program", "air")};
    EXPECT_EQ(getLog().messages, expected);
    EXPECT_TRUE(effect.refreshLuts());
}

TEST_P(AtmosphereEffectTest, drawsOnAGraphicsSystemThatCameLater) {
    System system;
    AtmosphereEffect effect(&system);
    ASSERT_TRUE(initializeOwn(system));
    ASSERT_TRUE(effect.load()) << getLog().getText();
    EXPECT_FALSE(effect.getSunTransmittanceLut()->isUnloaded());
    system.shutdown();
    ASSERT_TRUE(initializeOwn(system));
    ASSERT_TRUE(effect.load()) << getLog().getText();
    EXPECT_FALSE(effect.getSunTransmittanceLut()->isUnloaded());
}

#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

#include <limits>
#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>
#include <random>

using namespace ovVeldris;
using namespace atmosphereReference;

namespace {

constexpr unsigned int WIDTH = 24;
constexpr unsigned int HEIGHT = 16;

/// Of 32-bit floats, as in the tables: near the ground the distance to it is hardly known.
struct Tolerance {
    double relative = 5e-3;
    double absolute = 1e-5;
};

class AtmosphereEffectTest : public AtmosphereFixture {
protected:
    /// A wide view from a height, up or down.
    void look(float height, const ovMaths::Vector& direction) {
        getCamera().setPosition({700.0f, height, -300.0f});
        getCamera().lookAt(direction, {});
        getCamera().setPerspective(1.2f, float(WIDTH) / float(HEIGHT), 1.0f, 50000.0f);
    }

    ovMemory::UniquePtr<ovGraphics::Texture>
    makeDepth(const std::function<std::optional<double>(unsigned int, unsigned int)>& viewDepth) {
        const ovMaths::Vector parameters = getCamera().getProjectionParameters();
        FloatPicture picture(WIDTH, HEIGHT, {1.0f, 0.0f, 0.0f, 0.0f});
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                if (const auto depth = viewDepth(x, y))
                    picture.at(x, y)[0] = float(parameters.x + parameters.y * getCamera().getFar() / *depth);
        return makeTexture(picture);
    }

    /// What the depth of a picture reads as: from the near plane on.
    std::optional<double> readDepth(ovGraphics::Texture* texture, unsigned int x, unsigned int y) {
        if (!texture)
            return {};
        const double depth = readFloats(*texture).at(x, y)[0];
        if (depth >= 0.9999999)
            return {};
        const ovMaths::Vector parameters = getCamera().getProjectionParameters();
        return getCamera().getNear() + getCamera().getFar() * parameters.y / (depth - parameters.x);
    }

    /// Compares a drawn sky with the slow march over the effect's own tables.
    void expectMarch(const AtmosphereEffect& effect, const Tolerance& tolerance,
                     const std::function<double(const Three& place, bool& isSure)>& visibility = {}) {
        const Air air = {infoOf(effect)};
        const FloatPicture drawn = drawEffect(effect, WIDTH, HEIGHT);
        const FloatPicture sunTable = readFloats(*effect.getSunTransmittanceLut());
        const FloatPicture multiTable = readFloats(*effect.getMultiScatteringLut());
        ovGraphics::Texture* const color = effect.getSourceColorTexture();
        const FloatPicture behind = color ? readFloats(*color) : FloatPicture(WIDTH, HEIGHT);
        const Three toSun = normalized(three(effect.getSunPosition()));
        const Three eye = three(getCamera().getPosition());
        unsigned int wrong = 0;
        unsigned int unsure = 0;
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x) {
                const Three direction = directionOf(x, y, WIDTH, HEIGHT);
                const auto depth = readDepth(effect.getSourceDepthTexture(), x, y);
                const Ray ray = startRay(air, eye[1], direction, depth);
                bool isSure = depth || std::abs(clearanceOf(ray.origin, direction)) > 0.05;
                const Marched marched = march(air, ray, toSun, sunTable, multiTable, [&](double t) {
                    return visibility ? visibility(eye + direction * (t * ray.toScene), isSure) : 1.0;
                });
                const FloatPixel& source = behind.at(x, y);
                Three light = Three{source[0], source[1], source[2]} * marched.left +
                              marched.scattered * double(effect.getSunIlluminanceFactor());
                if (effect.getDisplaySun() && !ray.meetsGround && !depth)
                    light =
                        light + sunDisc(air, ray, toSun, sunTable) * double(effect.getSunIlluminanceFactor());
                if (!isSure) {
                    ++unsure;
                    continue;
                }
                const FloatPixel& pixel = drawn.at(x, y);
                bool isRight = pixel[3] == 1.0f;
                for (unsigned int i = 0; i < 3; ++i)
                    isRight = isRight && std::abs(pixel[i] - light[i]) <=
                                             tolerance.relative * std::abs(light[i]) + tolerance.absolute;
                if (!isRight && ++wrong <= 3)
                    ADD_FAILURE() << x << ", " << y << ": " << pixel[0] << " " << pixel[1] << " " << pixel[2]
                                  << " and not " << light[0] << " " << light[1] << " " << light[2];
            }
        EXPECT_EQ(wrong, 0u);
        EXPECT_LE(unsure, visibility ? WIDTH * HEIGHT / 2 : WIDTH * HEIGHT / 6); // rims of shadows, too
    }

    FloatPicture makeColors() {
        FloatPicture picture(WIDTH, HEIGHT);
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                picture.at(x, y) = {0.1f + 0.03f * float(x), 2.0f - 0.1f * float(y), 0.5f, 0.25f};
        return picture;
    }
};

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

TEST_P(AtmosphereEffectTest, followsItsFormula) {
    struct Case {
        double elevation;
        float height;
        ovMaths::Vector direction;
        Tolerance tolerance;
    };
    const Case cases[] = {
        {90.0, 2000.0f, {0.0f, 0.3f, 1.0f}, {}},
        {40.0, 600.0f, {0.2f, 0.9f, 0.6f}, {}},
        {5.0, 2000.0f, {0.1f, 0.1f, 1.0f}, {}},
        {0.5, 9000.0f, {0.3f, -0.2f, 0.9f}, {}},
        {-4.0, 2000.0f, {0.0f, 0.4f, 1.0f}, {.relative = 2e-2}},
        {25.0, 30000.0f, {-0.4f, -0.5f, 0.5f}, {}},
        {10.0, 1.0f, {0.0f, 0.8f, 1.0f}, {}},
        {10.0, -500.0f, {0.0f, 0.8f, 1.0f}, {}}, // below the ground is on it
    };
    for (const bool isStrange : {false, true}) {
        const auto effect = makeEffect();
        if (isStrange) {
            useStrangeAir(*effect);
            effect->setSunAngularRadius(4.0f);
            effect->setSunIlluminanceFactor(2.5f);
            effect->setDistanceFactor(1.0f);
        }
        ASSERT_TRUE(effect->load()) << getLog().getText() << getGraphicsLogger().getText();
        for (const Case& row : cases) {
            SCOPED_TRACE(row.elevation);
            look(row.height, row.direction);
            effect->setSunPosition(sunAt(row.elevation, 12.0) * 7.0f); // of any length
            expectMarch(*effect, row.tolerance);
        }
    }
}

TEST_P(AtmosphereEffectTest, dimsAPictureByItsDepth) {
    look(1500.0f, {0.1f, -0.1f, 1.0f});
    const auto colors = makeTexture(makeColors());
    const auto depth = makeDepth([](unsigned int x, unsigned int y) {
        return y < 5 ? std::nullopt : std::optional(30.0 * (x + 1.0) * (16.0 - y) * (16.0 - y));
    });
    for (const float factor : {1.0f, 12.0f})
        for (const bool withColor : {true, false}) {
            const auto effect = makeEffect();
            if (withColor)
                effect->setSourceColorTexture(colors.get());
            effect->setSourceDepthTexture(depth.get());
            effect->setDistanceFactor(factor);
            effect->setSunPosition(sunAt(20.0, 70.0));
            ASSERT_TRUE(effect->load());
            expectMarch(*effect, {});
        }
}

TEST_P(AtmosphereEffectTest, endsWhereTheAirEnds) {
    look(1500.0f, {0.1f, 0.9f, 0.3f});
    const auto depth = makeDepth([](unsigned int x, unsigned int) { return 100.0 + 400.0 * x; });
    const auto effect = makeEffect();
    effect->setSourceDepthTexture(depth.get());
    effect->setDistanceFactor(1000.0f); // most of it lies in space
    effect->setSunPosition(sunAt(35.0));
    ASSERT_TRUE(effect->load());
    expectMarch(*effect, {});
}

TEST_P(AtmosphereEffectTest, leavesTheSkyAloneWhenAsked) {
    look(1500.0f, {0.1f, 0.2f, 1.0f});
    const FloatPicture picture = makeColors();
    const auto colors = makeTexture(picture);
    const auto depth =
        makeDepth([](unsigned int, unsigned int y) { return y < 8 ? std::nullopt : std::optional(20000.0); });
    const auto effect = makeEffect();
    effect->setSourceColorTexture(colors.get());
    effect->setSourceDepthTexture(depth.get());
    effect->setOnlyScatterOnObjects(true);
    ASSERT_TRUE(effect->load());
    const FloatPicture drawn = drawEffect(*effect, WIDTH, HEIGHT);
    for (unsigned int x = 0; x < WIDTH; ++x) {
        const FloatPixel& before = picture.at(x, 3);
        for (unsigned int i = 0; i < 3; ++i) // read between texels, by a sampler that rounds
            EXPECT_NEAR(drawn.at(x, 3)[i], before[i], 1e-6f);
        EXPECT_EQ(drawn.at(x, 3)[3], 1.0f);
        EXPECT_NE(drawn.at(x, 12)[2], picture.at(x, 12)[2]);
    }
    // Nearly the far plane is an object still.
    const auto nearlyFar = makeTexture(FloatPicture(WIDTH, HEIGHT, {0.99999994f, 0.0f, 0.0f, 0.0f}));
    effect->setSourceDepthTexture(nearlyFar.get());
    EXPECT_NE(drawEffect(*effect, WIDTH, HEIGHT).at(7, 3)[2], picture.at(7, 3)[2]);
    // Without a depth everything is sky.
    effect->setSourceDepthTexture(nullptr);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(drawEffect(*effect, WIDTH, HEIGHT).at(7, 12)[0], picture.at(7, 12)[0]);
}

TEST_P(AtmosphereEffectTest, showsTheSunWhereNothingStandsBeforeIt) {
    look(1500.0f, {0.0f, 0.5f, 1.0f});
    const ovMaths::Vector forward = getCamera().getDirectionAtPixelWorld(0.52f, 0.53f);
    const auto effect = makeEffect();
    effect->setSunPosition(forward);
    effect->setSunAngularRadius(3.0f);
    ASSERT_TRUE(effect->load());
    const FloatPicture with = drawEffect(*effect, WIDTH, HEIGHT);
    expectMarch(*effect, {});
    effect->setDisplaySun(false);
    ASSERT_TRUE(effect->load());
    const FloatPicture without = drawEffect(*effect, WIDTH, HEIGHT);
    expectMarch(*effect, {});
    EXPECT_GT(with.at(12, 8)[0], without.at(12, 8)[0] + 2.0f);
    EXPECT_LT(std::abs(with.at(0, 15)[0] - without.at(0, 15)[0]), 0.05f);

    // Depths that the march ends at hide it; nearly the far plane is beyond both thresholds.
    effect->setDisplaySun(true);
    for (const auto& [depth, isShown] : {std::pair(0.99998f, false), std::pair(0.999995f, true)}) {
        const auto texture = makeTexture(FloatPicture(WIDTH, HEIGHT, {depth, 0.0f, 0.0f, 0.0f}));
        effect->setSourceDepthTexture(texture.get());
        ASSERT_TRUE(effect->load());
        EXPECT_EQ(drawEffect(*effect, WIDTH, HEIGHT).at(12, 8)[0] > 2.0f, isShown);
    }
}

TEST_P(AtmosphereEffectTest, dimsWhereTheSunIsShadowed) {
    look(300.0f, {0.1f, -0.02f, 1.0f});
    const auto light = ovGraphics::Camera::create(&getGraphics());
    light->setPosition({0.0f, 40000.0f, 30000.0f});
    light->lookAt({0.0f, -1.0f, 0.0f}, {0.0f, 0.0f, 1.0f});
    light->setOrthographic(80000.0f, 80000.0f, 10.0f, 90000.0f);
    constexpr unsigned int SIDE = 1024;
    FloatPicture map(SIDE, SIDE, {1.0f, 0.0f, 0.0f, 0.0f});
    for (unsigned int y = 0; y < SIDE; ++y)
        for (unsigned int x = 0; x < SIDE / 2; ++x)
            map.at(x, y)[0] = y < SIDE / 2 ? 0.0f : 0.3f;
    auto shadow = ovGraphics::Texture::create(&getGraphics());
    shadow->setFormat(ovGraphics::FORMAT::D32_FLOAT);
    shadow->setWidth(SIDE);
    shadow->setHeight(SIDE);
    shadow->setMipCount(1);
    ovMemory::Buffer<float> depths;
    for (const FloatPixel& pixel : map.pixels)
        depths.push_back(pixel[0]);
    shadow->setCpuData(0, 0, {reinterpret_cast<const unsigned char*>(depths.data()), depths.size() * 4});
    ASSERT_TRUE(shadow->load()) << getGraphicsLogger().getText();

    const ovMaths::Matrix view = light->getViewMatrix();
    const ovMaths::Matrix projection = light->getProjectionMatrix();
    const auto transformed = [](const ovMaths::Matrix& m, const std::array<double, 4>& p) {
        std::array<double, 4> result = {};
        for (unsigned int i = 0; i < 4; ++i)
            for (unsigned int j = 0; j < 4; ++j)
                result[i] += double(m.m[i][j]) * p[j];
        return result;
    };
    constexpr double BIAS = 0.01;
    const auto visibility = [&](const Three& place, bool& isSure) {
        const auto clip = transformed(projection, transformed(view, {place[0], place[1], place[2], 1.0}));
        const double u = 0.5 + 0.5 * clip[0] / clip[3];
        const double v = 0.5 - 0.5 * clip[1] / clip[3];
        const double z = clip[2] / clip[3];
        const auto isNear = [](double a, double b) { return std::abs(a - b) < 1.1 / SIDE; };
        isSure = isSure && !isNear(u, 0.5) && !isNear(v, 0.5) && !isNear(u, 0.0) && !isNear(u, 1.0) &&
                 !isNear(v, 0.0) && !isNear(v, 1.0) && std::abs(z - BIAS - 0.3) > 1e-4;
        if (u < 0.0 || u > 1.0 || v < 0.0 || v > 1.0 || z < 0.0 || z > 1.0)
            return 1.0;
        return z - BIAS <= map.at(unsigned(u * SIDE), unsigned(v * SIDE))[0] ? 1.0 : 0.0;
    };
    const auto effect = makeEffect();
    effect->setShadowSource(shadow.get(), light.get());
    effect->setShadowSamplingMethod(SHADOW_MAP_PCF::NONE);
    effect->setShadowDepthBias(float(BIAS));
    effect->setSunPosition(sunAt(60.0, 40.0));
    effect->setDistanceFactor(1.5f);
    ASSERT_TRUE(effect->load()) << getGraphicsLogger().getText();
    expectMarch(*effect, {}, visibility);
    // Within a scene, too, and again after a change of the light's view.
    const auto depth =
        makeDepth([](unsigned int x, unsigned int y) { return 500.0 + 1000.0 * x + 90.0 * y; });
    effect->setSourceDepthTexture(depth.get());
    ASSERT_TRUE(effect->load());
    expectMarch(*effect, {}, visibility);
}

TEST_P(AtmosphereEffectTest, takesTheAirAtOnceAndTablesWhenAsked) {
    look(1500.0f, {0.1f, 0.3f, 1.0f});
    const auto effect = makeEffect();
    effect->setSunPosition(sunAt(30.0));
    ASSERT_TRUE(effect->load());
    const FloatPicture before = drawEffect(*effect, WIDTH, HEIGHT);
    const FloatPicture tableBefore = readFloats(*effect->getSunTransmittanceLut());
    useStrangeAir(*effect);
    effect->setSunIlluminanceFactor(3.0f);
    EXPECT_FALSE(drawEffect(*effect, WIDTH, HEIGHT).pixels == before.pixels);
    expectMarch(*effect, {}); // the new air over the old tables
    EXPECT_TRUE(
        picturesAreIdentical("atmosphere_table", readFloats(*effect->getSunTransmittanceLut()), tableBefore));
    EXPECT_TRUE(effect->refreshLuts());
    expectMarch(*effect, {});
    EXPECT_FALSE(readFloats(*effect->getSunTransmittanceLut()).pixels == tableBefore.pixels);
}

TEST_P(AtmosphereEffectTest, looksLikeASky) {
    const auto effect = makeEffect();
    effect->setDisplaySun(false);
    ASSERT_TRUE(effect->load());
    // The same to both sides of the sun.
    look(500.0f, {0.0f, 0.4f, 1.0f});
    for (const double elevation : {70.0, 15.0, 1.0}) {
        effect->setSunPosition(sunAt(elevation));
        const FloatPicture drawn = drawEffect(*effect, WIDTH, HEIGHT);
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH / 2; ++x)
                for (unsigned int i = 0; i < 3; ++i)
                    ASSERT_NEAR(drawn.at(x, y)[i], drawn.at(WIDTH - 1 - x, y)[i],
                                1e-4f * drawn.at(x, y)[i] + 1e-6f);
    }
    // Blue at noon, red where the sun sets, dark at night.
    const auto colorAt = [&](double elevation, const ovMaths::Vector& direction) {
        look(500.0f, direction);
        effect->setSunPosition(sunAt(elevation));
        return drawEffect(*effect, WIDTH, HEIGHT).at(WIDTH / 2, HEIGHT / 2);
    };
    const FloatPixel noon = colorAt(80.0, {0.0f, 0.5f, -1.0f});
    const FloatPixel sunset = colorAt(1.0, {0.0f, 0.05f, 1.0f});
    const FloatPixel night = colorAt(-20.0, {0.0f, 0.5f, 1.0f});
    EXPECT_GT(noon[2], 1.5f * noon[0]);
    EXPECT_GT(sunset[0] / sunset[2], 4.0f * noon[0] / noon[2]);
    EXPECT_LT(night[1], 1e-3f * noon[1]);
}

TEST_P(AtmosphereEffectTest, hasNoHolesForRandomSettings) {
    std::mt19937 random(20);
    const auto between = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    // Of every order of magnitude, and often nothing at all.
    const auto amount = [&] {
        return between(0.0f, 1.0f) < 0.2f ? 0.0f : std::pow(10.0f, between(-4.0f, 3.0f));
    };
    const auto amounts = [&] { return ovMaths::Vector(amount(), amount(), amount()); };
    const auto effect = makeEffect();
    effect->setSunTransmittanceLutWidth(16);
    effect->setSunTransmittanceLutHeight(8);
    effect->setMultiScatteringLutWidth(8);
    effect->setMultiScatteringLutHeight(8);
    effect->setMultiScatteringLutSphereSampleCount(2);
    effect->setMultiScatteringLutMarchSampleCount(4);
    const auto depth = makeDepth([](unsigned int x, unsigned int y) {
        return x < 8 ? std::nullopt : std::optional(2.0 + x * y * y * y);
    });
    effect->setSourceDepthTexture(depth.get());
    ASSERT_TRUE(effect->load());
    constexpr unsigned int ROUNDS = 5000; // in each language
    for (unsigned int round = 0; round < ROUNDS; ++round) {
        effect->setPlanetAlbedo({between(0.0f, 1.0f), between(0.0f, 1.0f), between(0.0f, 1.0f)});
        effect->setRayleighScattering(amounts());
        effect->setRayleighExtinction(amounts());
        effect->setRayleighAbsorb(amounts());
        effect->setMieScattering(amounts());
        effect->setMieExtinction(amounts());
        effect->setMieAbsorb(amounts());
        effect->setOzoneScattering(amounts());
        effect->setOzoneExtinction(amounts());
        effect->setOzoneAbsorb(amounts());
        effect->setMieG(between(-0.93f, 0.93f));
        effect->setRayleighHeightDensityFactor(amount());
        effect->setMieHeightDensityFactor(amount());
        effect->setOzoneHeightDensityFactor(amount());
        effect->setDistanceFactor(std::pow(10.0f, between(-3.0f, 3.0f)));
        effect->setSunIlluminanceFactor(amount());
        effect->setSunAngularRadius(between(0.0f, 20.0f));
        effect->setSunPosition(sunAt(between(-90.0f, 90.0f), between(0.0f, 360.0f)));
        effect->refreshLuts();
        look(std::pow(10.0f, between(0.0f, 8.0f)) - 10.0f,
             {between(-1.0f, 1.0f), between(-1.0f, 1.0f), 1.0f});
        for (const FloatPixel& pixel : drawEffect(*effect, 6, 4).pixels)
            for (unsigned int i = 0; i < 3; ++i)
                ASSERT_TRUE(std::isfinite(pixel[i])) << round;
    }
}

TEST_P(AtmosphereEffectTest, paintsWhatIsNotANumberRed) {
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    look(1500.0f, {0.1f, 0.3f, 1.0f});
    FloatPicture picture = makeColors();
    picture.at(3, 4)[1] = NOT_A_NUMBER;
    const auto colors = makeTexture(picture);
    const auto effect = makeEffect();
    effect->setSourceColorTexture(colors.get());
    effect->setDebugNumericalInstability(true);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(drawEffect(*effect, WIDTH, HEIGHT).at(3, 4), (FloatPixel{1.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_NE(drawEffect(*effect, WIDTH, HEIGHT).at(10, 10)[1], 0.0f);
    effect->setSunPosition({NOT_A_NUMBER, 0.0f, 0.0f});
    for (const FloatPixel& pixel : drawEffect(*effect, WIDTH, HEIGHT).pixels)
        ASSERT_EQ(pixel, (FloatPixel{1.0f, 0.0f, 0.0f, 1.0f}));
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

// What the atmosphere draws, beside a slow reference.
#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>
#include <random>
#include <support/Numbers.h>

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

class AtmosphereEffectPictureTest : public AtmosphereFixture {
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

} // namespace

INSTANTIATE_TEST_SUITE_P(, AtmosphereEffectPictureTest, bothLanguages(), languageName);

TEST_P(AtmosphereEffectPictureTest, followsItsFormula) {
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

// Between an object and the sky beside it there is no depth: a mixed one would be a place far away, with the
// sky's colour behind the air.
TEST_P(AtmosphereEffectPictureTest, depthsOfTwoSurfacesAreNotMixed) {
    look(300.0f, {0.2f, 0.3f, 1.0f});
    const auto object = makeDepth([](unsigned int, unsigned int) { return 200.0; });
    const auto nothing = makeDepth([](unsigned int, unsigned int) { return std::nullopt; });
    const auto edge = makeDepth(
        [](unsigned int x, unsigned int) { return x < WIDTH / 2 ? std::optional(200.0) : std::nullopt; });
    const auto color = makeTexture(FloatPicture(1, 1, {0.3f, 0.2f, 0.1f, 1.0f}));
    const auto effect = makeEffect();
    effect->setSunPosition(sunAt(30.0));
    effect->setSourceColorTexture(color.get());
    effect->setSourceDepthTexture(object.get());
    ASSERT_TRUE(effect->load());
    // Three pixels of the target to a texel of the depth.
    const FloatPicture near = drawEffect(*effect, 3 * WIDTH, 3 * HEIGHT);
    effect->setSourceDepthTexture(nothing.get());
    const FloatPicture far = drawEffect(*effect, 3 * WIDTH, 3 * HEIGHT);
    effect->setSourceDepthTexture(edge.get());
    const FloatPicture both = drawEffect(*effect, 3 * WIDTH, 3 * HEIGHT);
    for (unsigned int y = 0; y < 3 * HEIGHT; ++y)
        for (unsigned int x = 0; x < 3 * WIDTH; ++x)
            EXPECT_EQ(both.at(x, y), (x < 3 * WIDTH / 2 ? near : far).at(x, y)) << x << " " << y;
}

TEST_P(AtmosphereEffectPictureTest, dimsAPictureByItsDepth) {
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

TEST_P(AtmosphereEffectPictureTest, endsWhereTheAirEnds) {
    look(1500.0f, {0.1f, 0.9f, 0.3f});
    const auto depth = makeDepth([](unsigned int x, unsigned int) { return 100.0 + 400.0 * x; });
    const auto effect = makeEffect();
    effect->setSourceDepthTexture(depth.get());
    effect->setDistanceFactor(1000.0f); // most of it lies in space
    effect->setSunPosition(sunAt(35.0));
    ASSERT_TRUE(effect->load());
    expectMarch(*effect, {});
}

TEST_P(AtmosphereEffectPictureTest, leavesTheSkyAloneWhenAsked) {
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

TEST_P(AtmosphereEffectPictureTest, showsTheSunWhereNothingStandsBeforeIt) {
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

TEST_P(AtmosphereEffectPictureTest, dimsWhereTheSunIsShadowed) {
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

TEST_P(AtmosphereEffectPictureTest, takesTheAirAtOnceAndTablesWhenAsked) {
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

TEST_P(AtmosphereEffectPictureTest, looksLikeASky) {
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

TEST_P(AtmosphereEffectPictureTest, hasNoHolesForRandomSettings) {
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

TEST_P(AtmosphereEffectPictureTest, paintsWhatIsNotANumberRed) {
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

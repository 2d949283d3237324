// Effects over scenes, beside slow references of what is known of the scene.
#include <veldris/scene/SceneEffects.h>

#include <cmath>
#include <limits>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereReference.h>
#include <veldris/scene/CornerScene.h>

namespace {

using ovMaths::Vector;
using ovMemory::String;

/// Tables of a few texels, which are drawn at once; metres stand for kilometres.
const String AIR = "atmosphere:sun-transmittance-lut-width=32,sun-transmittance-lut-height=16,"
                   "multi-scattering-lut-width=4,multi-scattering-lut-height=4,distance-factor=2000";

class SceneEffectsTest : public CornerScene {
protected:
    /// Compares what occlusion multiplied a picture by with the reference.
    void expectOcclusion(const String& reading, const ssaoReference::Settings& settings);
    /// Compares a picture in the air with the slow march. @param settings of the effect, in front of others
    void expectAir(const String& settings, bool withShadows);
};

/// The share of a picture that another one has, of its first three channels.
double shareOf(const FloatPixel& pixel, const FloatPixel& whole) {
    return (double(pixel[0]) + pixel[1] + pixel[2]) / (double(whole[0]) + whole[1] + whole[2]);
}

void SceneEffectsTest::expectOcclusion(const String& reading, const ssaoReference::Settings& settings) {
    using namespace ssaoReference;
    const bool ofDepth = reading == "depth";
    const FloatPicture plain = drawWith("");
    const FloatPicture drawn = drawWith("ssao:reads=" + reading +
                                        ",sampling-radius=0.6,strength=0.7,"
                                        "max-occlusion-distance=0.9,depth-bias=0.01");
    auto camera = ovGraphics::Camera::create(&_session.getGraphics());
    lookAtCorner(*camera);
    const View view = {camera.get(), SIDE, SIDE};
    // Kept: what is read from a depth buffer lies one near plane farther away.
    const double behind = ofDepth ? double(NEAR_PLANE) : 0.0;
    FloatPicture depths(SIDE, SIDE);
    for (unsigned int y = 0; y < SIDE; ++y)
        for (unsigned int x = 0; x < SIDE; ++x)
            depths.at(x, y)[0] = float(hit(view.directionOf(x, y)).z + behind);
    // Beyond the screen a depth buffer reads as the near plane, positions as nothing.
    const auto toZ = [&](double z) { return z == 0.0 && ofDepth ? 2.0 * behind : z; };
    const Depth depth = texelDepth(depths, 0, toZ);
    const auto positionAt = [&](unsigned int x, unsigned int y) {
        return scaled(view.directionOf(x, y), hit(view.directionOf(x, y)).z + behind);
    };
    unsigned int sure = 0;
    unsigned int wrong = 0;
    double darkest = 1.0;
    for (unsigned int y = 0; y < SIDE; ++y)
        for (unsigned int x = 0; x < SIDE; ++x) {
            const auto normal = reading == "positions-and-normals"
                                    ? std::optional(hit(view.directionOf(x, y)).normal)
                                    : normalFromNeighbors(positionAt, x, y, settings.maxDistance);
            bool isSure = true;
            const double open =
                normal ? openFraction(positionAt(x, y), *normal, view, depth, settings, isSure) : 1.0;
            if (!isSure)
                continue;
            ++sure;
            darkest = std::min(darkest, open);
            const double share = shareOf(drawn.at(x, y), plain.at(x, y));
            if (std::abs(share - open) > 1e-4 && ++wrong <= 3)
                ADD_FAILURE() << reading << " " << x << ", " << y << ": " << share << " and not " << open;
            EXPECT_EQ(drawn.at(x, y)[3], 1.0f);
        }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GT(sure, SIDE * SIDE * 3 / 4);
    EXPECT_LT(darkest, 0.8) << "the corner is darker than the plane";
}

void SceneEffectsTest::expectAir(const String& settings, bool withShadows) {
    using namespace atmosphereReference;
    constexpr float DISTANCE_FACTOR = 2000.0f; // metres stand for kilometres
    const FloatPicture plain = drawWith("");
    const auto picture = makePicture("atmosphere:" + settings + "distance-factor=2000");
    const FloatPicture drawn = draw(*picture);
    const auto effect = ovVeldris::AtmosphereEffect::create(&_session.getSystem());
    ASSERT_TRUE(effect->load());
    const FloatPicture sunTable = toFloats(*effect->getSunTransmittanceLut());
    const FloatPicture multiTable = toFloats(*effect->getMultiScatteringLut());
    Air air;
    air.info.distanceFactor = DISTANCE_FACTOR;
    const Three toSun = normalized(three(-*_settings.lightDirection));
    const Three eye = {0.0, EYE_HEIGHT, EYE_Z};
    auto camera = ovGraphics::Camera::create(&_session.getGraphics());
    lookAtCorner(*camera);
    const ssaoReference::View view = {camera.get(), SIDE, SIDE};
    unsigned int sure = 0;
    unsigned int wrong = 0;
    unsigned int shadowed = 0;
    for (unsigned int y = 0; y < SIDE; ++y)
        for (unsigned int x = 0; x < SIDE; ++x) {
            const ssaoReference::Point along = view.directionOf(x, y);
            const double z = hit(along).z;
            if (z == 0.0) { // no object: as it was, read between texels
                for (unsigned int i = 0; i < 3; ++i)
                    EXPECT_NEAR(drawn.at(x, y)[i], plain.at(x, y)[i], 1e-6f);
                continue;
            }
            const Three direction = normalized(Three{along[0], along[1], along[2]});
            const Ray ray = startRay(air, EYE_HEIGHT, direction, z + NEAR_PLANE);
            bool isSure = true;
            bool isShadowed = false;
            const Marched marched = march(air, ray, toSun, sunTable, multiTable, [&](double t) {
                if (!withShadows)
                    return 1.0;
                const Three place = eye + direction * (t * ray.toScene);
                // Where the way to the sun meets the plane of the wall's front. Rays end within the wall, as
                // depth counts from the near plane on.
                const bool isWithin = place[2] > WALL;
                const double height = place[1] + (isWithin ? 0.0 : toSun[1] / toSun[2] * (WALL - place[2]));
                const bool isBehind = height < double(_wallHeight) && place[1] > 0.0;
                // A texel of the map is a centimetre; what casts is pushed away from the light by some.
                isSure = isSure && std::abs(height - double(_wallHeight)) > 0.015 &&
                         std::abs(place[1]) > 0.03 && std::abs(place[2] - WALL) > 0.03;
                isShadowed = isShadowed || isBehind;
                return isBehind || place[1] < 0.0 ? 0.0 : 1.0;
            });
            if (!isSure)
                continue;
            ++sure;
            shadowed += isShadowed ? 1 : 0;
            const FloatPixel& before = plain.at(x, y);
            const Three light = Three{before[0], before[1], before[2]} * marched.left +
                                marched.scattered * double(air.info.sunIlluminanceFactor);
            bool isRight = drawn.at(x, y)[3] == 1.0f;
            for (unsigned int i = 0; i < 3; ++i)
                isRight = isRight && std::abs(drawn.at(x, y)[i] - light[i]) <= 5e-3 * light[i] + 1e-5;
            if (!isRight && ++wrong <= 3)
                ADD_FAILURE() << x << ", " << y << ": " << drawn.at(x, y)[0] << " " << drawn.at(x, y)[1]
                              << " " << drawn.at(x, y)[2] << " and not " << light[0] << " " << light[1] << " "
                              << light[2];
        }
    EXPECT_EQ(wrong, 0u);
    EXPECT_GT(sure, SIDE * SIDE / 9);
    EXPECT_EQ(shadowed > SIDE * SIDE / 20, withShadows);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, SceneEffectsTest, testing::Values("glsl", "hlsl"),
                         [](const auto& test) { return String(test.param); });

TEST_P(SceneEffectsTest, occlusionDarkensTheCornerByItsFormula) {
    const ssaoReference::Settings settings = {
        .radius = 0.6, .maxDistance = 0.9, .strength = 0.7, .bias = 0.01};
    for (const char* reading : {"positions-and-normals", "positions", "depth"})
        expectOcclusion(reading, settings);
}

TEST_P(SceneEffectsTest, airLiesOnTheSceneByItsFormula) {
    expectAir("", false);
}

TEST_P(SceneEffectsTest, shadowsStandInTheAir) {
    // The wall is low, and the sun behind it.
    _wallHeight = 1.5f;
    _wall->setScale({8.0f, _wallHeight, 1.0f});
    _settings.lightDirection = Vector(0.0f, -0.5f, -1.0f);
    expectAir("reads=depth-and-shadows,shadow-sampling-method=none,", true);
}

TEST_P(SceneEffectsTest, theSunMayStandElsewhere) {
    const FloatPicture asTheLight = drawWith(AIR);
    const FloatPicture written = drawWith(AIR + ",sun-position=0,1,-0.5");
    const FloatPicture elsewhere = drawWith(AIR + ",sun-position=1,0.1,0");
    EXPECT_EQ(asTheLight.pixels, written.pixels);
    EXPECT_NE(asTheLight.pixels, elsewhere.pixels);
}

TEST_P(SceneEffectsTest, theIdentityChangesNoPixel) {
    _wallHeight = 0.5f; // some background is to be seen
    _wall->setScale({8.0f, _wallHeight, 1.0f});
    for (const bool transparent : {false, true}) {
        _settings.transparent = transparent;
        const FloatPicture plain = drawWith("");
        for (const char* reading : {"depth", "positions", "positions-and-normals"})
            EXPECT_EQ(drawWith(String("ssao:strength=0,sampling-radius=0.6,reads=") + reading).pixels,
                      plain.pixels)
                << reading;
        const FloatPicture clear = drawWith(
            AIR + ",rayleigh-scattering=0,0,0,mie-scattering=0,0,0,mie-absorb=0,0,0,ozone-absorb=0,0,0");
        // The effect reads its picture between texels, with a sampler that rounds.
        for (std::size_t i = 0; i < plain.pixels.size(); ++i)
            for (unsigned int channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(clear.pixels[i][channel], plain.pixels[i][channel], 1e-6f) << i;
    }
}

TEST_P(SceneEffectsTest, samplesAreAveragedBehindTheEffects) {
    const String EFFECTS = String("ssao:sampling-radius=0.6;") + AIR + ";ssao:reads=positions-and-normals";
    _wallHeight = 0.5f;
    _wall->setScale({8.0f, _wallHeight, 1.0f});
    _settings.samples = 4;
    const FloatPicture averaged = drawWith(EFFECTS);
    _settings.samples = 1;
    _settings.width = _settings.height = 2 * SIDE;
    const FloatPicture samples = drawWith(EFFECTS);
    for (unsigned int y = 0; y < SIDE; ++y)
        for (unsigned int x = 0; x < SIDE; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel) {
                double sum = 0.0;
                for (unsigned int i = 0; i < 4; ++i)
                    sum += double(samples.at(2 * x + i % 2, 2 * y + i / 2)[channel]);
                EXPECT_EQ(averaged.at(x, y)[channel], float(0.25 * sum)) << x << ", " << y;
            }
}

TEST_P(SceneEffectsTest, effectsSeeTheWholePicture) {
    const String EFFECTS = String("ssao:sampling-radius=0.6;") + AIR;
    const FloatPicture whole = drawWith(EFFECTS);
    _settings.stripSamples = 1;
    EXPECT_EQ(drawWith(EFFECTS).pixels, whole.pixels);
}

TEST_P(SceneEffectsTest, effectsAreDrawnInTheirOrder) {
    // Air behind occlusion is light that nothing occludes.
    const FloatPicture airLast = drawWith(String("ssao:sampling-radius=0.6;") + AIR);
    const FloatPicture airFirst = drawWith(AIR + ";ssao:sampling-radius=0.6");
    const FloatPicture air = drawWith(AIR);
    const FloatPicture open = drawWith("ssao:sampling-radius=0.6,occlusion-drives-alpha=false");
    bool differ = false;
    for (std::size_t i = 0; i < air.pixels.size(); ++i) {
        EXPECT_NEAR(airFirst.pixels[i][0], air.pixels[i][0] * open.pixels[i][0], 1e-6f);
        EXPECT_GE(airLast.pixels[i][0], airFirst.pixels[i][0] - 1e-6f);
        differ = differ || airLast.pixels[i][0] > airFirst.pixels[i][0] + 1e-3f;
    }
    EXPECT_TRUE(differ);
}

TEST_P(SceneEffectsTest, occlusionAloneIsWhiteWhereNothingIs) {
    _wallHeight = 0.5f;
    _wall->setScale({8.0f, _wallHeight, 1.0f});
    const FloatPicture open =
        drawWith("ssao:reads=positions,occlusion-drives-alpha=false,sampling-radius=0.6");
    EXPECT_EQ(open.at(16, 2), (FloatPixel{1.0f, 1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(open.at(16, 30), (FloatPixel{1.0f, 1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(open.at(5, 20)[0], open.at(5, 20)[2]) << "grey";
}

TEST_P(SceneEffectsTest, alphaStaysTheCoverage) {
    _wallHeight = 0.5f;
    _wall->setScale({8.0f, _wallHeight, 1.0f});
    _settings.samples = 4;
    _settings.transparent = false;
    const FloatPicture opaque = drawWith(AIR + ";ssao:sampling-radius=0.6");
    _settings.transparent = true;
    const FloatPicture plain = drawWith("");
    for (const String& effects : {AIR + ";ssao:sampling-radius=0.6",
                                  AIR + ",only-scatter-on-objects=false;ssao:sampling-radius=0.6"}) {
        const FloatPicture drawn = drawWith(effects);
        for (std::size_t i = 0; i < plain.pixels.size(); ++i) {
            EXPECT_EQ(drawn.pixels[i][3], plain.pixels[i][3]);
            for (unsigned int channel = 0; channel < 3; ++channel) {
                const float coverage = plain.pixels[i][3];
                if (coverage > 0.0f && coverage < 1.0f)
                    continue;
                const float expected = coverage * opaque.pixels[i][channel];
                EXPECT_NEAR(drawn.pixels[i][channel], expected, 1e-6f) << effects;
            }
        }
    }
}

TEST_P(SceneEffectsTest, partsOfACoverageHaveTheirOwnColours) {
    // Glass alone covers by a quarter; air on it is air on its colour.
    _settings.transparent = true;
    const auto drawGlass = [&](const String& effects) {
        const auto picture = makePicture(effects);
        for (unsigned int i = picture->getSolid().getEntityCount(); i-- > 0;)
            picture->getSolid().getEntity(i)->setVisible(false);
        auto glass = ovVeldris::PbsMaterial::create(&_session.getSystem());
        glass->setReconstructBinormals(false);
        glass->setEmissiveColor({0.5f, 0.25f, 0.125f});
        glass->setAlpha(0.25f);
        picture->light(*glass);
        EXPECT_TRUE(glass->load());
        picture->getBlended().addEntity(_box.get(), glass->getShader(), _wall.get());
        return draw(*picture).at(SIDE / 2, SIDE / 2 - 3); // above the horizon
    };
    const FloatPixel plain = drawGlass("");
    EXPECT_NEAR(plain[3], 0.25f, 1e-6f);
    const FloatPixel kept = drawGlass(AIR);
    for (unsigned int channel = 0; channel < 4; ++channel)
        EXPECT_NEAR(kept[channel], plain[channel], 1e-6f) << "the depth buffer knows no glass";
    // Air of half a transmittance for every colour, which scatters nothing.
    const FloatPixel dimmed =
        drawGlass(AIR + ",only-scatter-on-objects=false,display-sun=false,"
                        "rayleigh-scattering=0,0,0,mie-scattering=0,0,0,mie-absorb=0,0,0,"
                        "ozone-absorb=2,2,2");
    EXPECT_NEAR(dimmed[3], 0.25f, 1e-6f);
    const double left = double(dimmed[0]) / plain[0];
    EXPECT_LT(left, 0.99);
    for (unsigned int channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(dimmed[channel], left * plain[channel], 1e-5f);
}

TEST_P(SceneEffectsTest, passesAreNamedAsWritten) {
    _session.getGraphics().setPassTimingEnabled(true);
    const auto namesOf = [&](const char* effects) {
        const auto picture = makePicture(effects);
        draw(*picture);
        String names;
        for (const ovGraphics::PassTiming& timing : picture->getTimings())
            names += String(timing.name) + ";";
        return names;
    };
    EXPECT_EQ(namesOf("ssao:strength=0.5;atmosphere"),
              "clear;scene;blended scene;ssao:strength=0.5;atmosphere;average of samples;check of samples;");
    EXPECT_EQ(namesOf("ssao:reads=positions,occlusion-drives-alpha=false"),
              "clear;positions and normals;clear;scene;blended scene;clear;"
              "ssao:reads=positions,occlusion-drives-alpha=false;average of samples;check of samples;");
    EXPECT_EQ(namesOf("atmosphere:reads=depth-and-shadows"),
              "clear;shadow;shadow;clear;scene;blended scene;atmosphere:reads=depth-and-shadows;"
              "average of samples;check of samples;");
    _settings.transparent = true;
    EXPECT_EQ(namesOf("atmosphere"), "clear;scene;blended scene;colours beside coverage;atmosphere;"
                                     "colours times coverage;average of samples;check of samples;");
    EXPECT_EQ(namesOf("ssao"), "clear;scene;blended scene;ssao;average of samples;check of samples;");
}

TEST_P(SceneEffectsTest, whatIsNoNumberBehindTheEffectsIsCounted) {
    drawWith(AIR + ",sun-position=0,0,0");
    EXPECT_NE(_warning.find(" components of the picture are not numbers and were made black."), _warning.npos)
        << _warning;
}

TEST_P(SceneEffectsTest, viewsWithoutPerspectiveHaveOcclusionOfPositionsAlone) {
    const auto picture = makePicture("ssao");
    picture->getCamera().setOrthographic(6.0f, 6.0f, NEAR_PLANE, FAR_PLANE);
    String error;
    EXPECT_EQ(picture->draw(_warning, error), nullptr);
    EXPECT_NE(error.find("'ssao' reads the depth of a perspective view"), error.npos) << error;
    const auto ofPositions = makePicture("ssao:reads=positions,sampling-radius=0.6,"
                                         "occlusion-drives-alpha=false");
    ofPositions->getCamera().setOrthographic(6.0f, 6.0f, NEAR_PLANE, FAR_PLANE);
    // The ground is a line: the wall is open but beside it.
    const FloatPicture open = draw(*ofPositions);
    EXPECT_EQ(open.at(16, 6)[0], 1.0f);
}

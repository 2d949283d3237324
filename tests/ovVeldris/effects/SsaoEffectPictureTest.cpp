// What ambient occlusion draws, beside a slow reference.
#include <limits>
#include <ovVeldris/effects/SsaoFixture.h>
#include <support/Numbers.h>

// Its names stay its own where the folder is compiled as one.
namespace ssaoEffectPictureTest {

using namespace ovVeldris;
using namespace ssaoReference;

namespace {

class SsaoEffectPictureTest : public SsaoFixture {};

double identity(double z) {
    return z;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, SsaoEffectPictureTest, bothLanguages(), languageName);

TEST_P(SsaoEffectPictureTest, followsItsFormulaWithPositionsAndNormals) {
    const FloatPicture positions = makePositions(roughZ);
    const FloatPicture normals = makeNormals();
    const auto positionTexture = makeTexture(positions);
    const auto normalTexture = makeTexture(normals);
    const Depth depth = texelDepth(positions, 2, identity);
    for (const Settings& settings :
         {Settings{},
          Settings{.radius = 0.4, .maxDistance = 0.21, .strength = 1.0, .bias = 0.03, .samples = 16},
          Settings{.radius = 1.3, .maxDistance = 2.0, .strength = 0.35, .bias = 0.0, .samples = 7},
          Settings{
              .radius = 2.5, .maxDistance = 10.0, .samples = 16}, // samples beyond the screen count nowhere
          Settings{.radius = 0.6, .strength = 0.0, .samples = 5}, Settings{.radius = 0.2, .samples = 1}}) {
        const auto effect = makeEffect(settings);
        effect->setEffectFromGBufferInfo(positionTexture.get(), normalTexture.get());
        expectOpenFractions(drawLoaded(*effect), [&](unsigned int x, unsigned int y, bool& isSure) {
            return openFraction(pointOf(positions.at(x, y)), normalized(pointOf(normals.at(x, y))), getView(),
                                depth, settings, isSure);
        });
    }
}

TEST_P(SsaoEffectPictureTest, findsNormalsBetweenNeighbors) {
    // A step in the middle, nothing in a corner, and uneven ground.
    const auto z = [](unsigned int x, unsigned int y) {
        if (x > 40 && y < 7)
            return 0.0;
        return x < 21 ? roughZ(x, y) : 2.5 + 0.002 * y * y + 0.01 * x;
    };
    const FloatPicture positions = makePositions(z);
    const auto texture = makeTexture(positions);
    const Settings settings = {.radius = 0.3, .maxDistance = 0.8};
    const auto effect = makeEffect(settings);
    effect->setEffectFromGBufferInfo(texture.get(), nullptr);
    const auto positionAt = [&](unsigned int x, unsigned int y) { return pointOf(positions.at(x, y)); };
    const Depth depth = texelDepth(positions, 2, identity);
    expectOpenFractions(
        drawLoaded(*effect), [&](unsigned int x, unsigned int y, bool& isSure) -> std::optional<double> {
            const auto normal = normalFromNeighbors(positionAt, x, y, settings.maxDistance);
            if (!normal || positions.at(x, y)[2] == 0.0f)
                return {};
            return openFraction(positionAt(x, y), *normal, getView(), depth, settings, isSure);
        });
}

TEST_P(SsaoEffectPictureTest, followsItsFormulaWithDepth) {
    const Settings settings = {
        .radius = 0.3, .maxDistance = 0.9, .strength = 0.6, .bias = 0.002, .samples = 12};
    const double nearPlane = getCamera().getNear();
    const double farPlane = getCamera().getFar();
    const ovMaths::Vector parameters = getCamera().getProjectionParameters();
    for (const bool isLinear : {false, true}) {
        FloatPicture buffer(WIDTH, HEIGHT);
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                buffer.at(x, y)[0] = float(isLinear ? roughZ(x, y) / farPlane : toDepth(roughZ(x, y)));
        const auto texture = makeTexture(buffer);
        // Kept: the linear depth is taken from the near plane on.
        const auto toZ = [&](double d) {
            return nearPlane + farPlane * (isLinear ? d : parameters.y / (d - parameters.x));
        };
        const Depth depth = texelDepth(buffer, 0, toZ);
        const auto positionAt = [&](unsigned int x, unsigned int y) {
            return scaled(getView().directionOf(x, y), toZ(buffer.at(x, y)[0]));
        };
        const auto effect = makeEffect(settings);
        effect->setEffectFromDepthInfo(texture.get(), isLinear);
        expectOpenFractions(
            drawLoaded(*effect), [&](unsigned int x, unsigned int y, bool& isSure) -> std::optional<double> {
                const auto normal = normalFromNeighbors(positionAt, x, y, settings.maxDistance);
                if (!normal)
                    return {};
                return openFraction(positionAt(x, y), *normal, getView(), depth, settings, isSure);
            });
    }
}

TEST_P(SsaoEffectPictureTest, takesNearAndFarOfTheCameraThatRenders) {
    auto rendering = ovGraphics::Camera::create(&getGraphics());
    rendering->setPerspective(0.4f, 1.0f, 0.25f, 8.0f);
    getGraphics().getCameraManager()->setActiveRenderCamera(rendering.get());
    FloatPicture buffer(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            buffer.at(x, y)[0] = float(roughZ(x, y) / 8.0);
    const auto texture = makeTexture(buffer);
    const Settings settings = {.radius = 0.3};
    const auto effect = makeEffect(settings);
    effect->setEffectFromDepthInfo(texture.get(), true);
    const auto toZ = [](double d) { return 0.25 + 8.0 * d; };
    const Depth depth = texelDepth(buffer, 0, toZ);
    const auto positionAt = [&](unsigned int x,
                                unsigned int y) { // directions are those of the effect's camera
        return scaled(getView().directionOf(x, y), toZ(buffer.at(x, y)[0]));
    };
    expectOpenFractions(drawLoaded(*effect),
                        [&](unsigned int x, unsigned int y, bool& isSure) -> std::optional<double> {
                            const auto normal = normalFromNeighbors(positionAt, x, y, settings.maxDistance);
                            return normal ? std::optional(openFraction(positionAt(x, y), *normal, getView(),
                                                                       depth, settings, isSure))
                                          : std::nullopt;
                        });
}

TEST_P(SsaoEffectPictureTest, leavesTheFarPlaneAsItWas) {
    // near + depth * far is exactly far: a half and 0.5 of 1.
    getCamera().setPerspective(1.1f, 1.5f, 0.5f, 1.0f);
    FloatPicture buffer(WIDTH, HEIGHT, {0.25f, 0.0f, 0.0f, 0.0f});
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 24; x < WIDTH; ++x)
            buffer.at(x, y)[0] = 0.5f;
    const auto texture = makeTexture(buffer);
    const auto effect = makeEffect();
    effect->setEffectFromDepthInfo(texture.get(), true);
    const FloatPicture drawn = drawLoaded(*effect);
    EXPECT_EQ(drawn.at(40, 5), UNTOUCHED);
    EXPECT_EQ(drawn.at(24, 31), UNTOUCHED);
    EXPECT_EQ(drawn.at(10, 5)[0], 1.0f);
    // Kept: what a cleared depth buffer says lies beyond the far plane, and is drawn.
    const auto cleared = makeTexture(FloatPicture(WIDTH, HEIGHT, {1.0f, 0.0f, 0.0f, 0.0f}));
    effect->setEffectFromDepthInfo(cleared.get(), true);
    EXPECT_NE(draw(*effect->getShader(), WIDTH, HEIGHT).at(20, 20), UNTOUCHED);
}

TEST_P(SsaoEffectPictureTest, writesAlphaWhenOcclusionDrivesIt) {
    const auto positions = makeTexture(makePositions(roughZ));
    const auto normals = makeTexture(makeNormals());
    const auto effect = makeEffect({.radius = 0.4});
    effect->setEffectFromGBufferInfo(positions.get(), normals.get());
    FloatPicture expected = drawLoaded(*effect);
    for (FloatPixel& pixel : expected.pixels)
        pixel[3] = pixel[0];
    effect->setOcclusionDrivesAlpha(true);
    EXPECT_EQ(draw(*effect->getShader(), WIDTH, HEIGHT).at(3, 4)[3], 1.0f); // waits for the load
    EXPECT_TRUE(picturesAreIdentical("ssao_alpha", drawLoaded(*effect), expected));
}

TEST_P(SsaoEffectPictureTest, takesNumbersAndCamerasAtOnce) {
    const auto positions = makeTexture(makePositions(roughZ));
    const auto normals = makeTexture(makeNormals());
    const auto other = ovGraphics::Camera::create(&getGraphics());
    other->setPerspective(0.6f, 1.0f, 0.1f, 9.0f);
    const Settings settings = {.radius = 0.45, .maxDistance = 0.3, .strength = 0.5};
    const auto fresh = makeEffect(settings);
    fresh->setCamera(other.get());
    fresh->setEffectFromGBufferInfo(positions.get(), normals.get());
    const FloatPicture expected = drawLoaded(*fresh);

    const auto effect = makeEffect();
    effect->setEffectFromGBufferInfo(positions.get(), normals.get());
    const FloatPicture before = drawLoaded(*effect);
    apply(settings, *effect);
    effect->setCamera(other.get());
    EXPECT_TRUE(picturesAreIdentical("ssao_live", draw(*effect->getShader(), WIDTH, HEIGHT), expected));
    EXPECT_FALSE(before.pixels == expected.pixels);

    // These wait: another bias and number of samples would be other programs.
    effect->setDepthBias(0.2f);
    effect->setKernelSampleCount(2);
    EXPECT_TRUE(picturesAreIdentical("ssao_waits", draw(*effect->getShader(), WIDTH, HEIGHT), expected));
    EXPECT_FALSE(drawLoaded(*effect).pixels == expected.pixels);
}

TEST_P(SsaoEffectPictureTest, takesDirectionsOfANewCameraAtOnce) {
    const auto texture = makeTexture(FloatPicture(WIDTH, HEIGHT, {0.1f, 0.0f, 0.0f, 0.0f}));
    const auto other = ovGraphics::Camera::create(&getGraphics());
    other->setPerspective(2.0f, 1.0f, 0.5f, 50.0f);
    const Settings settings = {.radius = 2.0, .maxDistance = 6.0};
    const auto fresh = makeEffect(settings);
    fresh->setCamera(other.get());
    fresh->setEffectFromDepthInfo(texture.get(), true);
    const FloatPicture expected = drawLoaded(*fresh);
    const auto effect = makeEffect(settings);
    effect->setEffectFromDepthInfo(texture.get(), true);
    const FloatPicture before = drawLoaded(*effect);
    effect->setCamera(other.get());
    EXPECT_TRUE(picturesAreIdentical("ssao_camera", draw(*effect->getShader(), WIDTH, HEIGHT), expected));
    EXPECT_FALSE(before.pixels == expected.pixels);
}

TEST_P(SsaoEffectPictureTest, darkensCornersAsTheirGeometryDoes) {
    const double ground = -1.0;
    const Scene plane = [&](const Point& d) { return hitPlane(d, {0.0, ground, 0.0}, {0.0, 1.0, 0.0}); };
    const Scene corner = [&](const Point& d) {
        return nearer(plane(d), hitPlane(d, {0.0, 0.0, 5.0}, {0.0, 0.0, -1.0}));
    };
    const Scene sphereOnPlane = [&](const Point& d) {
        return nearer(corner(d), hitSphere(d, {0.3, ground + 0.6, 3.6}, 0.6));
    };
    struct Case {
        const char* name;
        const Scene& scene;
        double darkest; ///< open fraction, at most and hardly less
    };
    const Settings settings = {.radius = 0.5, .maxDistance = 1.0, .strength = 1.0, .bias = 0.04};
    constexpr double NEAR_ENOUGH = 5.5;
    constexpr unsigned int SCALE = 8;
    constexpr unsigned int WIDE = SCALE * WIDTH;
    constexpr unsigned int HIGH = SCALE * HEIGHT;
    const View view = {&getCamera(), WIDE, HIGH};
    for (const Case& row :
         {Case{"plane", plane, 1.0}, Case{"corner", corner, 0.5}, Case{"sphere", sphereOnPlane, 0.1}}) {
        FloatPicture positions(WIDE, HIGH);
        FloatPicture normals(WIDE, HIGH);
        FloatPicture expected(WIDE, HIGH, UNTOUCHED);
        const Depth depth = [&](double u, double v, bool&) { return row.scene(view.directionAt(u, v)).z; };
        bool isSure = true;
        for (unsigned int y = 0; y < HIGH; ++y)
            for (unsigned int x = 0; x < WIDE; ++x) {
                const Point direction = view.directionOf(x, y);
                const Hit hit = row.scene(direction);
                positions.at(x, y) = pixelOf(scaled(direction, hit.z));
                normals.at(x, y) = pixelOf(hit.normal);
                if (hit.z == 0.0)
                    continue;
                const float open =
                    float(openFraction(scaled(direction, hit.z), hit.normal, view, depth, settings, isSure));
                expected.at(x, y) = {open, open, open, 1.0f};
            }
        const auto positionTexture = makeTexture(positions);
        const auto normalTexture = makeTexture(normals);
        const auto effect = makeEffect(settings);
        effect->setEffectFromGBufferInfo(positionTexture.get(), normalTexture.get());
        ASSERT_TRUE(effect->load());
        const FloatPicture drawn = draw(*effect->getShader(), WIDE, HIGH);
        // The exact scene and its picture differ where a sample falls beside an edge, and outside the screen,
        // where the picture knows nothing.
        EXPECT_LT(comparePictures(drawn, expected).mean, 0.01) << row.name;
        // Near the camera, where texels are small beside the bias.
        const auto darkestOf = [&](const FloatPicture& picture) {
            float darkest = 1.0f;
            for (unsigned int y = HIGH / 2; y < HIGH; ++y)
                for (unsigned int x = 0; x < WIDE; ++x)
                    if (row.scene(view.directionOf(x, y)).z < NEAR_ENOUGH)
                        darkest = std::min(darkest, picture.at(x, y)[0]);
            return darkest;
        };
        EXPECT_NEAR(darkestOf(drawn), darkestOf(expected), 2.01 / settings.samples) << row.name;
        EXPECT_LE(darkestOf(drawn), row.darkest) << row.name;
        EXPECT_GE(darkestOf(drawn), row.darkest == 1.0 ? 1.0 : row.darkest - 0.2) << row.name;
    }
}

TEST_P(SsaoEffectPictureTest, staysBetweenNothingAndOne) {
    // A well: every sample is occluded, for numbers of samples whose inverse is rounded.
    FloatPicture positions(WIDTH, HEIGHT, {0.0f, 0.0f, 2.0f, 1.0f});
    positions.at(20, 10) = {0.0f, 0.0f, 2.9f, 1.0f};
    const FloatPicture normals(WIDTH, HEIGHT, {0.0f, 0.0f, 1.0f, 0.0f});
    const auto positionTexture = makeTexture(positions);
    const auto normalTexture = makeTexture(normals);
    for (unsigned int samples = 1; samples <= 16; ++samples)
        for (const float strength : {0.0f, 0.001f, 1.0f}) {
            const auto effect = makeEffect({.radius = 0.05, .strength = strength, .samples = samples});
            effect->setEffectFromGBufferInfo(positionTexture.get(), normalTexture.get());
            const float drawn = drawLoaded(*effect).at(20, 10)[0];
            if (strength == 0.0f) {
                EXPECT_EQ(drawn, 1.0f);
            } else { // the last sixteenth may be left by a rounding: 1e-7 to the power of 0.001 is 0.98
                EXPECT_TRUE(drawn >= 0.0f && drawn <= (strength < 1.0f ? 0.99f : 1e-6f)) << drawn;
            }
        }
}

TEST_P(SsaoEffectPictureTest, drawsNothingWithoutAScene) {
    const auto effect = makeEffect();
    const auto positions = makeTexture(FloatPicture(WIDTH, HEIGHT));
    effect->setEffectFromGBufferInfo(positions.get(), nullptr);
    for (const FloatPixel& pixel : drawLoaded(*effect).pixels)
        ASSERT_EQ(pixel, UNTOUCHED);
    // Without any texture, and without a camera, it draws something and harms nothing.
    SsaoEffect bare(getSystem());
    getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
    drawLoaded(bare);
}

TEST_P(SsaoEffectPictureTest, survivesNumbersThatMeanNothing) {
    FloatPicture positions = makePositions(roughZ);
    for (unsigned int i = 0; i < 12; ++i)
        positions.at(4 * i, 2 * i) = {INFINITE, -INFINITE, NOT_A_NUMBER, 1.0f};
    const auto positionTexture = makeTexture(positions);
    const auto effect = makeEffect();
    effect->setEffectFromGBufferInfo(positionTexture.get(), nullptr);
    for (const float number : {0.0f, INFINITE, -INFINITE, NOT_A_NUMBER, std::numeric_limits<float>::max()}) {
        effect->setSamplingRadius(number);
        effect->setMaxOcclusionDistance(number);
        effect->setStrength(number);
        drawLoaded(*effect);
    }
    effect->setDepthBias(INFINITE); // no number that a shader could hold
    EXPECT_FALSE(effect->load());
    EXPECT_NE(getLog().getText().find("Could not load the ssao effect program for ''"),
              ovMemory::String::npos);
}

} // namespace ssaoEffectPictureTest

#include <ovVeldris/complexEffects/DofComplexEffect.h>

#include <cmath>
#include <limits>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Camera.h>
#include <ovImages/Half.h>
#include <ovVeldris/complexEffects/ComplexEffectFixture.h>
#include <ovVeldris/complexEffects/DofReference.h>

// Its names stay its own where the folder is compiled as one.
namespace dofComplexEffectPictureTest {

using namespace ovVeldris;
using dofReference::Dof;
using dofReference::Settings;

namespace {

// One more than a multiple of four: then no place of a small pixel lies on the border of two texels.
constexpr unsigned int WIDTH = 33;
constexpr unsigned int HEIGHT = 25;

// The fade factors are half floats, three times rounded, and mix colours of 0 to 1.
constexpr PictureLimits LIMITS = {.worst = 1.5e-3f, .mean = 1.5e-4f};

const Settings SCENE = {.cameraNear = 0.5,
                        .cameraFar = 200.0,
                        .nearPlane = 12.0,
                        .focus = 45.0,
                        .thickness = 0.0,
                        .farPlane = 90.0,
                        .strength = 3};

class DofComplexEffectPictureTest : public ComplexEffectFixture {
protected:
    void useLanguage(ovGraphics::SHADER_LANGUAGE language) override {
        _forget();
        ComplexEffectFixture::useLanguage(language);
        _camera = ovGraphics::Camera::create(&getGraphics());
        _camera->setPerspective(1.0f, 1.0f, float(SCENE.cameraNear), float(SCENE.cameraFar));
    }
    void TearDown() override {
        _forget();
        ComplexEffectFixture::TearDown();
    }

    ovMemory::UniquePtr<DofComplexEffect> makeDof(const Settings& settings, ovGraphics::Texture& source,
                                                  ovGraphics::Texture& depth, bool isLinear) {
        auto dof = DofComplexEffect::create(getSystem());
        dof->setName("lens");
        dof->setCompositorNode(&getNode());
        dof->setSourceTexture(&source);
        dof->setSourceDepth(&depth);
        dof->setCamera(_camera.get());
        dof->setNearPlaneDistance(float(settings.nearPlane));
        dof->setFocalPlaneDistance(float(settings.focus));
        dof->setFocalPlaneThickness(float(settings.thickness));
        dof->setFarPlaneDistance(float(settings.farPlane));
        dof->setBlurStrength(settings.strength);
        dof->setLinearDepth(isLinear);
        EXPECT_TRUE(dof->load()) << getLog().getText() << getGraphicsLogger().getText();
        return dof;
    }

    /// The passes stay in the node until the next call.
    FloatPicture drawDof(const Settings& settings, const FloatPicture& source,
                         const FloatPicture& linearDepth) {
        _dof.reset();
        _source = makeTexture(source);
        _depth = makeTexture(linearDepth);
        _dof = makeDof(settings, *_source, *_depth, true);
        return drawNode(*_dof->getOutputTexture());
    }

    /// A target of the first pass as floats.
    FloatPicture readPlane(unsigned int plane) {
        const auto image = getNode().getOperationsBlock(0)->getTarget(plane)->convertToImage();
        FloatPicture picture(image->getWidth(), image->getHeight());
        for (unsigned int y = 0; y < picture.height; ++y)
            for (unsigned int x = 0; x < picture.width; ++x)
                for (unsigned int i = 0; i < 4; ++i)
                    picture.at(x, y)[i] = image->getComponent(x, y, i);
        return picture;
    }

    /// What a perspective camera writes where the linear depth is this.
    float toDepth(float linear) const {
        const double a = SCENE.cameraFar / (SCENE.cameraFar - SCENE.cameraNear);
        return float(a - a * SCENE.cameraNear / (double(linear) * SCENE.cameraFar));
    }

    ovMemory::UniquePtr<ovGraphics::Camera> _camera;

private:
    void _forget() {
        _dof.reset();
        _source.reset();
        _depth.reset();
        _camera.reset();
    }

    ovMemory::UniquePtr<ovGraphics::Texture> _source;
    ovMemory::UniquePtr<ovGraphics::Texture> _depth;
    ovMemory::UniquePtr<DofComplexEffect> _dof;
};

FloatPixel pixelOfZ(double z) {
    return {float((z - SCENE.cameraNear) / (SCENE.cameraFar - SCENE.cameraNear)), 0.0f, 0.0f, 1.0f};
}

/// A ramp from before the near plane to beyond the far one, with a near and a far thing in the middle.
FloatPicture makeDepth(unsigned int width, unsigned int height) {
    FloatPicture depth(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x) {
            double z = 4.0 + 110.0 * x / width + 9.0 * std::sin(0.9 * y);
            if (x > 20 && x < 27 && y > 3 && y < 11)
                z = 8.0 + 0.3 * x;
            if (x > 5 && x < 16 && y > 14 && y < 23)
                z = 120.0 + y;
            depth.at(x, y) = pixelOfZ(z);
        }
    return depth;
}

FloatPicture constantDepth(double z) {
    return {WIDTH, HEIGHT, pixelOfZ(z)};
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, DofComplexEffectPictureTest, bothLanguages(), languageName);

TEST_P(DofComplexEffectPictureTest, ShrinksIntoFieldsAndFade) {
    const FloatPicture source = makeNoisePicture(WIDTH, HEIGHT);
    const FloatPicture depth = makeDepth(WIDTH, HEIGHT);
    for (const double thickness : {0.0, 25.0}) {
        Settings settings = SCENE;
        settings.thickness = thickness;
        drawDof(settings, source, depth);
        const auto expected = Dof(source, depth, settings).shrink();
        // Weights of texels are fractions of places, which are known to 24 bits.
        EXPECT_TRUE(picturesMatch("dof_near", readPlane(0), expected[0], {.worst = 2e-5f, .mean = 2e-6f}));
        EXPECT_TRUE(picturesMatch("dof_far", readPlane(1), expected[1], {.worst = 2e-5f, .mean = 2e-6f}));
        EXPECT_TRUE(picturesMatch("dof_fade", readPlane(2), expected[2], {.worst = 5e-4f, .mean = 1e-4f}))
            << "half floats, which the rasteriser cuts off";
    }
}

TEST_P(DofComplexEffectPictureTest, DrawsLikeTheReference) {
    const FloatPicture source = makeNoisePicture(WIDTH, HEIGHT);
    const FloatPicture depth = makeDepth(WIDTH, HEIGHT);
    for (const auto& [thickness, strength] : {std::pair(0.0, 3u), {25.0, 2u}, {8.0, 6u}}) {
        Settings settings = SCENE;
        settings.thickness = thickness;
        settings.strength = strength;
        EXPECT_TRUE(picturesMatch("dof_" + std::to_string(strength), drawDof(settings, source, depth),
                                  Dof(source, depth, settings).draw(), LIMITS))
            << thickness;
    }
}

TEST_P(DofComplexEffectPictureTest, ReadsThePerspectiveDepthOfItsCamera) {
    const FloatPicture source = makeNoisePicture(WIDTH, HEIGHT);
    const FloatPicture linear = makeDepth(WIDTH, HEIGHT);
    const auto texture = makeTexture(source);
    const auto depth =
        makeTexture(linear.map([&](const FloatPixel& pixel) { return FloatPixel{toDepth(pixel[0])}; }));
    const auto dof = makeDof(SCENE, *texture, *depth, false);
    const FloatPicture expected = Dof(source, linear, SCENE).draw();
    // A float of depth far away is some thousandths of a distance.
    constexpr PictureLimits PERSPECTIVE_LIMITS = {.worst = 3e-3f, .mean = 1.5e-4f};
    EXPECT_TRUE(picturesMatch("dof_depth", drawNode(*dof->getOutputTexture()), expected, PERSPECTIVE_LIMITS));

    // Without a camera of its own the one that renders counts.
    dof->setCamera(nullptr);
    getGraphics().getCameraManager()->setActiveRenderCamera(_camera.get());
    EXPECT_TRUE(
        picturesMatch("dof_rendering", drawNode(*dof->getOutputTexture()), expected, PERSPECTIVE_LIMITS));
    getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
}

TEST_P(DofComplexEffectPictureTest, NothingInTheSharpZoneIsTouched) {
    FloatPicture source = makeNoisePicture(WIDTH, HEIGHT);
    for (FloatPixel& pixel : source.pixels)
        pixel[3] = 0.25f; // becomes 1
    Settings settings = SCENE;
    settings.thickness = 10.0;
    for (const double z : {40.1, 45.0, 49.9}) {
        const FloatPicture drawn = drawDof(settings, source, constantDepth(z));
        EXPECT_TRUE(picturesMatch("dof_sharp", drawn, source.map([](const FloatPixel& p) {
            return FloatPixel{p[0], p[1], p[2], 1.0f};
        }),
                                  {.worst = 1e-5f, .mean = 1e-6f}));
        for (const FloatPixel& pixel : readPlane(0).pixels)
            EXPECT_EQ(pixel, FloatPixel{});
    }
    // Its ends are outside, and a zone without depth holds nothing: what is there goes into the near field.
    settings.thickness = 0.0;
    settings.cameraNear = 0.0;
    drawDof(settings, source, constantDepth(45.0));
    for (const FloatPixel& pixel : readPlane(0).pixels)
        EXPECT_EQ(pixel[3], 1.0f);
}

TEST_P(DofComplexEffectPictureTest, AConstantStaysWhatItIsAtEveryDistance) {
    const FloatPicture source(WIDTH, HEIGHT, {0.3f, 0.7f, 5.0f, 1.0f});
    for (const double z : {3.0, 12.5, 30.0, 45.0, 70.0, 89.0, 95.0, 150.0})
        EXPECT_TRUE(picturesMatch("dof_constant", drawDof(SCENE, source, constantDepth(z)), source,
                                  {.worst = 1e-5f, .mean = 1e-5f}))
            << z;
}

TEST_P(DofComplexEffectPictureTest, FarPixelsThatTheSmallPictureMissedAreNoNumbers) {
    FloatPicture depth = constantDepth(60.0);
    depth.at(16, 3) = pixelOfZ(150.0); // no texel of the small picture looks there
    const FloatPicture source(WIDTH, HEIGHT, {0.5f, 0.5f, 0.5f, 1.0f});
    const FloatPicture drawn = drawDof(SCENE, source, depth);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            EXPECT_EQ(std::isnan(drawn.at(x, y)[0]), x == 16 && y == 3) << x << ", " << y;
}

TEST_P(DofComplexEffectPictureTest, AtExactQuartersTheTexelIsOneOfTheMiddleFour) {
    const FloatPicture source = makeNoisePicture(16, 12);
    const auto texture = makeTexture(source);
    const auto depth = makeTexture(FloatPicture(16, 12, pixelOfZ(5.0)));
    const auto dof = makeDof(SCENE, *texture, *depth, true);
    EXPECT_TRUE(frame());
    const FloatPicture shrunk = readPlane(0);
    for (unsigned int y = 0; y < 3; ++y)
        for (unsigned int x = 0; x < 4; ++x) {
            // The fraction of the place, a whole number, is 0 or nearly 1, as the device rounds. Mesa's
            // software rasteriser takes either, by the pixel.
            float nearest = 1.0f;
            for (const unsigned int dy : {1u, 2u})
                for (const unsigned int dx : {1u, 2u}) {
                    const FloatPixel& texel = source.at(4 * x + dx, 4 * y + dy);
                    float difference = 0.0f;
                    for (std::size_t i = 0; i < 3; ++i)
                        difference = std::max(difference, std::abs(shrunk.at(x, y)[i] - texel[i]));
                    nearest = std::min(nearest, difference);
                }
            EXPECT_LT(nearest, 1e-5f) << x << ", " << y;
        }
}

TEST_P(DofComplexEffectPictureTest, DrawsPicturesOfLessThanFourPixels) {
    for (const auto& [width, height] : {std::pair(1u, 1u), {3u, 2u}, {2u, 7u}}) {
        const FloatPicture source(width, height, {0.25f, 0.5f, 0.75f, 1.0f});
        for (const double z : {5.0, 30.0, 70.0, 150.0})
            EXPECT_TRUE(picturesMatch("dof_tiny",
                                      drawDof(SCENE, source, FloatPicture(width, height, pixelOfZ(z))),
                                      source, {.worst = 1e-5f, .mean = 1e-5f}))
                << width << " x " << height << " at " << z;
    }
}

TEST_P(DofComplexEffectPictureTest, BothLanguagesDrawTheSameBits) {
    const FloatPicture source = makeNoisePicture(WIDTH, HEIGHT);
    const FloatPicture depth = makeDepth(WIDTH, HEIGHT);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Settings reversed = SCENE;
    reversed.nearPlane = 90.0;
    reversed.farPlane = 12.0;
    Settings equal = SCENE;
    equal.nearPlane = equal.focus = equal.farPlane = 60.0;
    Settings noNear = SCENE;
    noNear.nearPlane = nan;
    Settings noFocus = SCENE;
    noFocus.focus = nan;
    noFocus.thickness = nan;
    Settings noFar = SCENE;
    noFar.farPlane = nan;
    for (const Settings& settings : {SCENE, reversed, equal, noNear, noFocus, noFar}) {
        const FloatPicture drawn = drawDof(settings, source, depth);
        useLanguage(getOtherLanguage());
        EXPECT_TRUE(picturesAreIdentical("dof_languages", drawDof(settings, source, depth), drawn))
            << settings.nearPlane << " " << settings.focus << " " << settings.farPlane;
        useLanguage(GetParam());
    }
}

TEST_P(DofComplexEffectPictureTest, PlanesInAnyOrderFollowTheFormulas) {
    const FloatPicture source = makeNoisePicture(WIDTH, HEIGHT);
    const FloatPicture depth = makeDepth(WIDTH, HEIGHT);
    Settings reversed = SCENE;
    reversed.nearPlane = 90.0;
    reversed.farPlane = 12.0;
    Settings equal = SCENE;
    equal.nearPlane = equal.focus = equal.farPlane = 60.0;
    for (const Settings& settings : {reversed, equal})
        EXPECT_TRUE(picturesMatch("dof_order", drawDof(settings, source, depth),
                                  Dof(source, depth, settings).draw(), LIMITS))
            << settings.nearPlane;
}

TEST_P(DofComplexEffectPictureTest, DrawsWithoutWhatItReads) {
    auto texture = makeTexture(makeNoisePicture(WIDTH, HEIGHT));
    auto depth = makeTexture(makeDepth(WIDTH, HEIGHT));
    const auto dof = makeDof(SCENE, *texture, *depth, false);
    depth.reset();
    EXPECT_TRUE(frame());
    _camera.reset();
    EXPECT_TRUE(frame()) << "there is no camera at all";
    texture.reset();
    EXPECT_TRUE(frame());
    EXPECT_EQ(dof->getSourceTexture(), nullptr);
    EXPECT_EQ(dof->getSourceDepth(), nullptr);
    EXPECT_EQ(dof->getCamera(), nullptr);
    ASSERT_TRUE(dof->load());
    EXPECT_TRUE(frame());
    expectNothingButWholeNumbers();
}

TEST_P(DofComplexEffectPictureTest, FollowsTheSizeOfANewSource) {
    const FloatPicture small = makeNoisePicture(17, 9);
    const auto smallTexture = makeTexture(small);
    const auto smallDepth = makeTexture(makeDepth(17, 9));
    const FloatPicture large = makeNoisePicture(WIDTH, HEIGHT);
    const auto largeTexture = makeTexture(large);
    const auto largeDepth = makeTexture(makeDepth(WIDTH, HEIGHT));
    const auto dof = makeDof(SCENE, *smallTexture, *smallDepth, true);
    EXPECT_TRUE(frame());
    dof->setSourceTexture(largeTexture.get());
    dof->setSourceDepth(largeDepth.get());
    EXPECT_TRUE(picturesMatch("dof_resized", drawNode(*dof->getOutputTexture()),
                              Dof(large, makeDepth(WIDTH, HEIGHT), SCENE).draw(), LIMITS));
}

} // namespace dofComplexEffectPictureTest

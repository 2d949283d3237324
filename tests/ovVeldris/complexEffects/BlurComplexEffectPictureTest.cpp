#include <ovVeldris/complexEffects/BlurComplexEffect.h>

#include <ovVeldris/complexEffects/BlurKernel.h>
#include <ovVeldris/complexEffects/BlurReference.h>
#include <ovVeldris/complexEffects/ComplexEffectFixture.h>

// Its names stay its own where the folder is compiled as one.
namespace blurComplexEffectPictureTest {

using namespace ovVeldris;
using blurReference::Settings;

namespace {

// Six decimals of each weight and offset, and places between texels that the device knows to 24 bits.
constexpr PictureLimits LIMITS = {.worst = 2e-5f, .mean = 3e-6f};

class BlurComplexEffectPictureTest : public ComplexEffectFixture {
protected:
    ovMemory::UniquePtr<BlurComplexEffect> makeBlur(ovGraphics::Texture& source, const Settings& settings) {
        auto blur = BlurComplexEffect::create(getSystem());
        blur->setName("soft");
        blur->setCompositorNode(&getNode());
        blur->setSourceTexture(&source);
        blur->setKernelRadius(settings.radius);
        blur->setAlphaEncodesBlurPlanes(settings.planes);
        blur->setPreserveAlpha(settings.preservesAlpha);
        EXPECT_TRUE(blur->load()) << getLog().getText() << getGraphicsLogger().getText();
        return blur;
    }

    FloatPicture drawBlur(const FloatPicture& source, const Settings& settings) {
        const auto texture = makeTexture(source);
        const auto blur = makeBlur(*texture, settings);
        return drawNode(*blur->getOutputTexture());
    }

    void expectReference(const FloatPicture& source, const Settings& settings) {
        EXPECT_TRUE(picturesMatch("blur_" + std::to_string(settings.radius), drawBlur(source, settings),
                                  blurReference::blur(source, settings), LIMITS))
            << settings.radius;
    }
};

/// Three planes with ragged borders, lines of one pixel, and a pixel of a plane of its own.
FloatPicture makePlanes() {
    FloatPicture picture = makeNoisePicture(27, 22);
    for (unsigned int y = 0; y < picture.height; ++y)
        for (unsigned int x = 0; x < picture.width; ++x) {
            const unsigned int border = 9 + (y * 5) % 4;
            float alpha = x < border ? 0.25f : 0.75f;
            if (x == 20 || y == 16)
                alpha = 0.5f;
            if (x == 4 && y == 7)
                alpha = 1.0f;
            picture.at(x, y)[3] = alpha;
        }
    return picture;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, BlurComplexEffectPictureTest, bothLanguages(), languageName);

TEST_P(BlurComplexEffectPictureTest, IsAConvolution) {
    const FloatPicture source = makeNoisePicture(29, 19);
    const Settings CASES[] = {
        {.radius = 0}, {.radius = 0, .preservesAlpha = true}, {.radius = 1},
        {.radius = 2}, {.radius = 5, .preservesAlpha = true}, {.radius = 8, .preservesAlpha = true},
    };
    for (const Settings& settings : CASES)
        expectReference(source, settings);
}

TEST_P(BlurComplexEffectPictureTest, IsAConvolutionFarBeyondTheEdges) {
    for (const unsigned int radius : {64u, MAX_BLUR_RADIUS})
        EXPECT_TRUE(picturesMatch("blur_far", drawBlur(makeNoisePicture(11, 7), {.radius = radius}),
                                  blurReference::blur(makeNoisePicture(11, 7), {.radius = radius}),
                                  // Half a millionth a weight, of hundreds.
                                  {.worst = 3e-4f, .mean = 1e-4f}))
            << radius;
}

TEST_P(BlurComplexEffectPictureTest, AnImpulseBecomesTheKernel) {
    constexpr unsigned int SIDE = 21;
    FloatPicture source(SIDE, SIDE);
    source.at(10, 10) = {1.0f, 2.0f, 4.0f, 1.0f};
    for (const unsigned int radius : {6u, 7u}) {
        const auto weights = blurReference::weightsOf(radius);
        const auto weightAt = [&](unsigned int place) {
            const auto distance = std::size_t(std::abs(int(place) - 10));
            return distance <= radius ? weights[distance] : 0.0;
        };
        FloatPicture expected(SIDE, SIDE);
        for (unsigned int y = 0; y < SIDE; ++y)
            for (unsigned int x = 0; x < SIDE; ++x) {
                const auto product = float(weightAt(x) * weightAt(y));
                expected.at(x, y) = {product, 2.0f * product, 4.0f * product, product};
            }
        const FloatPicture drawn = drawBlur(source, {.radius = radius, .preservesAlpha = true});
        EXPECT_TRUE(picturesMatch("blur_impulse", drawn, expected, {.worst = 3e-6f, .mean = 3e-7f}));
        EXPECT_EQ(drawn.at(10 - radius - 1, 10), (FloatPixel{0.0f, 0.0f, 0.0f, 0.0f})) << "beyond the radius";
    }
}

TEST_P(BlurComplexEffectPictureTest, AConstantStaysWhatItIs) {
    const FloatPicture source(13, 9, {0.3f, 7.0f, 0.001f, 0.6f});
    for (const Settings& settings : {Settings{.radius = 4}, Settings{.radius = 9, .preservesAlpha = true},
                                     Settings{.radius = 12, .planes = true}}) {
        FloatPicture expected = source;
        if (!settings.preservesAlpha)
            expected = FloatPicture(13, 9, {0.3f, 7.0f, 0.001f, 1.0f});
        // Half a millionth for each of up to thirteen fetches of two passes, relative to the value.
        EXPECT_TRUE(picturesMatch("blur_constant", drawBlur(source, settings), expected,
                                  {.worst = 1.4e-5f, .mean = 1.4e-5f, .floor = 1e-3f}))
            << settings.radius;
    }
}

TEST_P(BlurComplexEffectPictureTest, PlanesKeepToThemselves) {
    for (const unsigned int radius : {0u, 1u, 4u, 7u})
        expectReference(makePlanes(), {.radius = radius, .planes = true, .preservesAlpha = radius != 4});
}

TEST_P(BlurComplexEffectPictureTest, NoColourCrossesTheBorderOfAPlane) {
    constexpr FloatPixel RED = {1.0f, 0.0f, 0.0f, 1.0f};
    constexpr FloatPixel BLUE = {0.0f, 0.0f, 1.0f, 0.5f};
    FloatPicture source(24, 12, RED);
    for (unsigned int y = 0; y < source.height; ++y)
        for (unsigned int x = 11 + y % 2; x < source.width; ++x)
            source.at(x, y) = BLUE;
    for (const unsigned int radius : {5u, 6u}) {
        const FloatPicture drawn =
            drawBlur(source, {.radius = radius, .planes = true, .preservesAlpha = true});
        EXPECT_TRUE(picturesMatch("blur_border", drawn, source, {.worst = 1e-6f, .mean = 1e-6f})) << radius;
    }
}

TEST_P(BlurComplexEffectPictureTest, AlphasOfOnePlaneMayDifferByLessThanAHundredThousandth) {
    for (const auto& [step, isOnePlane] : {std::pair(0.8e-5f, true), std::pair(1.2e-5f, false)}) {
        FloatPicture source(16, 1, {1.0f, 1.0f, 1.0f, 0.0f});
        for (unsigned int x = 8; x < 16; ++x)
            source.at(x, 0) = {0.0f, 0.0f, 0.0f, step};
        // Of radius 3 the second fetch reads beyond the border alone.
        const FloatPicture drawn = drawBlur(source, {.radius = 3, .planes = true});
        EXPECT_EQ(drawn.at(6, 0)[0] < 0.999f, isOnePlane) << step;
        EXPECT_EQ(drawn.at(2, 0)[0], 1.0f) << step;
    }
}

TEST_P(BlurComplexEffectPictureTest, APixelWithoutAlphaKeepsToItself) {
    FloatPicture source(9, 9, {0.5f, 0.5f, 0.5f, 1.0f});
    source.at(4, 4) = {2.0f, 3.0f, 4.0f, std::numeric_limits<float>::quiet_NaN()};
    const FloatPicture odd = drawBlur(source, {.radius = 3, .planes = true});
    for (std::size_t i = 0; i < 4; ++i) // a fetch of the middle of a texel is off by a millionth
        EXPECT_NEAR(odd.at(4, 4)[i], (FloatPixel{2.0f, 3.0f, 4.0f, 1.0f})[i], 1e-5f) << i;
    EXPECT_NEAR(odd.at(3, 4)[0], 0.5f, 1e-6f);
}

TEST_P(BlurComplexEffectPictureTest, BothLanguagesDrawTheSameBits) {
    const FloatPicture source = makePlanes();
    for (const Settings& settings : {Settings{.radius = 5}, Settings{.radius = 6, .planes = true},
                                     Settings{.radius = 7, .planes = true}}) {
        const FloatPicture drawn = drawBlur(source, settings);
        useLanguage(getOtherLanguage());
        EXPECT_TRUE(picturesAreIdentical("blur_languages", drawBlur(source, settings), drawn));
        useLanguage(GetParam());
    }
}

TEST_P(BlurComplexEffectPictureTest, FollowsTheSizeOfANewSource) {
    const FloatPicture small = makeNoisePicture(7, 5);
    const FloatPicture large = makeNoisePicture(18, 31);
    const auto smallTexture = makeTexture(small);
    const auto largeTexture = makeTexture(large);
    const auto blur = makeBlur(*smallTexture, {.radius = 2});
    ovGraphics::Texture* const output = blur->getOutputTexture();
    for (const auto& [texture, picture] :
         {std::pair(largeTexture.get(), &large), {smallTexture.get(), &small}}) {
        blur->setSourceTexture(texture);
        EXPECT_EQ(blur->getOutputTexture(), output);
        EXPECT_TRUE(picturesMatch("blur_resized", drawNode(*output),
                                  blurReference::blur(*picture, {.radius = 2}), LIMITS));
    }
}

TEST_P(BlurComplexEffectPictureTest, DrawsWithoutASourceAndAfterItWasDestroyed) {
    auto texture = makeTexture(makeNoisePicture(6, 6));
    const auto blur = makeBlur(*texture, {.radius = 3});
    texture.reset();
    EXPECT_EQ(drawNode(*blur->getOutputTexture()).at(3, 3)[0], 0.0f) << "what is gone reads as black";
    EXPECT_EQ(blur->getSourceTexture(), nullptr);
    blur->setSourceTexture(nullptr);
    EXPECT_TRUE(frame());
    ASSERT_TRUE(blur->load());
    EXPECT_TRUE(frame());
    expectNothingButWholeNumbers();
}

TEST_P(BlurComplexEffectPictureTest, TwoEffectsOfOneNodeDrawOneAfterTheOther) {
    const FloatPicture source = makeNoisePicture(12, 12);
    const auto texture = makeTexture(source);
    auto first = makeBlur(*texture, {.radius = 2});
    const auto second = makeBlur(*first->getOutputTexture(), {.radius = 3});
    const FloatPicture once = blurReference::blur(source, {.radius = 2});
    EXPECT_TRUE(picturesMatch("blur_twice", drawNode(*second->getOutputTexture()),
                              blurReference::blur(once, {.radius = 3}), LIMITS));
    first.reset();
    EXPECT_EQ(getNode().getOperationsBlockCount(), 2u);
    EXPECT_TRUE(frame());
}

} // namespace blurComplexEffectPictureTest

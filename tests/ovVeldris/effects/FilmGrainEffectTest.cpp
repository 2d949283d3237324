#include <algorithm>
#include <cmath>
#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/FilmGrainEffect.h>
#include <ovVeldris/effects/FilmGrainReference.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <support/Numbers.h>

using namespace ovVeldris;
using namespace filmGrainReference;
using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;

namespace {

constexpr unsigned int SIDE = 64; // a power of two: coordinates of texels have no rounding
constexpr float MODULO_SECONDS = 500.0f;

// The sine is rounded to 24 bits, which the scale makes 0.002, and the product of up to 67890 to 1/128.
constexpr double HASH_TOLERANCE = 0.007;
constexpr int SINE_LAST_PLACES = 2;

/// Colours from black to bright light, some negative, and alpha of every kind.
FloatPicture makeColors(unsigned int width, unsigned int height) {
    FloatPicture picture(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            picture.at(x, y) = {float(x) / 8.0f, float(y) * 0.3f - 1.0f, 0.5f, float((x + y) % 5) / 4.0f};
    return picture;
}

class FilmGrainEffectTest : public EffectFixture {
protected:
    void TearDown() override {
        getGraphics().clearFixedTime();
        EffectFixture::TearDown();
    }

    ovMemory::UniquePtr<FilmGrainEffect> makeEffect(ovGraphics::Texture* source, bool blends, bool rgb,
                                                    float strength) {
        auto effect = FilmGrainEffect::create(getSystem());
        effect->setSourceTexture(source);
        effect->setBlendGrainInTarget(blends);
        effect->setRgbNoise(rgb);
        effect->setStrength(strength);
        EXPECT_TRUE(effect->load()) << getLog().getText() << getGraphicsLogger().getText();
        return effect;
    }

    /// The noise itself, as the device draws it.
    FloatPicture drawNoise(bool rgb, double seconds, unsigned int width = SIDE, unsigned int height = SIDE) {
        getGraphics().setFixedTime(seconds, 0.0);
        return draw(*makeEffect(nullptr, true, rgb, 1.0f)->getShader(), width, height);
    }

    /// Draws a picture into a target, and an effect over it with the state for grain.
    FloatPicture drawOver(const FloatPicture& below, FilmGrainEffect& effect) {
        const auto texture = makeTexture(below);
        const auto copy = TextureCopyEffect::create(getSystem());
        copy->setSourceTexture(texture.get());
        EXPECT_TRUE(copy->load());
        const auto target = makeTarget(below.width, below.height);
        const auto compositor = ovGraphics::Compositor::create(&getGraphics());
        ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
        block->setTarget(0, target.get());
        block->appendPostProcessPass()->setShader(copy->getShader());
        ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
        pass->setShader(effect.getShader());
        FilmGrainEffectUtils::prepareBlendStateForGrainBlending(&pass->getBlendState());
        const auto context = ovGraphics::RenderContext::create(&getGraphics());
        context->setCompositor(compositor.get());
        EXPECT_TRUE(getGraphics().frame(context.get()));
        return readFloats(*target);
    }

    /// Whether the first channel is the hash of the places, for one of the values that the hash of the time
    /// may have.
    static testing::AssertionResult isHashOfPlaces(const FloatPicture& noise, double seconds) {
        const float timeFactor = float(std::fmod(seconds, 500.0)) / MODULO_SECONDS;
        double least = 1.0;
        for (const float shift :
             possibleRandoms(timeFactor, timeFactor, seconds == 0.0 ? 0 : SINE_LAST_PLACES)) {
            double worst = 0.0;
            for (unsigned int y = 0; y < noise.height; ++y)
                for (unsigned int x = 0; x < noise.width; ++x) {
                    const float u = (float(x) + 0.5f) / float(noise.width);
                    const float v = (float(y) + 0.5f) / float(noise.height);
                    worst = std::max(worst,
                                     distanceOf(double(noise.at(x, y)[0]), randomOf(u + shift, v + shift)));
                }
            least = std::min(least, worst);
        }
        return least <= HASH_TOLERANCE
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << "off by " << least << " at " << seconds;
    }

    std::array<float, 4> slotOf(const FilmGrainEffect& effect, unsigned int slot) {
        std::array<float, 4> numbers{};
        effect.getShader()->getConstantBuffer(0, 0)->getPassMemorySlot(slot)->evaluate(
            {&getGraphics(), nullptr}, reinterpret_cast<unsigned char*>(numbers.data()));
        return numbers;
    }
};

const double TIMES[] = {0.0, 1.0 / 24.0, 0.5, 3.7, 249.9, 499.99};

} // namespace

INSTANTIATE_TEST_SUITE_P(, FilmGrainEffectTest, bothLanguages(), languageName);

TEST_P(FilmGrainEffectTest, isNewWithALittleGreyGrain) {
    const auto effect = FilmGrainEffect::create(getSystem());
    EXPECT_EQ(effect->getType(), EFFECT_TYPE::FILM_GRAIN);
    EXPECT_EQ(effect->getSourceTexture(), nullptr);
    EXPECT_EQ(effect->getStrength(), 0.15f);
    EXPECT_FALSE(effect->getRgbNoise());
    EXPECT_FALSE(effect->getBlendGrainInTarget());
    EXPECT_EQ(effect->getShader(), nullptr);
}

TEST_P(FilmGrainEffectTest, selectsProgramAndDefines) {
    const struct {
        bool blends, rgb;
        const char* program;
        Defines defines;
    } CASES[] = {
        {false, false, "ORVANE_FILM_GRAIN_PROGRAM_0", {}},
        {true, false, "ORVANE_FILM_GRAIN_PROGRAM_2", {{"BLEND_GRAIN", ""}}},
        {false, true, "ORVANE_FILM_GRAIN_PROGRAM_2", {{"RGB_NOISE", ""}}},
        {true, true, "ORVANE_FILM_GRAIN_PROGRAM_2", {{"BLEND_GRAIN", ""}, {"RGB_NOISE", ""}}},
    };
    for (const auto& row : CASES) {
        const auto effect = makeEffect(nullptr, row.blends, row.rgb, 0.1f);
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        EXPECT_EQ(program.getName(), row.program);
        EXPECT_EQ(program.getSources().getPixel().defines, row.defines);
    }
}

TEST_P(FilmGrainEffectTest, theFirstOfAProgramDecidesItsText) {
    const auto blending = makeEffect(nullptr, true, false, 1.0f);
    const FloatPicture colors = makeColors(8, 8);
    const auto texture = makeTexture(colors);
    const auto rgb = makeEffect(texture.get(), false, true, 1.0f);
    EXPECT_EQ(rgb->getShader()->getProgram(), blending->getShader()->getProgram());
    getGraphics().setFixedTime(2.0, 0.0);
    EXPECT_TRUE(picturesAreIdentical("grain_shared", draw(*rgb->getShader(), 8, 8),
                                     draw(*blending->getShader(), 8, 8)));
}

TEST_P(FilmGrainEffectTest, setsItsSamplerWithoutAddressing) {
    getGraphics().getSamplerManager()->erase("VELDRIS_FILM_GRAIN_SAMPLER");
    const auto effect = makeEffect(nullptr, false, false, 0.1f);
    ovGraphics::Sampler* sampler = getGraphics().getSamplerManager()->get("VELDRIS_FILM_GRAIN_SAMPLER");
    ASSERT_NE(sampler, nullptr);
    EXPECT_EQ(effect->getShader()->getSampler(0, 0), sampler);
    const auto fresh = ovGraphics::Sampler::create(&getGraphics());
    EXPECT_EQ(sampler->getDesc().addressU, fresh->getDesc().addressU);
    EXPECT_EQ(sampler->getDesc().addressV, fresh->getDesc().addressV);
    sampler->setFilter(ovGraphics::FILTER::ANISOTROPIC); // put right by the next load
    sampler->setBorderColor(1.0f, 2.0f, 3.0f, 4.0f);
    sampler->setLodRange(1.0f, 2.0f);
    sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::MIRROR); // not set by the effect
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(int(sampler->getDesc().filter), 0);
    EXPECT_EQ(sampler->getDesc().borderColor, (std::array{0.0f, 0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(sampler->getDesc().minLod, 0.0f);
    EXPECT_EQ(sampler->getDesc().maxLod, 0.0f);
    EXPECT_EQ(sampler->getDesc().addressU, ovGraphics::TEXTURE_ADDRESS::MIRROR);
    EXPECT_FALSE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());
    getGraphics().getSamplerManager()->erase("VELDRIS_FILM_GRAIN_SAMPLER");
}

TEST_P(FilmGrainEffectTest, bindsNothingWhereItBlends) {
    const auto texture = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect(texture.get(), true, false, 0.1f);
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
    EXPECT_EQ(effect->getShader()->getSampler(0, 0), nullptr);
    effect->setSourceTexture(nullptr);
    effect->setSourceTexture(texture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
    EXPECT_EQ(effect->getSourceTexture(), texture.get());
    // As it was loaded, not as it is set.
    effect->setBlendGrainInTarget(false);
    effect->setSourceTexture(texture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), texture.get());
    effect->setBlendGrainInTarget(true);
    effect->setSourceTexture(nullptr);
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
    effect->unload();
    effect->setSourceTexture(texture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
}

TEST_P(FilmGrainEffectTest, writesTimeAndStrength) {
    const auto effect = FilmGrainEffect::create(getSystem());
    effect->setStrength(0.7f);
    EXPECT_EQ(effect->getStrength(), 0.7f);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(effect->getShader()->getConstantBuffer(0, 0)->getPassMemorySlotCount(), 2u);
    EXPECT_EQ(slotOf(*effect, 1), (std::array{0.7f, 0.0f, 0.0f, 0.0f}));
    effect->setStrength(-2.5f);
    EXPECT_EQ(slotOf(*effect, 1), (std::array{-2.5f, 0.0f, 0.0f, 0.0f}));
    getGraphics().setFixedTime(1203.5, 0.25);
    EXPECT_EQ(slotOf(*effect, 0), (std::array{500.0f, 203.5f, 0.25f, 0.0f}));
}

TEST_P(FilmGrainEffectTest, preparesTheBlendState) {
    ovGraphics::BlendState state;
    state.setAlphaToCoverageEnabled(true);
    state.setIndependentBlendEnabled(true);
    state.setWriteMask(0, 0);
    state.setBlendEnabled(true, 1);
    FilmGrainEffectUtils::prepareBlendStateForGrainBlending(&state);
    EXPECT_FALSE(state.getDesc().alphaToCoverage);
    EXPECT_FALSE(state.getDesc().independentBlend);
    const ovGraphics::device::TargetBlendDesc& target = state.getDesc().targets[0];
    EXPECT_TRUE(target.enabled);
    EXPECT_EQ(int(target.operation), 1);
    EXPECT_EQ(int(target.alphaOperation), 5);
    EXPECT_EQ(int(target.destinationFactor), 2);
    EXPECT_EQ(int(target.alphaDestinationFactor), 2);
    EXPECT_EQ(int(target.sourceFactor), 9);
    EXPECT_EQ(int(target.alphaSourceFactor), 2);
    EXPECT_EQ(target.writeMask, 15u);
    EXPECT_TRUE(state.getDesc().targets[1].enabled) << "other targets stay as they are";
}

TEST_P(FilmGrainEffectTest, drawsTheHashOfPlaceAndTime) {
    for (const double seconds : TIMES) {
        const FloatPicture noise = drawNoise(false, seconds);
        EXPECT_TRUE(isHashOfPlaces(noise, seconds));
        for (const FloatPixel& pixel : noise.pixels)
            ASSERT_TRUE(pixel[0] == pixel[1] && pixel[1] == pixel[2] && pixel[3] == 1.0f);
    }
}

TEST_P(FilmGrainEffectTest, drawsANoiseForEachColor) {
    for (const double seconds : TIMES) {
        const FloatPicture noise = drawNoise(true, seconds);
        EXPECT_TRUE(isHashOfPlaces(noise, seconds));
        const float timeFactor = float(seconds) / MODULO_SECONDS;
        double worst = 0.0;
        for (unsigned int y = 0; y < SIDE; ++y) {
            for (unsigned int x = 0; x < SIDE; ++x) {
                // From what the device drew: a hash of a hash would make the last place all of the number.
                const FloatPixel& drawn = noise.at(x, y);
                const float u = (float(x) + 0.5f) / float(SIDE), v = (float(y) + 0.5f) / float(SIDE);
                worst = std::max({worst, distanceOf(double(drawn[1]), randomOf(drawn[0], u + timeFactor)),
                                  distanceOf(double(drawn[2]), randomOf(drawn[1], v + timeFactor))});
                ASSERT_EQ(drawn[3], 1.0f);
            }
        }
        EXPECT_LE(worst, HASH_TOLERANCE) << seconds;
    }
}

TEST_P(FilmGrainEffectTest, addsItsShareOfTheColor) {
    const FloatPicture colors = makeColors(SIDE, SIDE);
    const auto texture = makeTexture(colors);
    for (const bool rgb : {false, true}) {
        for (const float strength : {0.15f, 0.0f, 1.0f, -0.5f}) {
            const FloatPicture noise = drawNoise(rgb, 12.25);
            const auto effect = makeEffect(texture.get(), false, rgb, strength);
            FloatPicture expected = colors;
            for (std::size_t i = 0; i < expected.pixels.size(); ++i)
                for (std::size_t channel = 0; channel < 3; ++channel)
                    expected.pixels[i][channel] *= 1.0f + strength * noise.pixels[i][channel];
            // Roundings of a sum and two products.
            EXPECT_TRUE(picturesMatch("grain_colors", draw(*effect->getShader(), SIDE, SIDE), expected,
                                      {.worst = 3e-7f, .mean = 1e-7f}))
                << rgb << strength;
        }
    }
}

TEST_P(FilmGrainEffectTest, blendsToTheSamePicture) {
    const FloatPicture colors = makeColors(SIDE, SIDE);
    const auto texture = makeTexture(colors);
    getGraphics().setFixedTime(77.0, 0.0);
    for (const bool rgb : {false, true}) {
        FloatPicture expected = draw(*makeEffect(texture.get(), false, rgb, 0.4f)->getShader(), SIDE, SIDE);
        for (FloatPixel& pixel : expected.pixels)
            pixel[3] = std::max(pixel[3], 1.0f); // alpha is the larger of 1 and the target's
        const auto effect = makeEffect(nullptr, true, rgb, 0.4f);
        EXPECT_TRUE(picturesMatch("grain_blended", drawOver(colors, *effect), expected,
                                  {.worst = 3e-7f, .mean = 1e-7f}));
    }
}

TEST_P(FilmGrainEffectTest, isNoise) {
    const FloatPicture noise = drawNoise(true, 5.0);
    const FloatPicture later = drawNoise(true, 5.0 + 1.0 / 24.0);
    const auto correlate = [&](const auto& first, const auto& second) {
        double sum = 0.0; // of variables of mean 1/2 and variance 1/12
        for (unsigned int y = 0; y + 1 < SIDE; ++y)
            for (unsigned int x = 0; x + 1 < SIDE; ++x)
                sum += (double(first(x, y)) - 0.5) * (double(second(x, y)) - 0.5);
        return 12.0 * sum / ((SIDE - 1) * (SIDE - 1));
    };
    const auto red = [&](unsigned int x, unsigned int y) { return noise.at(x, y)[0]; };
    const auto green = [&](unsigned int x, unsigned int y) { return noise.at(x, y)[1]; };
    const auto blue = [&](unsigned int x, unsigned int y) { return noise.at(x, y)[2]; };
    const auto right = [&](unsigned int x, unsigned int y) { return noise.at(x + 1, y)[0]; };
    const auto below = [&](unsigned int x, unsigned int y) { return noise.at(x, y + 1)[0]; };
    const auto next = [&](unsigned int x, unsigned int y) { return later.at(x, y)[0]; };
    // Independent numbers of this many pixels have a deviation of 1 / 63.
    constexpr double FOUR_DEVIATIONS = 4.0 / 63.0;
    for (const auto& channel :
         std::initializer_list<std::function<float(unsigned int, unsigned int)>>{red, green, blue}) {
        EXPECT_NEAR(correlate(channel, channel), 1.0, FOUR_DEVIATIONS);
        for (unsigned int i = 0; i < SIDE; ++i)
            EXPECT_TRUE(channel(i, i) >= 0.0f && channel(i, i) < 1.0f);
    }
    EXPECT_NEAR(correlate(red, green), 0.0, FOUR_DEVIATIONS);
    EXPECT_NEAR(correlate(green, blue), 0.0, FOUR_DEVIATIONS);
    EXPECT_NEAR(correlate(red, blue), 0.0, FOUR_DEVIATIONS);
    EXPECT_NEAR(correlate(red, right), 0.0, FOUR_DEVIATIONS);
    EXPECT_NEAR(correlate(red, below), 0.0, FOUR_DEVIATIONS);
    EXPECT_NEAR(correlate(red, next), 0.0, FOUR_DEVIATIONS);
}

TEST_P(FilmGrainEffectTest, repeatsWithTheTime) {
    EXPECT_TRUE(picturesAreIdentical("grain_again", drawNoise(true, 3.5), drawNoise(true, 3.5)));
    EXPECT_TRUE(picturesAreIdentical("grain_modulo", drawNoise(true, 1003.5), drawNoise(true, 3.5)));
    EXPECT_FALSE(picturesAreIdentical("grain_later", drawNoise(true, 3.6), drawNoise(true, 3.5)));
}

TEST_P(FilmGrainEffectTest, takesSwitchesAtTheNextLoad) {
    const FloatPicture colors = makeColors(16, 16);
    const auto texture = makeTexture(colors);
    getGraphics().setFixedTime(9.0, 0.0);
    const auto effect = makeEffect(texture.get(), false, false, 0.3f);
    const FloatPicture grey = draw(*effect->getShader(), 16, 16);
    effect->setRgbNoise(true);
    effect->setBlendGrainInTarget(true);
    EXPECT_TRUE(picturesAreIdentical("grain_before_load", draw(*effect->getShader(), 16, 16), grey));
    ASSERT_TRUE(effect->load());
    const FloatPicture alone = draw(*effect->getShader(), 16, 16);
    EXPECT_EQ(alone.at(3, 3)[3], 1.0f);
    EXPECT_NE(alone.at(3, 3)[0], alone.at(3, 3)[1]);
}

TEST_P(FilmGrainEffectTest, changesItsSourceAtOnce) {
    const FloatPicture colors = makeColors(16, 16);
    const FloatPicture others(5, 3, {0.5f, 0.25f, 2.0f, 0.75f});
    const auto texture = makeTexture(colors);
    auto otherTexture = makeTexture(others);
    const auto effect = makeEffect(texture.get(), false, false, 0.0f);
    EXPECT_TRUE(picturesAreIdentical("grain_source", draw(*effect->getShader(), 16, 16), colors));
    effect->setSourceTexture(otherTexture.get());
    EXPECT_TRUE(picturesAreIdentical("grain_other_source", draw(*effect->getShader(), 5, 3), others));
    otherTexture.reset();
    EXPECT_TRUE(picturesAreIdentical("grain_lost_source", draw(*effect->getShader(), 2, 2),
                                     FloatPicture(2, 2, {0.0f, 0.0f, 0.0f, 1.0f})));
}

TEST_P(FilmGrainEffectTest, passesNanAndInfinityThrough) {
    const FloatPicture special(1, 1, {NOT_A_NUMBER, INFINITY, -INFINITY, NOT_A_NUMBER});
    const auto texture = makeTexture(special);
    const auto effect = makeEffect(texture.get(), false, false, 0.15f);
    getGraphics().setFixedTime(1.0, 0.0);
    EXPECT_TRUE(picturesAreIdentical("grain_special", draw(*effect->getShader(), 1, 1), special));
    effect->setStrength(NOT_A_NUMBER);
    const FloatPixel drawn = draw(*effect->getShader(), 1, 1).at(0, 0);
    EXPECT_TRUE(std::isnan(drawn[1]) && std::isnan(drawn[2]));
}

TEST_P(FilmGrainEffectTest, tellsWhatCouldNotBeLoaded) {
    System system; // not initialised
    system.getLogManager()->setReceiver(&getLog());
    FilmGrainEffect effect(&system);
    effect.setName("grain");
    effect.setStrength(0.3f);
    effect.setSourceTexture(nullptr);
    EXPECT_FALSE(effect.load());
    EXPECT_EQ(getLog().messages, (ovMemory::Buffer<RecordingLogger::Message>{
                                     loadFailure("film grain", "FilmGrainEffect", "program", "grain")}));
}

TEST_P(FilmGrainEffectTest, drawsTheSameBitsInBothLanguages) {
    const auto drawAll = [&] {
        ovMemory::Buffer<FloatPicture> pictures;
        for (const double seconds : TIMES) {
            pictures.push_back(drawNoise(true, seconds));
            pictures.push_back(drawNoise(false, seconds, 97, 61));
        }
        return pictures;
    };
    const ovMemory::Buffer<FloatPicture> ours = drawAll();
    getGraphics().clearFixedTime();
    useLanguage(getOtherLanguage());
    const ovMemory::Buffer<FloatPicture> others = drawAll();
    for (std::size_t i = 0; i < ours.size(); ++i)
        EXPECT_TRUE(picturesAreIdentical("grain_languages_" + std::to_string(i), others[i], ours[i]));
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/FxaaEffect.h>
#include <ovVeldris/effects/FxaaReference.h>
#include <random>
#include <support/Numbers.h>

// Its names stay its own where the folder is compiled as one.
namespace fxaaEffectTest {

using namespace ovVeldris;
using fxaaReference::Fxaa;
using fxaaReference::Settings;
using ovMaths::Vector;

namespace {

constexpr FloatPixel BLACK = {0.0f, 0.0f, 0.0f, 1.0f};
constexpr FloatPixel WHITE = {1.0f, 1.0f, 1.0f, 1.0f};

FXAA_PRESET presetAt(std::size_t index) {
    return static_cast<FXAA_PRESET>(index);
}

/// Hard edges of all slopes, from runs of one texel to runs of sixty, thin lines, single texels and rings.
FloatPicture makeEdgeChart() {
    constexpr FloatPixel DARK = {0.11f, 0.07f, 0.23f, 0.3f};
    constexpr FloatPixel LIGHT = {0.83f, 0.91f, 0.64f, 0.9f};
    FloatPicture chart(151, 143, DARK);
    for (unsigned int y = 0; y < chart.height; ++y) {
        for (unsigned int x = 0; x < chart.width; ++x) {
            const unsigned int band = y / 13;
            const double slope = 1.0 / (1.0 + 0.9 * band * band); // band 0: a diagonal, band 8: runs of sixty
            bool isLight = std::fmod(slope * x + y % 13, 13.0) < 6.0;
            if (band == 9) // vertical runs, thin lines
                isLight = std::fmod(x + 0.07 * (y % 13) * (1 + x / 40), 9.0) < 1.0 + x % 3;
            if (band == 10) // rings, and single texels
                isLight =
                    std::fmod(std::hypot(x - 70.3, y - 137.1), 9.0) < 4.0 || (x % 11 == 3 && y % 4 == 1);
            if (isLight)
                chart.at(x, y) = LIGHT;
        }
    }
    return chart;
}

/// What photographs have: soft shades, edges that are a texel or two wide, textures and grain.
FloatPicture makePhotograph() {
    std::mt19937 random(7);
    FloatPicture picture(117, 89);
    for (unsigned int y = 0; y < picture.height; ++y) {
        for (unsigned int x = 0; x < picture.width; ++x) {
            const double u = x / 117.0, v = y / 89.0;
            const double hill = 1.0 / (1.0 + std::exp(-(v - 0.5 - 0.15 * std::sin(9.0 * u)) * 120.0));
            const double disc = 1.0 / (1.0 + std::exp((std::hypot(u - 0.7, v - 0.25) - 0.15) * 90.0));
            const double leaves = 0.25 * std::sin(61.0 * u + 7.0 * std::sin(31.0 * v)) * hill;
            for (std::size_t i = 0; i < 3; ++i) {
                const double tint = 0.2 * double(i);
                const double grain = 0.03 * (double(random()) / double(std::mt19937::max()) - 0.5);
                picture.at(x, y)[i] =
                    float(0.3 + tint * v + (0.4 - tint) * (1.0 - hill) + 0.5 * disc + leaves + grain);
            }
            picture.at(x, y)[3] = float(1.0 - 0.5 * u);
        }
    }
    return picture;
}

FloatPicture makeNoise() {
    std::mt19937 random(3);
    FloatPicture picture(83, 71);
    for (FloatPixel& pixel : picture.pixels)
        for (float& component : pixel)
            component = float(random()) / float(std::mt19937::max());
    return picture;
}

/// A grey picture drawn as text: '0' to '8' are eighths, whose lumas no precision rounds when green is taken.
FloatPicture makeEighths(const std::vector<const char*>& rows) {
    FloatPicture picture(unsigned(std::strlen(rows.front())), unsigned(rows.size()));
    for (unsigned int y = 0; y < picture.height; ++y)
        for (unsigned int x = 0; x < picture.width; ++x) {
            const float grey = float(rows[y][x] - '0') / 8.0f;
            picture.at(x, y) = {grey, grey, grey, 1.0f};
        }
    return picture;
}

bool isFlat(const FloatPicture& picture) {
    return std::ranges::all_of(picture.pixels,
                               [&](const FloatPixel& pixel) { return pixel == picture.pixels.front(); });
}

// The device places samples by coordinates of 24 bits over some 150 texels, which moves weights between two
// texels by up to 2e-5.
constexpr PictureLimits LIMITS = {.worst = 6e-5f, .mean = 2e-6f};
constexpr double TIE_WIDTH = 6e-5;

class FxaaEffectTest : public EffectFixture {
protected:
    ovMemory::UniquePtr<FxaaEffect> makeEffect(ovGraphics::Texture* source, FXAA_PRESET preset,
                                               bool greenOnly = false) {
        auto effect = FxaaEffect::create(getSystem());
        effect->setSourceTexture(source);
        effect->setPreset(preset);
        effect->setLuminanceAsGreenChannelOnly(greenOnly);
        EXPECT_TRUE(effect->load()) << getLog().getText() << getGraphicsLogger().getText();
        return effect;
    }

    FloatPicture drawEffect(FxaaEffect& effect, const FloatPicture& source) {
        return draw(*effect.getShader(), source.width, source.height);
    }

    /// Whether what was drawn is what the reference says; where numbers are too near to each other to decide,
    /// one of the things that it may say.
    static testing::AssertionResult matches(ovMemory::StringView name, const FloatPicture& actual,
                                            const FloatPicture& source, const Settings& settings) {
        const Fxaa reference(source, settings);
        FloatPicture expected(source.width, source.height);
        std::size_t undecided = 0;
        for (unsigned int y = 0; y < source.height; ++y) {
            for (unsigned int x = 0; x < source.width; ++x) {
                float nearest = std::numeric_limits<float>::infinity();
                float farthest = 0.0f;
                for (const FloatPixel& pixel : reference.possible(int(x), int(y), TIE_WIDTH)) {
                    float error = 0.0f;
                    for (std::size_t i = 0; i < 4; ++i)
                        error = std::max(error, std::abs(pixel[i] - actual.at(x, y)[i]));
                    if (error < nearest)
                        expected.at(x, y) = pixel;
                    nearest = std::min(nearest, error);
                    farthest = std::max(farthest, error);
                }
                undecided += farthest > nearest + 1e-3f ? 1 : 0;
            }
        }
        // A texel that all its neighbours are darker (or brighter) than is as much an edge along both axes,
        // by algebra, so that rounding decides: a tenth of noise. With more the comparison would say little.
        if (undecided > expected.pixels.size() / 10)
            return testing::AssertionFailure() << undecided << " pixels are undecided";
        return picturesMatch(name, actual, expected, LIMITS);
    }

    testing::AssertionResult drawsLikeReference(ovMemory::StringView name, FxaaEffect& effect,
                                                const FloatPicture& source, const Settings& settings) {
        return matches(name, drawEffect(effect, source), source, settings);
    }

    /// Whether green-only pictures of eighths, where nothing is rounded, are exactly as the reference
    /// decides.
    testing::AssertionResult decidesExactly(const std::vector<const char*>& rows) {
        const FloatPicture source = makeEighths(rows);
        const auto texture = makeTexture(source);
        const auto effect = makeEffect(texture.get(), FXAA_PRESET::QUALITY_12, true);
        effect->setSmoothingStrength(0.0f);
        Settings settings;
        settings.greenOnly = true;
        settings.strength = 0.0;
        return picturesMatch("fxaa_ties", drawEffect(*effect, source), Fxaa(source, settings).exact(),
                             {.worst = 1e-5f, .mean = 1e-6f});
    }

    Vector numbersOf(const FxaaEffect& effect) {
        std::array<float, 4> numbers{};
        effect.getShader()->getConstantBuffer(0, 0)->getPassMemorySlot(0)->evaluate(
            {&getGraphics(), nullptr}, reinterpret_cast<unsigned char*>(numbers.data()));
        return {numbers[0], numbers[1], numbers[2], numbers[3]};
    }

    std::array<int, 4> sizeOf(const FxaaEffect& effect) {
        std::array<int, 4> numbers{};
        effect.getShader()->getConstantBuffer(0, 0)->getPassMemorySlot(1)->evaluate(
            {&getGraphics(), nullptr}, reinterpret_cast<unsigned char*>(numbers.data()));
        return numbers;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, FxaaEffectTest, bothLanguages(), languageName);

TEST_P(FxaaEffectTest, isNewWithTheStoredDefaults) {
    const FxaaEffectInfo info;
    EXPECT_EQ(info.minContrast, 0.25f);
    EXPECT_EQ(info.minLuminance, 0.0625f);
    EXPECT_EQ(info.smoothingStrength, 0.75f);
    EXPECT_EQ(int(info.preset), 2);
    EXPECT_FALSE(info.luminanceAsGreenChannelOnly);

    const auto effect = FxaaEffect::create(getSystem());
    EXPECT_EQ(effect->getType(), EFFECT_TYPE::FXAA);
    EXPECT_EQ(effect->getSourceTexture(), nullptr);
    EXPECT_FLOAT_EQ(effect->getMinContrast(), float((0.25 - 0.05) / 0.35));
    EXPECT_FLOAT_EQ(effect->getMinLuminance(), float((0.0625 - 0.03) / 0.06));
    EXPECT_EQ(effect->getSmoothingStrength(), 0.75f);
    EXPECT_EQ(effect->getPreset(), FXAA_PRESET::QUALITY_12);
    EXPECT_FALSE(effect->getLuminanceAsGreenChannelOnly());
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(numbersOf(*effect), Vector(0.25f, 0.0625f, 0.75f, 0.0f));
    EXPECT_EQ(sizeOf(*effect), (std::array{0, 0, 0, 0}));
    EXPECT_EQ(effect->getShader()->getConstantBuffer(0, 0)->getPassMemorySlotCount(), 2u);
}

TEST_P(FxaaEffectTest, clampsAndScalesItsNumbers) {
    const struct {
        float set;
        Vector stored; ///< contrast, luminance, strength
    } CASES[] = {
        {2.0f, {0.40f, 0.09f, 1.0f}},     {1.0f, {0.40f, 0.09f, 1.0f}},
        {0.5f, {0.225f, 0.06f, 0.5f}},    {0.0f, {0.05f, 0.03f, 0.0f}},
        {-1.0f, {0.05f, 0.03f, 0.0f}},    {NOT_A_NUMBER, {0.05f, 0.03f, 0.0f}},
        {INFINITY, {0.40f, 0.09f, 1.0f}}, {-INFINITY, {0.05f, 0.03f, 0.0f}},
    };
    const auto effect = FxaaEffect::create(getSystem());
    for (const bool loadedFirst : {false, true}) {
        for (const auto& row : CASES) {
            if (loadedFirst) {
                ASSERT_TRUE(effect->load());
            }
            effect->setMinContrast(row.set);
            effect->setMinLuminance(row.set);
            effect->setSmoothingStrength(row.set);
            if (!loadedFirst) {
                ASSERT_TRUE(effect->load());
            }
            const Vector stored = numbersOf(*effect);
            EXPECT_FLOAT_EQ(stored.x, row.stored.x) << row.set;
            EXPECT_FLOAT_EQ(stored.y, row.stored.y) << row.set;
            EXPECT_FLOAT_EQ(stored.z, row.stored.z) << row.set;
            // One unit in the last place of what is stored, which reading scales up.
            EXPECT_NEAR(effect->getMinContrast(), row.stored.z, 1e-7f);
            EXPECT_NEAR(effect->getMinLuminance(), row.stored.z, 2e-7f);
            EXPECT_EQ(effect->getSmoothingStrength(), row.stored.z);
            effect->unload();
        }
    }
}

TEST_P(FxaaEffectTest, selectsProgramAndDefines) {
    for (std::size_t i = 0; i < fxaaReference::presets().size(); ++i) {
        const auto effect = makeEffect(nullptr, presetAt(i), i % 3 == 0);
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        EXPECT_EQ(program.getName(), "ORVANE_FXAA_PROGRAM_" + std::to_string(i));
        ovMemory::Buffer<ovGraphics::shading::Define> defines = {
            {"QUALITY_PRESET", fxaaReference::presets()[i].number}};
        if (i % 3 == 0)
            defines.push_back({"LUMA_FROM_G_CHANNEL_ONLY", ""});
        EXPECT_EQ(program.getSources().getPixel().defines, defines);
    }
}

TEST_P(FxaaEffectTest, unknownPresetsAreTheBestOne) {
    for (const unsigned int value : {16u, 17u, 99u, 0xffffffffu}) {
        const auto effect = makeEffect(nullptr, static_cast<FXAA_PRESET>(value));
        EXPECT_EQ(unsigned(effect->getPreset()), value);
        EXPECT_EQ(effect->getSettingAsText("preset"), "39");
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        EXPECT_EQ(program.getName(), "ORVANE_FXAA_PROGRAM_" + std::to_string(value));
        EXPECT_EQ(program.getSources().getPixel().defines,
                  (ovMemory::Buffer<ovGraphics::shading::Define>{{"QUALITY_PRESET", "39"}}));
    }
}

TEST_P(FxaaEffectTest, theFirstOfAPresetDecidesWhereLumaComesFrom) {
    const FloatPicture noise = makeNoise();
    const auto texture = makeTexture(noise);
    Settings green;
    green.greenOnly = true;
    const auto first = makeEffect(texture.get(), FXAA_PRESET::QUALITY_12, true);
    const auto second = makeEffect(texture.get(), FXAA_PRESET::QUALITY_12, false);
    EXPECT_EQ(second->getShader()->getProgram(), first->getShader()->getProgram());
    EXPECT_EQ(second->getShader()->getProgram()->getName(), "ORVANE_FXAA_PROGRAM_2");
    EXPECT_FALSE(second->getLuminanceAsGreenChannelOnly());
    EXPECT_TRUE(drawsLikeReference("fxaa_first_decides", *second, noise, green));
    // Once nobody holds the program, the next one decides.
    first->unload();
    second->unload();
    ASSERT_TRUE(second->load());
    EXPECT_TRUE(drawsLikeReference("fxaa_next_decides", *second, noise, {}));
}

TEST_P(FxaaEffectTest, setsItsSampler) {
    const auto effect = makeEffect(nullptr, FXAA_PRESET::QUALITY_12);
    ovGraphics::Sampler* sampler = getGraphics().getSamplerManager()->get("VELDRIS_FXAA_SAMPLER");
    ASSERT_NE(sampler, nullptr);
    EXPECT_EQ(effect->getShader()->getSampler(0, 0), sampler);
    sampler->setFilter(ovGraphics::FILTER::ANISOTROPIC); // put right by the next load
    sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::WRAP);
    sampler->setLodRange(1.0f, 2.0f);
    ASSERT_TRUE(effect->load());
    const ovGraphics::device::SamplerDesc& desc = sampler->getDesc();
    EXPECT_EQ(int(desc.filter), 20);
    EXPECT_EQ(int(desc.addressU), 3);
    EXPECT_EQ(int(desc.addressV), 3);
    EXPECT_EQ(desc.minLod, 0.0f);
    EXPECT_EQ(desc.maxLod, 0.0f);
    EXPECT_FALSE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());
}

TEST_P(FxaaEffectTest, drawsEveryPresetLikeItsReference) {
    const std::pair<const char*, FloatPicture> pictures[] = {
        {"edges", makeEdgeChart()}, {"photograph", makePhotograph()}, {"noise", makeNoise()}};
    for (const auto& [name, picture] : pictures) {
        const auto texture = makeTexture(picture);
        for (std::size_t i = 0; i < fxaaReference::presets().size(); ++i) {
            Settings settings;
            settings.steps = fxaaReference::presets()[i].steps;
            const auto effect = makeEffect(texture.get(), presetAt(i));
            EXPECT_TRUE(drawsLikeReference(ovMemory::String("fxaa_") + name, *effect, picture, settings))
                << name << " preset " << fxaaReference::presets()[i].number;
        }
    }
}

TEST_P(FxaaEffectTest, drawsWithGreenForTheLuma) {
    const FloatPicture photograph = makePhotograph();
    const auto texture = makeTexture(photograph);
    for (const std::size_t i : {0, 11, 16}) {
        Settings settings;
        settings.steps = fxaaReference::presets()[i].steps;
        settings.greenOnly = true;
        const auto effect = makeEffect(texture.get(), presetAt(i), true);
        EXPECT_TRUE(drawsLikeReference("fxaa_green", *effect, photograph, settings)) << i;
    }
}

TEST_P(FxaaEffectTest, changesNumbersOfALoadedEffectAtOnce) {
    const FloatPicture photograph = makePhotograph();
    const auto texture = makeTexture(photograph);
    const auto effect = makeEffect(texture.get(), FXAA_PRESET::QUALITY_12);
    Settings settings;
    effect->setMinContrast(0.0f);
    settings.minContrast = 0.05;
    EXPECT_TRUE(drawsLikeReference("fxaa_contrast", *effect, photograph, settings));
    effect->setMinLuminance(1.0f);
    settings.minLuminance = 0.09;
    EXPECT_TRUE(drawsLikeReference("fxaa_luminance", *effect, photograph, settings));
    effect->setSmoothingStrength(0.2f);
    settings.strength = 0.2;
    EXPECT_TRUE(drawsLikeReference("fxaa_strength", *effect, photograph, settings));
}

TEST_P(FxaaEffectTest, takesPresetAndLumaAtTheNextLoad) {
    const FloatPicture chart = makeEdgeChart();
    const auto texture = makeTexture(chart);
    const auto effect = makeEffect(texture.get(), FXAA_PRESET::QUALITY_10);
    Settings settings;
    settings.steps = fxaaReference::presets()[0].steps;
    effect->setPreset(FXAA_PRESET::QUALITY_29);
    effect->setLuminanceAsGreenChannelOnly(true);
    EXPECT_TRUE(drawsLikeReference("fxaa_before_load", *effect, chart, settings));
    ASSERT_TRUE(effect->load());
    settings.steps = fxaaReference::presets()[15].steps;
    settings.greenOnly = true;
    EXPECT_TRUE(drawsLikeReference("fxaa_after_load", *effect, chart, settings));
}

TEST_P(FxaaEffectTest, changesItsSourceAtOnceWithItsSize) {
    const FloatPicture noise = makeNoise();
    const FloatPicture photograph = makePhotograph();
    const auto noiseTexture = makeTexture(noise);
    auto photographTexture = makeTexture(photograph);
    const auto effect = makeEffect(noiseTexture.get(), FXAA_PRESET::QUALITY_12);
    EXPECT_EQ(sizeOf(*effect), (std::array{83, 71, 1, 1}));
    effect->setSourceTexture(photographTexture.get());
    EXPECT_EQ(effect->getSourceTexture(), photographTexture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), photographTexture.get());
    EXPECT_EQ(sizeOf(*effect), (std::array{117, 89, 1, 1}));
    EXPECT_TRUE(drawsLikeReference("fxaa_other_source", *effect, photograph, {}));
    photographTexture.reset();
    EXPECT_EQ(effect->getSourceTexture(), nullptr);
    EXPECT_TRUE(picturesAreIdentical("fxaa_lost_source", draw(*effect->getShader(), 3, 2),
                                     FloatPicture(3, 2, BLACK)));
    effect->setSourceTexture(nullptr);
    EXPECT_EQ(sizeOf(*effect), (std::array{0, 0, 0, 0}));
    EXPECT_TRUE(
        picturesAreIdentical("fxaa_no_source", draw(*effect->getShader(), 3, 2), FloatPicture(3, 2, BLACK)));
    effect->unload();
    effect->setSourceTexture(noiseTexture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), nullptr);
    ASSERT_TRUE(effect->load());
    EXPECT_TRUE(drawsLikeReference("fxaa_source_again", *effect, noise, {}));
}

TEST_P(FxaaEffectTest, leavesFlatPicturesAndWeakEdgesAsTheyAre) {
    const FloatPixel odd = {0.3f, 0.7f, 0.123f, 0.456f};
    FloatPicture weak(31, 17, odd);
    for (unsigned int y = 0; y < weak.height; ++y)
        for (unsigned int x = 0; x < weak.width; ++x)
            if ((x + y) % 5 < 2)
                weak.at(x, y) = {0.35f, 0.75f, 0.173f,
                                 0.9f}; // 0.05 brighter, of the 0.0625 that make an edge
    // The outermost texels have black neighbours, which is an edge, and are read where they are all the same.
    for (const FloatPicture& source : {FloatPicture(31, 17, odd), FloatPicture(31, 17, WHITE), weak}) {
        const auto texture = makeTexture(source);
        const auto effect = makeEffect(texture.get(), FXAA_PRESET::QUALITY_39);
        const FloatPicture drawn = drawEffect(*effect, source);
        if (isFlat(source)) {
            EXPECT_TRUE(picturesAreIdentical("fxaa_flat", drawn, source));
            continue;
        }
        for (unsigned int y = 1; y + 1 < drawn.height; ++y)
            for (unsigned int x = 1; x + 1 < drawn.width; ++x)
                EXPECT_EQ(drawn.at(x, y), source.at(x, y)) << x << ", " << y;
    }
}

TEST_P(FxaaEffectTest, decidesTiesAsDescribed) {
    // A step of an edge, in all four turns: the sides, the ends and what lies between them.
    EXPECT_TRUE(
        decidesExactly({"8888888888888888", "8888888888888888", "8888888888888888", "8888888800000000",
                        "0000000000000000", "0000000000000000", "0000000000000000"}));
    EXPECT_TRUE(
        decidesExactly({"0000000", "0000000", "8000000", "8800000", "8888000", "8888800", "8888888"}));
    // A line one texel wide: both sides are as different, and the first one counts.
    EXPECT_TRUE(decidesExactly(
        {"0000000000000", "0000000000000", "0088888888800", "0000000000000", "0000000000000"}));
    EXPECT_TRUE(decidesExactly({"00000", "00800", "00800", "00800", "00800", "00800", "00000"}));
    // A single texel: neither horizontal nor vertical, which counts as horizontal; ends as far on both sides.
    EXPECT_TRUE(decidesExactly({"44444", "44444", "44844", "44444", "44444"}));
    EXPECT_TRUE(decidesExactly({"88888", "88888", "88088", "88888", "88888"}));
    // The threshold itself is an edge: 2/8 of 8/8.
    EXPECT_TRUE(decidesExactly({"66666666", "66666666", "66688888", "88888888", "88888888"}));
}

TEST_P(FxaaEffectTest, spreadsNanNoFurtherThanItsSearch) {
    const FloatPicture clean = makePhotograph();
    FloatPicture dirty = clean;
    constexpr int X = 60, Y = 44;
    dirty.at(X, Y) = {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER};
    const auto cleanTexture = makeTexture(clean);
    const auto dirtyTexture = makeTexture(dirty);
    const auto effect = makeEffect(cleanTexture.get(), FXAA_PRESET::QUALITY_12);
    const FloatPicture expected = drawEffect(*effect, clean);
    effect->setSourceTexture(dirtyTexture.get());
    FloatPicture actual = drawEffect(*effect, dirty);
    const auto reaches = [](int a, int b, int reach) { return std::abs(a - b) <= reach; };
    for (int y = 0; y < int(clean.height); ++y)
        for (int x = 0; x < int(clean.width); ++x)
            // Steps of 1, 1.5, 2 and 4 texels are sampled, on an edge beside the pixel.
            if ((reaches(x, X, 10) && reaches(y, Y, 2)) || (reaches(x, X, 2) && reaches(y, Y, 10)))
                actual.at(unsigned(x), unsigned(y)) = expected.at(unsigned(x), unsigned(y));
    EXPECT_TRUE(picturesAreIdentical("fxaa_nan", actual, expected));
    // Infinite light: the device must come back.
    dirty.at(X, Y) = {INFINITY, INFINITY, INFINITY, 1.0f};
    const auto brightTexture = makeTexture(dirty);
    effect->setSourceTexture(brightTexture.get());
    drawEffect(*effect, dirty);
}

TEST_P(FxaaEffectTest, readsItsSourceInTheSizeOfTheTarget) {
    // A target of twice the size: each texel of the source is judged for four pixels. Only the place between
    // texels differs, which flat regions do not show.
    const FloatPicture source = makeEighths({"00008888", "00008888", "00008888", "00008888"});
    const auto texture = makeTexture(source);
    const auto effect = makeEffect(texture.get(), FXAA_PRESET::QUALITY_12);
    const FloatPicture drawn = draw(*effect->getShader(), 16, 8);
    for (unsigned int y = 2; y < 6; ++y) {
        EXPECT_EQ(drawn.at(3, y), BLACK);
        EXPECT_EQ(drawn.at(12, y), WHITE);
    }
}

TEST_P(FxaaEffectTest, tellsWhatCouldNotBeLoaded) {
    System system; // not initialised
    system.getLogManager()->setReceiver(&getLog());
    FxaaEffect effect(&system);
    effect.setName("edges");
    effect.setMinContrast(0.3f);
    effect.setSourceTexture(nullptr);
    EXPECT_FALSE(effect.load());
    EXPECT_EQ(getLog().messages, (ovMemory::Buffer<RecordingLogger::Message>{
                                     loadFailure("fxaa", "FxaaEffect", "program", "edges")}));
}

TEST_P(FxaaEffectTest, drawsTheSameBitsInBothLanguages) {
    const std::pair<const char*, FloatPicture> pictures[] = {
        {"edges", makeEdgeChart()}, {"photograph", makePhotograph()}, {"noise", makeNoise()}};
    const auto drawAll = [&] {
        ovMemory::Buffer<FloatPicture> results;
        for (const auto& [name, picture] : pictures) {
            const auto texture = makeTexture(picture);
            for (const std::size_t i : {0, 2, 16})
                results.push_back(drawEffect(*makeEffect(texture.get(), presetAt(i)), picture));
        }
        return results;
    };
    const ovMemory::Buffer<FloatPicture> ours = drawAll();
    useLanguage(getOtherLanguage());
    const ovMemory::Buffer<FloatPicture> others = drawAll();
    for (std::size_t i = 0; i < ours.size(); ++i)
        EXPECT_TRUE(picturesAreIdentical("fxaa_languages_" + std::to_string(i), others[i], ours[i]));
}

} // namespace fxaaEffectTest

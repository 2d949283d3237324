#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/effects/ToneMappingReference.h>
#include <support/Numbers.h>

// Its names stay its own where the folder is compiled as one.
namespace toneMappingEffectTest {

using namespace ovVeldris;
using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

const Matrix LOOK = Matrix::newMat4(1.1f, -0.2f, 0.05f, 9.0f, 0.3f, 0.8f, -0.1f, 9.0f, 0.0f, 0.25f, 1.4f,
                                    9.0f, 9.0f, 9.0f, 9.0f, 9.0f);
const Vector WHITE(4.0f, 2.5f, 8.0f, 77.0f);
const ToneMappingHablesCurveDescriptor CURVE = {0.5f, 0.5f, 0.5f, 1.0f, 0.8f, 1.2f};

/// Neutral and coloured light from nothing to the brightest suns, negative light as filters and matrices make
/// it, and alpha of every kind. No value lies where an operator jumps or divides by zero.
FloatPicture makeChart() {
    constexpr float LEVELS[] = {0.0f,  1e-30f, 1e-6f, 1e-3f, 0.01f, 0.02f,  0.18f,   0.5f,     0.9f,     1.0f,
                                1.05f, 1.5f,   2.0f,  4.0f,  16.0f, 100.0f, 1000.0f, 60000.0f, 110000.0f};
    constexpr FloatPixel TINTS[] = {{1.0f, 1.0f, 1.0f, 1.0f},   {1.0f, 0.2f, 0.05f, 0.0f},
                                    {0.0f, 0.0f, 1.0f, 0.25f},  {0.1f, 1.0f, 0.3f, -3.0f},
                                    {-0.05f, 0.7f, 0.4f, 7.0f}, {-0.3f, -0.2f, -0.24f, 0.5f}};
    FloatPicture chart(unsigned(std::size(LEVELS)), unsigned(std::size(TINTS)));
    for (unsigned int y = 0; y < chart.height; ++y)
        for (unsigned int x = 0; x < chart.width; ++x)
            chart.at(x, y) = {TINTS[y][0] * LEVELS[x], TINTS[y][1] * LEVELS[x], TINTS[y][2] * LEVELS[x],
                              TINTS[y][3]};
    return chart;
}

enum class OPERATOR { REINHARD, HABLES, ACES };

/// One setting of the effect with its reference and how far from it a device may be.
struct OperatorCase {
    const char* name;
    OPERATOR tone;
    bool onLuminance;
    Vector white = {};
    ToneMappingHablesCurveDescriptor curve = {};
    Matrix look = {};
    unsigned int id = 0;
    PictureLimits limits = {};

    void apply(ToneMappingEffect& effect) const {
        effect.setUseLuminance(onLuminance);
        if (tone == OPERATOR::REINHARD)
            effect.setAsReinhard(white);
        else if (tone == OPERATOR::HABLES)
            effect.setAsHables(curve);
        else
            effect.setAsAces(look);
    }

    FloatPixel expected(const FloatPixel& pixel) const {
        using namespace toneMappingReference;
        const Color color = {pixel[0], pixel[1], pixel[2]};
        Color result;
        if (tone == OPERATOR::REINHARD)
            result = reinhard(color, {white.x, white.y, white.z}, onLuminance);
        else if (tone == OPERATOR::HABLES)
            result = hables(color, curve, onLuminance);
        else
            result = aces(color, look);
        return {float(result[0]), float(result[1]), float(result[2]), pixel[3]};
    }
};

// A dozen roundings of 6e-8, relative also for dark colours; negative light makes 1 + L and the fit's
// numerator differences, which lose a digit.
constexpr PictureLimits ARITHMETIC = {.worst = 1e-6f, .mean = 1.5e-7f, .floor = 0.01f};
// The same through exp and log, whose approximations the exponents of the curves magnify.
constexpr PictureLimits POWERS = {.worst = 2.5e-6f, .mean = 1.5e-7f, .floor = 0.01f};

const OperatorCase CASES[] = {
    {.name = "reinhard",
     .tone = OPERATOR::REINHARD,
     .onLuminance = false,
     .white = {2, 2, 2},
     .id = 1,
     .limits = ARITHMETIC},
    {.name = "reinhard_luminance",
     .tone = OPERATOR::REINHARD,
     .onLuminance = true,
     .white = {2, 2, 2},
     .id = 9,
     .limits = ARITHMETIC},
    {.name = "reinhard_white",
     .tone = OPERATOR::REINHARD,
     .onLuminance = false,
     .white = WHITE,
     .id = 1,
     .limits = ARITHMETIC},
    {.name = "reinhard_white_luminance",
     .tone = OPERATOR::REINHARD,
     .onLuminance = true,
     .white = WHITE,
     .id = 9,
     .limits = ARITHMETIC},
    {.name = "hables", .tone = OPERATOR::HABLES, .onLuminance = false, .id = 2, .limits = POWERS},
    {.name = "hables_luminance", .tone = OPERATOR::HABLES, .onLuminance = true, .id = 10, .limits = POWERS},
    {.name = "hables_curve",
     .tone = OPERATOR::HABLES,
     .onLuminance = false,
     .curve = CURVE,
     .id = 2,
     .limits = POWERS},
    {.name = "hables_curve_luminance",
     .tone = OPERATOR::HABLES,
     .onLuminance = true,
     .curve = CURVE,
     .id = 10,
     .limits = POWERS},
    {.name = "aces", .tone = OPERATOR::ACES, .onLuminance = false, .id = 4, .limits = ARITHMETIC},
    {.name = "aces_luminance", .tone = OPERATOR::ACES, .onLuminance = true, .id = 12, .limits = ARITHMETIC},
    {.name = "aces_look",
     .tone = OPERATOR::ACES,
     .onLuminance = false,
     .look = LOOK,
     .id = 4,
     .limits = ARITHMETIC},
};

class ToneMappingEffectTest : public EffectFixture {
protected:
    /// A fresh effect of a case on a texture, loaded.
    ovMemory::UniquePtr<ToneMappingEffect> makeEffect(const OperatorCase& row, ovGraphics::Texture* source) {
        auto effect = ToneMappingEffect::create(getSystem());
        row.apply(*effect);
        effect->setSourceTexture(source);
        EXPECT_TRUE(effect->load()) << getLog().getText() << getGraphicsLogger().getText();
        return effect;
    }

    testing::AssertionResult draws(ToneMappingEffect& effect, const OperatorCase& row,
                                   const FloatPicture& source) {
        const FloatPicture expected =
            source.map([&](const FloatPixel& pixel) { return row.expected(pixel); });
        return picturesMatch(ovMemory::String("tone_mapping_") + row.name,
                             draw(*effect.getShader(), source.width, source.height), expected, row.limits);
    }

    FloatPixel drawOne(const OperatorCase& row, const FloatPixel& pixel) {
        const auto texture = makeTexture(FloatPicture(1, 1, pixel));
        return draw(*makeEffect(row, texture.get())->getShader(), 1, 1).at(0, 0);
    }
};

const OperatorCase& findCase(ovMemory::StringView name) {
    for (const OperatorCase& row : CASES)
        if (row.name == name)
            return row;
    ADD_FAILURE() << "no case '" << name << "'";
    return CASES[0];
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, ToneMappingEffectTest, bothLanguages(), languageName);

TEST_P(ToneMappingEffectTest, isNewWithReinhardOnLuminance) {
    ToneMappingEffect effect(getSystem());
    EXPECT_EQ(effect.getSourceTexture(), nullptr);
    EXPECT_TRUE(effect.getUseLuminance());
    EXPECT_TRUE(effect.getReinhardUsed());
    EXPECT_FALSE(effect.getHablesUsed());
    EXPECT_FALSE(effect.getAcesUsed());
    EXPECT_EQ(effect.getReinhardMaxWhite(), Vector(2.0f, 2.0f, 2.0f));
    EXPECT_EQ(effect.getHablesDescriptor().shoulderStrength, 0.1f);
    EXPECT_EQ(effect.getAcesLookTransform(), Matrix());
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(effect.getShader()->getProgram()->getName(), "ORVANE_TONE_PROGRAM_9");
}

TEST_P(ToneMappingEffectTest, usesOneOperatorAtATime) {
    ToneMappingEffect effect(getSystem());
    effect.setAsHables(CURVE);
    EXPECT_FALSE(effect.getReinhardUsed());
    EXPECT_TRUE(effect.getHablesUsed());
    EXPECT_FALSE(effect.getAcesUsed());
    EXPECT_EQ(effect.getHablesDescriptor().gamma, 1.2f);
    effect.setAsAces(LOOK);
    EXPECT_FALSE(effect.getReinhardUsed());
    EXPECT_FALSE(effect.getHablesUsed());
    EXPECT_TRUE(effect.getAcesUsed());
    EXPECT_EQ(effect.getAcesLookTransform(), LOOK);
    effect.setAsReinhard(WHITE);
    EXPECT_TRUE(effect.getReinhardUsed());
    EXPECT_FALSE(effect.getHablesUsed());
    EXPECT_FALSE(effect.getAcesUsed());
    EXPECT_EQ(effect.getReinhardMaxWhite(), WHITE);
    EXPECT_EQ(effect.getHablesDescriptor().gamma, 1.2f);
    EXPECT_EQ(effect.getAcesLookTransform(), LOOK);
    effect.setUseLuminance(false);
    EXPECT_FALSE(effect.getUseLuminance());
}

TEST(ToneMappingIdGeneratorTest, joinsTheBitsOfTheSettings) {
    for (unsigned int bits = 0; bits < 16; ++bits) {
        const ToneMappingEffectInfo info = {.sourceTexture = {},
                                            .useLuminance = (bits & 8) != 0,
                                            .reinhardUsed = (bits & 1) != 0,
                                            .hablesUsed = (bits & 2) != 0,
                                            .acesUsed = (bits & 4) != 0};
        EXPECT_EQ(ToneMappingIdGenerator()(info), bits);
    }
}

TEST_P(ToneMappingEffectTest, selectsProgramAndDefines) {
    for (const OperatorCase& row : CASES) {
        const auto effect = makeEffect(row, nullptr);
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        EXPECT_EQ(program.getName(), "ORVANE_TONE_PROGRAM_" + std::to_string(row.id)) << row.name;
        ovMemory::Buffer<ovGraphics::shading::Define> defines;
        if (row.tone == OPERATOR::REINHARD)
            defines = {{"REINHARD", ""}};
        else if (row.tone == OPERATOR::HABLES)
            defines = {{"HABLES", ""}};
        else
            defines = {{"ACES", ""}, {"ODT_SRGB", ""}};
        if (row.onLuminance)
            defines.push_back({"LUMINANCE", ""});
        EXPECT_EQ(program.getSources().getPixel().defines, defines) << row.name;
    }
}

TEST_P(ToneMappingEffectTest, setsItsSampler) {
    ToneMappingEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    ovGraphics::Sampler* sampler = getGraphics().getSamplerManager()->get("VELDRIS_TONE_MAPPING_SAMPLER");
    ASSERT_NE(sampler, nullptr);
    EXPECT_EQ(effect.getShader()->getSampler(0, 0), sampler);
    sampler->setFilter(ovGraphics::FILTER::ANISOTROPIC); // put right by the next load
    sampler->setAddressV(ovGraphics::TEXTURE_ADDRESS::WRAP);
    ASSERT_TRUE(effect.load());
    const ovGraphics::device::SamplerDesc& desc = sampler->getDesc();
    EXPECT_EQ(int(desc.filter), 0);
    EXPECT_EQ(int(desc.addressU), 3);
    EXPECT_EQ(int(desc.addressV), 3);
    EXPECT_EQ(desc.minLod, 0.0f);
    EXPECT_EQ(desc.maxLod, 0.0f);
    EXPECT_TRUE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());
}

TEST_P(ToneMappingEffectTest, laysConstantsOutAsItsShaderDeclaresThem) {
    for (const OperatorCase& row : CASES) {
        const auto effect = makeEffect(row, nullptr);
        const ovGraphics::ConstantBuffer* buffer = effect->getShader()->getConstantBuffer(0, 0);
        ASSERT_NE(buffer, nullptr);
        unsigned int registers = 0;
        for (unsigned int i = 0; i < buffer->getPassMemorySlotCount(); ++i)
            registers += buffer->getPassMemorySlot(i)->getRegisterCount();
        const unsigned int expected = row.tone == OPERATOR::REINHARD ? 1
                                      : row.tone == OPERATOR::HABLES ? 7
                                                                     : 4;
        EXPECT_EQ(registers, expected) << row.name;
        EXPECT_EQ(buffer->getPassMemorySlotCount(), row.tone == OPERATOR::HABLES ? 7u : 1u) << row.name;
    }
}

TEST_P(ToneMappingEffectTest, drawsEveryOperatorLikeItsReference) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    for (const OperatorCase& row : CASES) {
        const auto effect = makeEffect(row, texture.get());
        EXPECT_TRUE(draws(*effect, row, chart)) << row.name;
    }
}

TEST_P(ToneMappingEffectTest, passesColorThroughWithoutAnOperator) {
    const auto effect = makeEffect(CASES[0], nullptr);
    const auto program =
        makeProgram(effect->getShader()->getProgram()->getSources().getPixel().text, {"LUMINANCE"});
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto shader = ovGraphics::Shader::create(&getGraphics());
    shader->setProgram(program.get());
    shader->setTexture(texture.get(), 0, 0);
    ASSERT_TRUE(shader->load());
    EXPECT_TRUE(picturesAreIdentical("tone_mapping_none", draw(*shader, chart.width, chart.height), chart));
}

TEST_P(ToneMappingEffectTest, keepsBlackDefined) {
    for (const OperatorCase& row : CASES) {
        const FloatPixel drawn = drawOne(row, {0.0f, 0.0f, 0.0f, 0.75f});
        // The fit of ACES starts a little above zero: b / e / 255 = 0.00362.
        const float black = row.tone == OPERATOR::ACES ? 0.0036218f : 0.0f;
        for (std::size_t channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(drawn[channel], black, row.tone == OPERATOR::ACES ? 1e-6f : 0.0f) << row.name;
        EXPECT_EQ(drawn[3], 0.75f);
    }
}

TEST_P(ToneMappingEffectTest, followsTheFormulasForInfinityAndNan) {
    // inf / inf and whatever touches NaN is NaN. The curve of Hables ends in its last value, and comparisons
    // take NaN for the far end too; a ratio of that value to infinite luminance is 0.
    const float end = CURVE.gamma > 0.0f ? float(toneMappingReference::HablesCurve(CURVE)(1e30)) : 0.0f;
    struct Case {
        const char* name;
        FloatPixel in;
        FloatPixel out;
    };
    const Case cases[] = {
        {"reinhard", {INFINITE, NOT_A_NUMBER, 0.0f, INFINITE}, {NOT_A_NUMBER, NOT_A_NUMBER, 0.0f, INFINITE}},
        {"reinhard_luminance",
         {0.0f, INFINITE, 1.0f, NOT_A_NUMBER},
         {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER}},
        {"hables_curve", {INFINITE, NOT_A_NUMBER, -INFINITE, -INFINITE}, {end, end, 0.0f, -INFINITE}},
        {"hables_curve_luminance", {0.5f, INFINITE, 1.0f, 1.0f}, {0.0f, NOT_A_NUMBER, 0.0f, 1.0f}},
        {"hables_curve_luminance",
         {0.5f, NOT_A_NUMBER, 1.0f, 1.0f},
         {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, 1.0f}},
        {"aces", {INFINITE, 1.0f, 1.0f, 1.0f}, {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, 1.0f}},
        {"aces", {1.0f, NOT_A_NUMBER, 1.0f, 1.0f}, {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, 1.0f}},
    };
    for (const Case& row : cases) {
        const FloatPicture actual(1, 1, drawOne(findCase(row.name), row.in));
        EXPECT_TRUE(picturesMatch("tone_mapping_special", actual, FloatPicture(1, 1, row.out),
                                  {.worst = 1e-6f, .mean = 1e-6f}))
            << row.name << " " << row.in[0] << " " << row.in[1] << " " << row.in[2];
    }
}

TEST_P(ToneMappingEffectTest, changesNumbersOfALoadedEffectAtOnce) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const char* changes[][2] = {{"reinhard", "reinhard_white"},
                                {"reinhard_luminance", "reinhard_white_luminance"},
                                {"hables", "hables_curve"},
                                {"hables_curve_luminance", "hables_luminance"},
                                {"aces", "aces_look"}};
    for (const auto& [before, after] : changes) {
        const auto effect = makeEffect(findCase(before), texture.get());
        EXPECT_TRUE(draws(*effect, findCase(before), chart)) << before;
        findCase(after).apply(*effect);
        EXPECT_TRUE(draws(*effect, findCase(after), chart)) << after;
    }
}

TEST_P(ToneMappingEffectTest, changesTheOperatorAtTheNextLoad) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto effect = makeEffect(CASES[0], texture.get());
    const OperatorCase* loaded = &CASES[0];
    for (const char* name :
         {"hables_curve_luminance", "aces_look", "reinhard_white_luminance", "hables", "reinhard"}) {
        const OperatorCase& next = findCase(name);
        next.apply(*effect);
        EXPECT_TRUE(draws(*effect, *loaded, chart)) << "before " << name;
        ASSERT_TRUE(effect->load());
        EXPECT_EQ(effect->getShader()->getProgram()->getName(),
                  "ORVANE_TONE_PROGRAM_" + std::to_string(next.id));
        EXPECT_TRUE(draws(*effect, next, chart)) << name;
        loaded = &next;
    }
}

TEST_P(ToneMappingEffectTest, returnsToTheLoadedOperator) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto effect = makeEffect(findCase("reinhard"), texture.get());
    effect->setAsHables(CURVE);
    effect->setAsReinhard(WHITE);
    EXPECT_TRUE(draws(*effect, findCase("reinhard_white"), chart));
}

TEST_P(ToneMappingEffectTest, numbersOfAnOperatorDoNotChooseIt) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto effect = makeEffect(findCase("reinhard"), texture.get());
    effect->setHablesDescriptor(CURVE);
    effect->setAcesLookTransform(LOOK);
    EXPECT_EQ(effect->getOperator(), TONE_MAPPING_OPERATOR::REINHARD);
    EXPECT_TRUE(draws(*effect, findCase("reinhard"), chart));
    effect->setReinhardMaxWhite(WHITE);
    EXPECT_TRUE(draws(*effect, findCase("reinhard_white"), chart));
    effect->setOperator(TONE_MAPPING_OPERATOR::HABLES);
    EXPECT_TRUE(effect->getHablesUsed());
    EXPECT_TRUE(draws(*effect, findCase("reinhard_white"), chart));
    ASSERT_TRUE(effect->load());
    EXPECT_TRUE(draws(*effect, findCase("hables_curve"), chart));
    effect->setOperator(TONE_MAPPING_OPERATOR::ACES);
    ASSERT_TRUE(effect->load());
    EXPECT_TRUE(effect->getAcesUsed());
    EXPECT_TRUE(draws(*effect, findCase("aces_look"), chart));
}

TEST_P(ToneMappingEffectTest, numbersReachTheOperatorThatIsLoaded) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto effect = makeEffect(findCase("reinhard"), texture.get());
    effect->setOperator(TONE_MAPPING_OPERATOR::HABLES);
    effect->setReinhardMaxWhite(WHITE);
    EXPECT_TRUE(draws(*effect, findCase("reinhard_white"), chart));
}

TEST_P(ToneMappingEffectTest, takesTheLuminanceSwitchAtTheNextLoad) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto effect = makeEffect(findCase("reinhard"), texture.get());
    effect->setUseLuminance(true);
    EXPECT_TRUE(draws(*effect, findCase("reinhard"), chart));
    ASSERT_TRUE(effect->load());
    EXPECT_TRUE(draws(*effect, findCase("reinhard_luminance"), chart));
}

TEST_P(ToneMappingEffectTest, keepsConstantsApartOnASharedProgram) {
    const FloatPicture chart = makeChart();
    const auto texture = makeTexture(chart);
    const auto first = makeEffect(findCase("reinhard"), texture.get());
    const auto second = makeEffect(findCase("reinhard_white"), texture.get());
    EXPECT_EQ(first->getShader()->getProgram(), second->getShader()->getProgram());
    EXPECT_TRUE(draws(*first, findCase("reinhard"), chart));
    EXPECT_TRUE(draws(*second, findCase("reinhard_white"), chart));
    EXPECT_TRUE(draws(*first, findCase("reinhard"), chart));
}

TEST_P(ToneMappingEffectTest, changesItsSourceAtOnce) {
    const FloatPicture chart = makeChart();
    const FloatPicture other(3, 2, {0.5f, 7.0f, 0.1f, 0.3f});
    const auto chartTexture = makeTexture(chart);
    const auto otherTexture = makeTexture(other);
    const auto effect = makeEffect(findCase("reinhard_luminance"), chartTexture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), chartTexture.get());
    effect->setSourceTexture(otherTexture.get());
    EXPECT_EQ(effect->getSourceTexture(), otherTexture.get());
    EXPECT_EQ(effect->getShader()->getTexture(0, 0), otherTexture.get());
    EXPECT_TRUE(draws(*effect, findCase("reinhard_luminance"), other));
    effect->setSourceTexture(nullptr);
    EXPECT_TRUE(draws(*effect, findCase("reinhard_luminance"), FloatPicture(2, 2, {0.0f, 0.0f, 0.0f, 1.0f})));
}

TEST_P(ToneMappingEffectTest, mapsWhiteToOne) {
    // The meaning of the white point, whatever the formula.
    const FloatPixel white = drawOne(findCase("reinhard_white"), {WHITE.x, WHITE.y, WHITE.z, 1.0f});
    for (std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(white[channel], 1.0f, 1e-6f);
    const FloatPixel grey = drawOne(findCase("reinhard_luminance"), {2.0f, 2.0f, 2.0f, 1.0f});
    EXPECT_NEAR(grey[1], 1.0f, 1e-6f);
}

TEST_P(ToneMappingEffectTest, drawsTheSameBitsInBothLanguages) {
    const FloatPicture chart = makeChart();
    const auto drawAll = [&] {
        ovMemory::Buffer<FloatPicture> pictures;
        const auto texture = makeTexture(chart);
        for (const OperatorCase& row : CASES)
            pictures.push_back(draw(*makeEffect(row, texture.get())->getShader(), chart.width, chart.height));
        return pictures;
    };
    const ovMemory::Buffer<FloatPicture> pictures = drawAll();
    useLanguage(getOtherLanguage());
    const ovMemory::Buffer<FloatPicture> others = drawAll();
    for (std::size_t i = 0; i < pictures.size(); ++i)
        EXPECT_TRUE(picturesAreIdentical(ovMemory::String("tone_mapping_languages_") + CASES[i].name,
                                         others[i], pictures[i]));
}

} // namespace toneMappingEffectTest

#include <ovVeldris/effects/atmosphere/AtmosphereLuts.h>

#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/atmosphere/AtmosphereFixture.h>

using namespace ovVeldris;
using namespace atmosphereReference;

namespace {

/// A ray that passes the ground so closely meets it or not by a rounding: heights are kept to half a metre.
constexpr double HAIR = 0.01;

/// Of 32-bit floats: lengths of 6400 km have steps of half a metre, their squares of 4 km^2.
constexpr double RELATIVE = 4e-3;
constexpr double ABSOLUTE = 2e-5;

class AtmosphereLutsTest : public AtmosphereFixture {
protected:
    /// Of a size that the slow reference can follow.
    ovMemory::UniquePtr<AtmosphereEffect> makeSmallEffect() {
        auto effect = makeEffect();
        effect->setSunTransmittanceLutWidth(96);
        effect->setSunTransmittanceLutHeight(48);
        effect->setMultiScatteringLutWidth(30);
        effect->setMultiScatteringLutHeight(22);
        return effect;
    }

    /// What a texel stands for: the place above the ground and the direction towards the sun.
    struct Texel {
        Three origin;
        Three toSun;
    };
    static Texel texelAt(unsigned int x, unsigned int y, const FloatPicture& table) {
        const double cosine = 2.0 * (x + 0.5) / table.width - 1.0;
        const double h = 100.0 * (y + 0.5) / table.height;
        return {{0.0, GROUND + h, 0.0}, {0.0, cosine, -std::sqrt(1.0 - cosine * cosine)}};
    }

    void expectTable(const FloatPicture& drawn, const std::function<Three(const Texel&)>& expected) {
        unsigned int wrong = 0;
        unsigned int unsure = 0;
        for (unsigned int y = 0; y < drawn.height; ++y)
            for (unsigned int x = 0; x < drawn.width; ++x) {
                const Texel texel = texelAt(x, y, drawn);
                if (std::abs(clearanceOf(texel.origin, texel.toSun)) < HAIR) {
                    ++unsure;
                    continue;
                }
                const Three reference = expected(texel);
                const FloatPixel& pixel = drawn.at(x, y);
                bool isRight = pixel[3] == 1.0f;
                for (unsigned int i = 0; i < 3; ++i)
                    isRight =
                        isRight && std::abs(pixel[i] - reference[i]) <= RELATIVE * reference[i] + ABSOLUTE;
                if (!isRight && ++wrong <= 3)
                    ADD_FAILURE() << x << ", " << y << ": " << pixel[0] << " " << pixel[1] << " " << pixel[2]
                                  << " and not " << reference[0] << " " << reference[1] << " "
                                  << reference[2];
            }
        EXPECT_EQ(wrong, 0u);
        EXPECT_LE(unsure, drawn.width / 8);
    }

    void expectTables(AtmosphereEffect& effect) {
        const Air air = {infoOf(effect)};
        const FloatPicture sun = readFloats(*effect.getSunTransmittanceLut());
        expectTable(sun, [&](const Texel& t) { return air.sunTransmittance(t.origin, t.toSun); });
        expectTable(readFloats(*effect.getMultiScatteringLut()),
                    [&](const Texel& t) { return air.multiScattering(t.origin, t.toSun, sun); });
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, AtmosphereLutsTest, bothLanguages(), languageName);

TEST_P(AtmosphereLutsTest, areNamedAndShapedAsTheEffectSays) {
    const auto effect = makeEffect();
    ASSERT_NE(effect->getSunTransmittanceLut(), nullptr);
    EXPECT_EQ(effect->getSunTransmittanceLut()->getName(), "_SUN_LUT");
    EXPECT_EQ(effect->getMultiScatteringLut()->getName(), "_MULTI_LUT");
    EXPECT_TRUE(effect->getSunTransmittanceLut()->isUnloaded());
    EXPECT_EQ(effect->getLutShader(), nullptr);
    effect->setName("air");
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(effect->getSunTransmittanceLut()->getName(), "_SUN_LUT"); // as it was made
    EXPECT_EQ(effect->getLutShader()->getName(), "air_LUT");
    EXPECT_TRUE(effect->getLutShader()->getHidden());
    const auto expectShape = [](const ovGraphics::Texture& table, unsigned int width, unsigned int height,
                                int format) {
        EXPECT_EQ(table.getWidth(), width);
        EXPECT_EQ(table.getHeight(), height);
        EXPECT_EQ(int(table.getFormat()), format);
        EXPECT_FALSE(table.isUnloaded());
    };
    expectShape(*effect->getSunTransmittanceLut(), 256, 64, 2);
    expectShape(*effect->getMultiScatteringLut(), 64, 64, 2);
    effect->setUseHalfFloatForLuts(true);
    effect->setSunTransmittanceLutWidth(20);
    effect->setSunTransmittanceLutHeight(11);
    effect->setMultiScatteringLutWidth(9);
    effect->setMultiScatteringLutHeight(7);
    EXPECT_TRUE(effect->refreshLuts());
    expectShape(*effect->getSunTransmittanceLut(), 20, 11, 10);
    expectShape(*effect->getMultiScatteringLut(), 9, 7, 10);
    const auto* device = effect->getSunTransmittanceLut()->getGpuTexture();
    EXPECT_TRUE(effect->refreshLuts());
    EXPECT_EQ(effect->getSunTransmittanceLut()->getGpuTexture(), device); // as it fits, it is drawn again
}

TEST_P(AtmosphereLutsTest, shareAProgramByTheirCounts) {
    const AtmosphereLutIdGenerator id;
    const AtmosphereEffectInfo defaults;
    AtmosphereEffectInfo other;
    other.sunIlluminanceFactor = 9.0f;
    other.sunTransmittanceLutWidth = 3;
    EXPECT_EQ(id(other), id(defaults));
    for (unsigned int AtmosphereEffectInfo::*count :
         {&AtmosphereEffectInfo::sunLutSampleCount,
          &AtmosphereEffectInfo::multiScatteringLutSphereSampleCount,
          &AtmosphereEffectInfo::multiScatteringLutMarchSampleCount}) {
        other = defaults;
        other.*count = 11;
        EXPECT_NE(id(other), id(defaults));
    }
    const auto effect = makeEffect();
    effect->setRaymarchSampleCount(12);
    effect->setMultiScatteringLutSphereSampleCount(3);
    effect->setMultiScatteringLutMarchSampleCount(5);
    ASSERT_TRUE(effect->load());
    const ovGraphics::Program& program = *effect->getLutShader()->getProgram();
    EXPECT_EQ(program.getName(), "ORVANE_ATMOSPHERE_LUT_PROGRAM_" + std::to_string(id(infoOf(*effect))));
    EXPECT_TRUE(program.getHidden());
    EXPECT_TRUE(program.getActivateCrossCompilerDefines());
    const ovMemory::Buffer<ovGraphics::shading::Define> defines = {
        {"SUN_TRANSMITTANCE_SAMPLE_COUNT", "12u"},
        {"MULTI_SCATTERING_SPHERE_SAMPLE_COUNT", "3u"},
        {"MULTI_SCATTERING_MARCH_SAMPLE_COUNT", "5u"}};
    EXPECT_EQ(program.getSources().getPixel().defines, defines);
    const auto slots = [&](unsigned int buffer) {
        return effect->getLutShader()->getConstantBuffer(buffer, 0)->getPassMemorySlotCount();
    };
    EXPECT_EQ(slots(0), 2u);
    EXPECT_EQ(slots(1), 3u);
    EXPECT_EQ(slots(2), 11u);
    EXPECT_EQ(slots(3), 1u);
    const ovMemory::Borrowed<ovGraphics::Program> held = effect->getLutShader()->getProgram();
    effect->setRaymarchSampleCount(99);
    effect->unload();
    EXPECT_EQ(held.get(), nullptr);
}

TEST_P(AtmosphereLutsTest, followTheirFormulasTexelByTexel) {
    const auto effect = makeSmallEffect();
    ASSERT_TRUE(effect->load());
    expectTables(*effect);
    useStrangeAir(*effect);
    effect->setRaymarchSampleCount(13);
    effect->setMultiScatteringLutSphereSampleCount(5);
    effect->setMultiScatteringLutMarchSampleCount(9);
    ASSERT_TRUE(effect->load());
    expectTables(*effect);
}

TEST_P(AtmosphereLutsTest, waitForARefresh) {
    const auto effect = makeSmallEffect();
    ASSERT_TRUE(effect->load());
    const FloatPicture before = readFloats(*effect->getMultiScatteringLut());
    useStrangeAir(*effect);
    EXPECT_TRUE(picturesAreIdentical("atmosphere_lut", readFloats(*effect->getMultiScatteringLut()), before));
    EXPECT_TRUE(effect->refreshLuts());
    expectTables(*effect);
}

TEST_P(AtmosphereLutsTest, holdTheSameInHalfFloats) {
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    const FloatPicture full = readFloats(*effect->getSunTransmittanceLut());
    effect->setUseHalfFloatForLuts(true);
    ASSERT_TRUE(effect->load());
    const auto bytes = effect->getSunTransmittanceLut()->readBack(0);
    ASSERT_TRUE(bytes);
    for (std::size_t i = 0; i < full.pixels.size(); ++i)
        for (unsigned int channel = 0; channel < 4; ++channel) {
            uint16_t half = 0;
            std::memcpy(&half, bytes->data() + (4 * i + channel) * sizeof(half), sizeof(half));
            ASSERT_NEAR(ovImages::halfToFloat(half), full.pixels[i][channel],
                        1e-3f * full.pixels[i][channel] + 1e-7f);
        }
}

TEST_P(AtmosphereLutsTest, areWholeWithoutSteps) {
    const auto effect = makeEffect();
    effect->setRaymarchSampleCount(0);
    effect->setMultiScatteringLutSphereSampleCount(0);
    ASSERT_TRUE(effect->load()) << getGraphicsLogger().getText();
    // Without steps nothing is lost, without directions nothing comes.
    const FloatPicture sun = readFloats(*effect->getSunTransmittanceLut());
    EXPECT_EQ(sun.at(255, 3), (FloatPixel{1.0f, 1.0f, 1.0f, 1.0f}));
    EXPECT_EQ(sun.at(0, 3), (FloatPixel{0.0f, 0.0f, 0.0f, 1.0f}));
    for (const FloatPixel& pixel : readFloats(*effect->getMultiScatteringLut()).pixels)
        ASSERT_EQ(pixel, (FloatPixel{0.0f, 0.0f, 0.0f, 1.0f}));
    effect->setMultiScatteringLutSphereSampleCount(2);
    effect->setMultiScatteringLutMarchSampleCount(0);
    effect->setPlanetAlbedo({});
    ASSERT_TRUE(effect->load());
    for (const FloatPixel& pixel : readFloats(*effect->getMultiScatteringLut()).pixels)
        ASSERT_EQ(pixel, (FloatPixel{0.0f, 0.0f, 0.0f, 1.0f}));
}

TEST_P(AtmosphereLutsTest, obeyPhysics) {
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    const FloatPicture sun = readFloats(*effect->getSunTransmittanceLut());
    for (unsigned int y = 0; y < sun.height; ++y)
        for (unsigned int x = 0; x < sun.width; ++x)
            for (unsigned int i = 0; i < 3; ++i) {
                const float value = sun.at(x, y)[i];
                ASSERT_TRUE(value >= 0.0f && value <= 1.0f);
                // From higher up, and from a higher sun, no less light comes.
                if (y > 0 && x >= sun.width / 2) {
                    ASSERT_GE(value, sun.at(x, y - 1)[i] - 1e-5f) << x << ", " << y;
                }
                if (x > sun.width / 2) {
                    ASSERT_GE(value, sun.at(x - 1, y)[i] - 1e-5f) << x << ", " << y;
                }
            }
    for (const FloatPixel& pixel : readFloats(*effect->getMultiScatteringLut()).pixels)
        for (unsigned int i = 0; i < 3; ++i)
            ASSERT_TRUE(pixel[i] >= 0.0f && pixel[i] < 1.0f);
}

TEST_P(AtmosphereLutsTest, tellWhenATableCannotBeMade) {
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    effect->setSunTransmittanceLutWidth(0);
    effect->setMultiScatteringLutWidth(5);
    getLog().messages.clear();
    EXPECT_TRUE(effect->refreshLuts());
    const ovMemory::Buffer<RecordingLogger::Message> expected = {
        {"Error while creating an atmosphere LUT texture. Aborting generation.", "AtmosphereEffect"}};
    EXPECT_EQ(getLog().messages, expected);
    EXPECT_EQ(effect->getMultiScatteringLut()->getWidth(), 5u); // the other one is drawn all the same
    EXPECT_FALSE(effect->getMultiScatteringLut()->isUnloaded());
    getGraphicsLogger().messages.clear();
}

#include <ovVeldris/effects/SrgbConversion.h>

#include <cmath>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/effects/EffectFixture.h>

using namespace ovVeldris;

namespace {

class SrgbConversionTest : public EffectFixture {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, SrgbConversionTest, bothLanguages(), languageName);

TEST_P(SrgbConversionTest, colorsAreConvertedByTheTransferFunction) {
    constexpr float NUMBERS[] = {-0.5f,  0.0f,  0.001f, 0.0031308f, 0.0032f, 0.02f, 0.04045f,
                                 0.041f, 0.18f, 0.5f,   0.9f,       1.0f,    1.5f,  16.0f};
    constexpr unsigned int COUNT = std::size(NUMBERS);
    FloatPicture source(COUNT, 1);
    for (unsigned int x = 0; x < COUNT; ++x)
        source.at(x, 0) = {NUMBERS[x], NUMBERS[x], NUMBERS[x], 0.25f};
    const auto texture = makeTexture(source);
    const auto encode = SrgbConversion::encode(getGraphics());
    const auto decode = SrgbConversion::decode(getGraphics());
    ASSERT_TRUE(encode && decode) << getGraphicsLogger().getText();
    encode->setSource(*texture);
    decode->setSource(*texture);
    const FloatPicture encoded = draw(*encode->getShader(), COUNT, 1);
    const FloatPicture decoded = draw(*decode->getShader(), COUNT, 1);
    for (unsigned int x = 0; x < COUNT; ++x) {
        const double v = static_cast<double>(NUMBERS[x]);
        const double code = v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
        const double light = v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        for (unsigned int channel = 0; channel < 3; ++channel) {
            // The device's power is one of exp2 and log2, each good to a few units in the last place.
            EXPECT_NEAR(encoded.at(x, 0)[channel], code, 1e-5 * (1.0 + std::abs(code))) << v;
            EXPECT_NEAR(decoded.at(x, 0)[channel], light, 1e-5 * (1.0 + std::abs(light))) << v;
        }
        EXPECT_EQ(encoded.at(x, 0)[3], 0.25f);
        EXPECT_EQ(decoded.at(x, 0)[3], 0.25f);
    }
}

#include <veldris/pictures/PictureShader.h>

#include <cmath>
#include <gtest/gtest.h>
#include <support/Numbers.h>
#include <veldris/SessionTesting.h>
#include <veldris/pictures/PictureTextures.h>

namespace {

using ovGraphics::FORMAT;
using ovImages::Image;
using veldris::PictureShader;

class PictureShaderTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.language = GetParam()})); }

    Image draw(PictureShader& shader, const Image& source, unsigned int width, unsigned int height) {
        ovGraphics::System& graphics = _session.getGraphics();
        const auto texture = veldris::uploadPicture(graphics, source.view());
        const auto target =
            veldris::makeTarget(graphics, "target", FORMAT::R32G32B32A32_FLOAT, width, height);
        shader.setSource(*texture);
        EXPECT_TRUE(veldris::drawPicture(graphics, *shader.getShader(), *target, "pass"));
        return *target->convertToImage();
    }

    Image draw(const ovMemory::UniquePtr<PictureShader>& shader, const Image& source) {
        EXPECT_NE(shader, nullptr) << _session.getLogger().take();
        return shader ? draw(*shader, source, source.getWidth(), source.getHeight()) : Image();
    }

    veldris::Session _session;
};

Image floats(unsigned int width, unsigned int height) {
    return {width, height, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR};
}

TEST_P(PictureShaderTest, colorsAreTakenOutOfTheirCoverage) {
    Image source = floats(3, 1);
    const float samples[3][4] = {
        {0.3f, 0.15f, 3.0f, 0.25f}, {0.5f, 0.25f, 2.0f, 0.0f}, {0.5f, 0.0f, 0.1f, 1.0f}};
    for (unsigned int x = 0; x < 3; ++x)
        for (unsigned int channel = 0; channel < 4; ++channel)
            source.setComponent(x, 0, channel, samples[x][channel]);
    const Image divided = draw(PictureShader::divideByCoverage(_session.getGraphics()), source);
    const float expected[3][4] = {
        {0.4f, 0.2f, 4.0f, 0.25f}, {0.5f, 0.25f, 2.0f, 0.0f}, {0.0f, 0.0f, 0.0f, 1.0f}};
    for (unsigned int x = 0; x < 3; ++x)
        for (unsigned int channel = 0; channel < 4; ++channel)
            EXPECT_NEAR(divided.getComponent(x, 0, channel), expected[x][channel], 1e-6f) << x;
}

TEST_P(PictureShaderTest, depthIsThatOfOneSample) {
    Image samples = floats(9, 6);
    for (unsigned int y = 0; y < 6; ++y)
        for (unsigned int x = 0; x < 9; ++x)
            samples.setComponent(x, y, 0, 0.1f * float(x) + 0.013f * float(y));
    const auto shader = PictureShader::pickDepth(_session.getGraphics());
    ASSERT_NE(shader, nullptr) << _session.getLogger().take();
    shader->setConstants({3.0f, 0.0f, 9.0f, 6.0f});
    const Image depth = draw(*shader, samples, 3, 2);
    for (unsigned int y = 0; y < 2; ++y)
        for (unsigned int x = 0; x < 3; ++x)
            EXPECT_EQ(depth.getComponent(x, y, 0), samples.getComponent(3 * x + 1, 3 * y + 1, 0));
    // The second strip of a picture, whose first row is 1.
    shader->setConstants({3.0f, 1.0f, 9.0f, 6.0f});
    EXPECT_EQ(draw(*shader, samples, 3, 2).getComponent(2, 1, 0), samples.getComponent(7, 1, 0));
}

/// Samples of 3 x 2 pixels, 2 x 2 each, with every kind of number and one that is none in each channel.
Image makeSamples() {
    Image samples = floats(6, 4);
    for (unsigned int y = 0; y < 4; ++y)
        for (unsigned int x = 0; x < 6; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                samples.setComponent(x, y, channel,
                                     std::pow(-1.7f, static_cast<float>(5 * x + 3 * y + channel)) * 0.01f);
    samples.setComponent(0, 0, 0, NOT_A_NUMBER);
    samples.setComponent(3, 1, 1, INFINITE);
    samples.setComponent(5, 3, 2, -INFINITE);
    samples.setComponent(2, 2, 3, NOT_A_NUMBER);
    return samples;
}

TEST_P(PictureShaderTest, samplesAreAveragedToTheLastBit) {
    const Image samples = makeSamples();
    const auto shader = PictureShader::averageSamples(_session.getGraphics(), false);
    ASSERT_NE(shader, nullptr) << _session.getLogger().take();
    shader->setConstants({2.0f, 0.0f, 6.0f, 4.0f});
    const Image picture = draw(*shader, samples, 3, 2);
    for (unsigned int y = 0; y < 2; ++y) {
        for (unsigned int x = 0; x < 3; ++x) {
            for (unsigned int channel = 0; channel < 3; ++channel) {
                double sum = 0.0;
                for (unsigned int i = 0; i < 4; ++i) {
                    const float sample = samples.getComponent(2 * x + i % 2, 2 * y + i / 2, channel);
                    sum += std::isfinite(sample) ? static_cast<double>(sample) : 0.0;
                }
                EXPECT_EQ(picture.getComponent(x, y, channel), static_cast<float>(sum / 4.0)) << x << y;
            }
            EXPECT_EQ(picture.getComponent(x, y, 3), 1.0f);
        }
    }
}

TEST_P(PictureShaderTest, samplesBeforeNothingAreAveragedByWhatCovers) {
    Image samples = floats(4, 2);
    // Two pixels: one covered by a half in all, one not at all. A sample's colour is what its coverage adds.
    const float behind[8] = {0.0f, 1.0f, 1.0f, 1.0f, 0.25f, 0.75f, 1.0f, 1.0f};
    for (unsigned int i = 0; i < 8; ++i) {
        samples.setComponent(i % 4, i / 4, 0, (1.0f - behind[i]) * 3.0f);
        samples.setComponent(i % 4, i / 4, 3, behind[i]);
    }
    const auto shader = PictureShader::averageSamples(_session.getGraphics(), true);
    ASSERT_NE(shader, nullptr) << _session.getLogger().take();
    shader->setConstants({2.0f, 0.0f, 4.0f, 2.0f});
    const Image picture = draw(*shader, samples, 2, 1);
    EXPECT_EQ(picture.getComponent(0, 0, 0), 3.0f);
    EXPECT_EQ(picture.getComponent(0, 0, 3), (4.0f - 0.0f - 1.0f - 0.25f - 0.75f) / 4.0f);
    EXPECT_EQ(picture.getComponent(1, 0, 0), 0.0f);
    EXPECT_EQ(picture.getComponent(1, 0, 3), 0.0f);
}

TEST_P(PictureShaderTest, whatIsNoNumberIsCountedInBlocks) {
    const auto shader = PictureShader::countNotFinite(_session.getGraphics(), 2);
    ASSERT_NE(shader, nullptr) << _session.getLogger().take();
    shader->setConstants({2.0f, 0.0f, 6.0f, 4.0f});
    const Image counts = draw(*shader, makeSamples(), 2, 1); // blocks of 4 x 4 samples, the second half empty
    EXPECT_EQ(counts.getComponent(0, 0, 0), 3.0f);
    EXPECT_EQ(counts.getComponent(1, 0, 0), 1.0f);
}

TEST_P(PictureShaderTest, aTextThatDoesNotCompileIsReported) {
    EXPECT_EQ(PictureShader::create(_session.getGraphics(), "broken", "no shader", {}), nullptr);
    EXPECT_NE(_session.getLogger().take().find("broken"), ovMemory::String::npos);
}

INSTANTIATE_TEST_SUITE_P(Languages, PictureShaderTest, testing::Values("glsl", "hlsl"),
                         [](const auto& language) { return language.param; });

} // namespace

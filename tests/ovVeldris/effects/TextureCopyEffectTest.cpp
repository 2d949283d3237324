#include <cmath>
#include <limits>
#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/TextureCopyEffect.h>

// Its names stay its own where the folder is compiled as one.
namespace textureCopyEffectTest {

using namespace ovVeldris;

namespace {

constexpr ovMemory::StringView SAMPLER_NAME = "VELDRIS_TEX_COPY_SAMPLER";

class TextureCopyEffectTest : public EffectFixture {
protected:
    ovGraphics::Sampler* defaultSampler() { return getGraphics().getSamplerManager()->get(SAMPLER_NAME); }
};

/// Every pixel different, all four channels in use, with values that only floats hold.
FloatPicture makePicture(unsigned int width, unsigned int height) {
    FloatPicture picture(width, height);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            picture.at(x, y) = {float(x) + 0.25f, -float(y), 110000.0f / float(1 + x + y),
                                1e-20f * float(x * y)};
    picture.at(0, 0) = {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(),
                        -0.0f, 0.5f};
    return picture;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, TextureCopyEffectTest, bothLanguages(), languageName);

TEST_P(TextureCopyEffectTest, isNewWithoutSource) {
    const auto effect = TextureCopyEffect::create(getSystem());
    EXPECT_EQ(effect->getSourceTexture(), nullptr);
    EXPECT_EQ(effect->getSourceSampler(), nullptr);
}

TEST_P(TextureCopyEffectTest, hasOneProgram) {
    const auto texture = makeTexture(FloatPicture(1, 1));
    EXPECT_EQ(TextureCopyIdGenerator()({.sourceTexture = texture.get(), .sourceSampler = {}}), 0u);
    TextureCopyEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(effect.getShader()->getProgram()->getName(), "ORVANE_TEX_COPY_PROGRAM_0");
    EXPECT_TRUE(effect.getShader()->getProgram()->getActivateCrossCompilerDefines());
    EXPECT_TRUE(effect.getShader()->getProgram()->getSources().getPixel().defines.empty());
}

TEST_P(TextureCopyEffectTest, setsItsSampler) {
    TextureCopyEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    expectDefaultSampler(effect, defaultSampler(), 0);
}

TEST_P(TextureCopyEffectTest, bindsAtOnceWhenLoaded) {
    TextureCopyEffect effect(getSystem());
    expectSourcesAreBoundAtOnce(effect, [this] { return defaultSampler(); });
}

TEST_P(TextureCopyEffectTest, copiesEveryBit) {
    TextureCopyEffect effect(getSystem());
    const FloatPicture picture = makePicture(7, 5);
    const auto texture = makeTexture(picture);
    effect.setSourceTexture(texture.get());
    ASSERT_TRUE(effect.load());
    EXPECT_TRUE(picturesAreIdentical("texture_copy", draw(*effect.getShader(), 7, 5), picture));
}

TEST_P(TextureCopyEffectTest, stretchesToTheNearestTexel) {
    TextureCopyEffect effect(getSystem());
    const FloatPicture picture = makePicture(3, 2);
    const auto texture = makeTexture(picture);
    effect.setSourceTexture(texture.get());
    ASSERT_TRUE(effect.load());
    FloatPicture expected(9, 4);
    for (unsigned int y = 0; y < 4; ++y)
        for (unsigned int x = 0; x < 9; ++x)
            expected.at(x, y) = picture.at(x / 3, y / 2);
    EXPECT_TRUE(picturesAreIdentical("texture_copy_stretched", draw(*effect.getShader(), 9, 4), expected));
}

TEST_P(TextureCopyEffectTest, readsThroughTheGivenSampler) {
    TextureCopyEffect effect(getSystem());
    FloatPicture picture(2, 1);
    picture.at(0, 0) = {0.0f, 8.0f, -4.0f, 1.0f};
    picture.at(1, 0) = {1.0f, 0.0f, 4.0f, 0.0f};
    const auto texture = makeTexture(picture);
    const auto sampler = ovGraphics::Sampler::create(&getGraphics()); // linear, clamped
    ASSERT_TRUE(sampler->load());
    effect.setSourceTexture(texture.get());
    ASSERT_TRUE(effect.load());
    effect.setSourceSampler(sampler.get());
    // Pixel centres at 0.25, 0.75, 1.25, 1.75 texels; the texels' own are at 0.5 and 1.5.
    FloatPicture expected(4, 1);
    for (unsigned int x = 0; x < 4; ++x) {
        const float weight = std::array{0.0f, 0.25f, 0.75f, 1.0f}[x];
        for (std::size_t channel = 0; channel < 4; ++channel)
            expected.at(x, 0)[channel] =
                std::lerp(picture.at(0, 0)[channel], picture.at(1, 0)[channel], weight);
    }
    // Filter weights have eight bits on most devices: half a step of 1/256 of the largest difference, 8.
    EXPECT_TRUE(picturesMatch("texture_copy_linear", draw(*effect.getShader(), 4, 1), expected,
                              {.worst = 8.0f / 512.0f, .mean = 8.0f / 512.0f}));
}

TEST_P(TextureCopyEffectTest, readsMipZeroOnly) {
    // Shrunk to a quarter, a sampler that chose by size would read the coarse mip.
    auto texture = ovGraphics::Texture::create(&getGraphics());
    texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    texture->setWidth(4);
    texture->setHeight(4);
    texture->setMipCount(3);
    for (unsigned int mip = 0; mip < 3; ++mip) {
        const FloatPicture level(4 >> mip, 4 >> mip, {float(mip), 1.0f, 2.0f, 3.0f});
        texture->setCpuData(0, mip,
                            {reinterpret_cast<const unsigned char*>(level.pixels.data()),
                             level.pixels.size() * sizeof(FloatPixel)});
    }
    ASSERT_TRUE(texture->load()) << getGraphicsLogger().getText();
    TextureCopyEffect effect(getSystem());
    effect.setSourceTexture(texture.get());
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(draw(*effect.getShader(), 1, 1).at(0, 0), (FloatPixel{0.0f, 1.0f, 2.0f, 3.0f}));
}

TEST_P(TextureCopyEffectTest, drawsOpaqueBlackWithoutATexture) {
    TextureCopyEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(draw(*effect.getShader(), 1, 1).at(0, 0), (FloatPixel{0.0f, 0.0f, 0.0f, 1.0f}));
}

} // namespace textureCopyEffectTest

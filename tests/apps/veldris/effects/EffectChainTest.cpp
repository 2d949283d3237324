#include <veldris/effects/EffectChain.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/complexEffects/BlurReference.h>
#include <veldris/SessionTesting.h>

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using veldris::ChainOptions;
using veldris::ChainResult;
using veldris::PICTURE_CONTENT;

class EffectChainTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.language = GetParam(), .timings = true}));
    }

    ChainResult run(const Image& image, const char* text, const ChainOptions& options) {
        ovMemory::Buffer<veldris::PlannedEffect> effects;
        veldris::ChainPlan plan;
        ChainResult result;
        if (!veldris::planEffects(text, effects, result.error) ||
            !veldris::planChain(effects, options, plan, result.error))
            return result;
        return veldris::runChain(_session, image.view(), plan);
    }

    veldris::Session _session;
};

Image onePixel(float red, float green, float blue, float alpha) {
    Image image(1, 1, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    image.setComponent(0, 0, 0, red);
    image.setComponent(0, 0, 1, green);
    image.setComponent(0, 0, 2, blue);
    image.setComponent(0, 0, 3, alpha);
    return image;
}

TEST_P(EffectChainTest, effectsFollowEachOther) {
    const ChainResult result =
        run(onePixel(3.0f, 1.0f, 0.5f, 0.25f),
            "texture-copy;tone-mapping:use-luminance=false,max-white=4,4,4;texture-copy", {});
    ASSERT_TRUE(result) << result.error;
    EXPECT_EQ(result.content, PICTURE_CONTENT::DISPLAY_LINEAR);
    ASSERT_EQ(result.timings.size(), 3u);
    EXPECT_EQ(result.timings[1].effect, "tone-mapping:use-luminance=false,max-white=4,4,4");
    const double light[] = {3.0, 1.0, 0.5};
    for (unsigned int channel = 0; channel < 3; ++channel) {
        const double c = light[channel];
        // A few units in the last place: one division and two products in 32 bits.
        EXPECT_NEAR(result.image->getComponent(0, 0, channel), c * (1.0 + c / 16.0) / (1.0 + c), 1e-6)
            << channel;
    }
    EXPECT_EQ(result.image->getComponent(0, 0, 3), 0.25f);
}

TEST_P(EffectChainTest, blursBetweenOtherEffects) {
    FloatPicture source(13, 10);
    Image picture(13, 10, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 10; ++y)
        for (unsigned int x = 0; x < 13; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel) {
                source.at(x, y)[channel] = float((x * 7 + y * 5 + channel * 3) % 11) / 10.0f;
                picture.setComponent(x, y, channel, source.at(x, y)[channel]);
            }
    const ChainResult result =
        run(picture, "texture-copy;blur:radius=4,preserve-alpha=true;texture-copy", {});
    ASSERT_TRUE(result) << result.error;
    ASSERT_EQ(result.timings.size(), 3u) << "a blur is one step";
    EXPECT_EQ(result.timings[1].effect, "blur:radius=4,preserve-alpha=true");
    const FloatPicture expected = blurReference::blur(source, {.radius = 4, .preservesAlpha = true});
    for (unsigned int y = 0; y < 10; ++y)
        for (unsigned int x = 0; x < 13; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                EXPECT_NEAR(result.image->getComponent(x, y, channel), expected.at(x, y)[channel], 2e-5);
}

TEST_P(EffectChainTest, blursBytesWithoutRoundingBetween) {
    // A step of one in 255: rounded after the first pass it would stay a step.
    Image bytes(32, 32, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    for (unsigned int y = 0; y < 32; ++y)
        for (unsigned int x = 0; x < 32; ++x)
            for (unsigned int channel = 0; channel < 3; ++channel)
                bytes.setComponent(x, y, channel, ((x + y) % 2 == 0 ? 100.0f : 101.0f) / 255.0f);
    ChainOptions options;
    options.raw = true;
    ovMemory::Buffer<veldris::PlannedEffect> effects;
    veldris::ChainPlan plan;
    ovMemory::String error;
    ASSERT_TRUE(veldris::planEffects("blur:radius=6", effects, error) &&
                veldris::planChain(effects, options, plan, error))
        << error;
    const ChainResult result = veldris::runChainForFile(
        _session, std::move(bytes), plan, {COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR}, true);
    ASSERT_TRUE(result) << result.error;
    EXPECT_NEAR(result.image->getComponent(16, 16, 1) * 255.0f, 100.5, 0.01);
}

TEST_P(EffectChainTest, stripsMakeTheSamePicture) {
    // Several strips, the last one lower than the others.
    Image picture(1500, 1001, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    auto* numbers = reinterpret_cast<float*>(picture.getBytes().data());
    for (std::size_t i = 0; i < picture.getBytes().size() / sizeof(float); ++i)
        numbers[i] = static_cast<float>(i * 7919 % 100003) / 20000.0f;
    ovMemory::Buffer<veldris::PlannedEffect> effects;
    veldris::ChainPlan plan;
    ovMemory::String error;
    ASSERT_TRUE(veldris::planEffects("texture-copy;tone-mapping", effects, error)) << error;
    ASSERT_TRUE(veldris::planChain(effects, {}, plan, error)) << error;
    const ChainResult whole = veldris::runChain(_session, picture.view(), plan);
    ASSERT_TRUE(whole) << whole.error;
    for (const COMPONENT_TYPE type : {COMPONENT_TYPE::FLOAT, COMPONENT_TYPE::UINT8}) {
        const ovImages::FileForm form = {type, COLOR_ENCODING::SRGB};
        const ChainResult strips = veldris::runChainForFile(_session, picture, plan, form, false);
        ASSERT_TRUE(strips) << strips.error;
        const Image expected = ovImages::convertImage(whole.image->view(), type, 4, COLOR_ENCODING::SRGB);
        ASSERT_EQ(strips.image->getBytes().size(), expected.getBytes().size());
        // The device computes from the corner of the target, which changes the last places of numbers.
        for (unsigned int y = 0; y < 1001; y += 13)
            for (unsigned int x = 0; x < 1500; x += 17)
                for (unsigned int channel = 0; channel < 4; ++channel)
                    ASSERT_NEAR(strips.image->getComponent(x, y, channel),
                                expected.getComponent(x, y, channel),
                                type == COMPONENT_TYPE::UINT8 ? 1.001 / 255.0 : 1e-5)
                        << x << ", " << y;
        EXPECT_EQ(strips.timings.size(), 2u);
    }
}

TEST_P(EffectChainTest, anAlphaOfOneIsLeftOutOfFiles) {
    Image picture(3, 2, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    for (std::size_t i = 0; i < picture.getBytes().size(); ++i)
        picture.getBytes()[i] = static_cast<unsigned char>(5 + 13 * i);
    ovMemory::Buffer<veldris::PlannedEffect> effects;
    veldris::ChainPlan plan;
    ovMemory::String error;
    ASSERT_TRUE(veldris::planEffects("texture-copy", effects, error)) << error;
    ChainOptions options;
    options.input = PICTURE_CONTENT::SRGB_ENCODED;
    ASSERT_TRUE(veldris::planChain(effects, options, plan, error)) << error;
    const ovImages::FileForm form = {COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB};
    const ChainResult result = veldris::runChainForFile(_session, picture, plan, form, false);
    ASSERT_TRUE(result) << result.error;
    EXPECT_EQ(result.image->getChannels(), 3u);
    EXPECT_TRUE(std::ranges::equal(result.image->getBytes(), picture.getBytes())) << "a copy changes no byte";
}

TEST_P(EffectChainTest, panoramasAreLookedInto) {
    // Four columns of different light: the middle of a panorama is +x, a quarter further on +z.
    Image panorama(4, 2, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 2; ++y)
        for (unsigned int x = 0; x < 4; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                panorama.setComponent(x, y, channel, static_cast<float>(10 * x + channel));
    const struct {
        const char* direction;
        double light; // half way between two columns
    } cases[] = {{"1,0,0", 15.0}, {"0,0,1", 25.0}, {"0,0,-1", 5.0}};
    for (const auto& test : cases) {
        const ChainResult result =
            run(panorama,
                (std::string("image-environment:field-of-view=1,direction=") + test.direction).c_str(), {});
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.content, PICTURE_CONTENT::SCENE_LINEAR);
        double mean = 0.0; // over the four pixels of a row, which lie evenly around the direction
        for (unsigned int x = 0; x < 4; ++x)
            mean += 0.25 * static_cast<double>(result.image->getComponent(x, 0, 0));
        EXPECT_NEAR(mean, test.light, 0.01) << test.direction;
    }
    const ChainResult flat = run(panorama, "image-environment:source-projection=flat", {});
    ASSERT_TRUE(flat) << flat.error;
    EXPECT_NEAR(flat.image->getComponent(3, 1, 2), 32.0f, 1e-4f);
}

Image makeColors(unsigned int width, unsigned int height) {
    Image picture(width, height, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                picture.setComponent(x, y, channel,
                                     static_cast<float>((x * 7 + y * 3 + channel) % 11) / 10.0f);
    return picture;
}

TEST_P(EffectChainTest, grainIsBlendedWithThePictureToTheSameColors) {
    const Image picture = makeColors(31, 17);
    _session.getGraphics().setFixedTime(2.5, 0.0);
    for (const char* noise : {"film-grain:strength=0.8", "film-grain:strength=0.8,rgb-noise=true"}) {
        const ChainResult drawn = run(picture, noise, {});
        const ChainResult blended =
            run(picture, (std::string(noise) + ",blend-grain-in-target=true;texture-copy").c_str(), {});
        ASSERT_TRUE(drawn) << drawn.error;
        ASSERT_TRUE(blended) << blended.error;
        ASSERT_EQ(blended.timings.size(), 3u);
        EXPECT_EQ(blended.timings[0].effect, "picture to blend with");
        EXPECT_FALSE(std::ranges::equal(drawn.image->getBytes(), picture.getBytes()));
        for (unsigned int y = 0; y < 17; ++y)
            for (unsigned int x = 0; x < 31; ++x)
                for (unsigned int channel = 0; channel < 4; ++channel)
                    ASSERT_NEAR(blended.image->getComponent(x, y, channel),
                                drawn.image->getComponent(x, y, channel), 3e-7f)
                        << noise;
    }
}

TEST_P(EffectChainTest, settingsThatChangeNothingKeepEveryBit) {
    const Image picture = makeColors(31, 17); // half transparent, too
    for (const char* identity : {"film-grain:strength=0", "film-grain:strength=0,rgb-noise=true",
                                 "film-grain:strength=0,blend-grain-in-target=true", "texture-copy"}) {
        const ChainResult result = run(picture, identity, {});
        ASSERT_TRUE(result) << result.error;
        EXPECT_TRUE(std::ranges::equal(result.image->getBytes(), picture.getBytes())) << identity;
    }
    // A flat picture has no edges, whatever the settings find.
    Image flat(31, 17, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::SRGB);
    for (unsigned int i = 0; i < 31 * 17; ++i)
        for (unsigned int channel = 0; channel < 4; ++channel)
            flat.setComponent(i % 31, i / 31, channel, 0.3f + 0.17f * static_cast<float>(channel));
    ChainOptions options;
    options.input = PICTURE_CONTENT::SRGB_ENCODED;
    const ChainResult result = run(flat, "fxaa:min-contrast=0,min-luminance=0,smoothing-strength=1", options);
    ASSERT_TRUE(result) << result.error;
    EXPECT_TRUE(std::ranges::equal(result.image->getBytes(), flat.getBytes()));
}

TEST_P(EffectChainTest, fxaaIsGivenWhatTheToneMappingMadeAndEncoded) {
    // Light of two shades that meet in a step: the picture is encoded before its edges are smoothed.
    Image picture(24, 9, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 9; ++y)
        for (unsigned int x = 0; x < 24; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                picture.setComponent(x, y, channel, channel == 3 || y < (x < 12 ? 4u : 5u) ? 1.0f : 0.05f);
    ChainOptions options;
    options.output = PICTURE_CONTENT::SRGB_ENCODED;
    const char* TONE = "tone-mapping:use-luminance=false,max-white=1,1,1";
    const ChainResult mapped = run(picture, TONE, options);
    ASSERT_TRUE(mapped) << mapped.error;
    EXPECT_EQ(mapped.content, PICTURE_CONTENT::DISPLAY_LINEAR);
    const ChainResult smoothed = run(picture, (std::string(TONE) + ";fxaa").c_str(), options);
    ASSERT_TRUE(smoothed) << smoothed.error;
    EXPECT_EQ(smoothed.content, PICTURE_CONTENT::SRGB_ENCODED);
    ASSERT_EQ(smoothed.timings.size(), 3u);
    EXPECT_EQ(smoothed.timings[1].effect, "display-linear to srgb-encoded");

    ChainOptions encoded;
    encoded.input = PICTURE_CONTENT::SRGB_ENCODED;
    encoded.output = PICTURE_CONTENT::SRGB_ENCODED;
    const Image shown =
        ovImages::convertImage(mapped.image->view(), COMPONENT_TYPE::FLOAT, 4, COLOR_ENCODING::SRGB);
    const ChainResult alone = run(shown, "fxaa", encoded);
    ASSERT_TRUE(alone) << alone.error;
    std::size_t between = 0;
    for (unsigned int y = 0; y < 9; ++y)
        for (unsigned int x = 0; x < 24; ++x) {
            const float shade = smoothed.image->getComponent(x, y, 0);
            EXPECT_NEAR(shade, alone.image->getComponent(x, y, 0), 1e-5f);
            between += shade > 0.35f && shade < 0.95f ? 1 : 0;
        }
    EXPECT_GT(between, 5u);
}

TEST_P(EffectChainTest, encodedPicturesStayAsTheyAreUntilSomethingElseIsWanted) {
    Image image(2, 1, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    image.setComponent(0, 0, 1, 128.0f / 255.0f);
    ChainOptions options;
    options.input = PICTURE_CONTENT::SRGB_ENCODED;
    const ChainResult kept = run(image, "texture-copy", options);
    ASSERT_TRUE(kept) << kept.error;
    EXPECT_FLOAT_EQ(kept.image->getComponent(0, 0, 1), 128.0f / 255.0f);
    EXPECT_EQ(kept.image->getEncoding(), COLOR_ENCODING::SRGB);

    // A conversion at the end is the writer's: the numbers stay.
    options.output = PICTURE_CONTENT::DISPLAY_LINEAR;
    const ChainResult atTheEnd = run(image, "texture-copy", options);
    ASSERT_TRUE(atTheEnd) << atTheEnd.error;
    EXPECT_FLOAT_EQ(atTheEnd.image->getComponent(0, 0, 1), 128.0f / 255.0f);
    EXPECT_EQ(atTheEnd.image->getEncoding(), COLOR_ENCODING::SRGB);
}

TEST_P(EffectChainTest, conversionsBetweenEffectsArePasses) {
    Image image = onePixel(128.0f / 255.0f, 0.0f, 1.0f, 0.5f);
    veldris::ChainPlan plan;
    ovMemory::String error;
    ASSERT_TRUE(veldris::planEffects("texture-copy;texture-copy", plan.effects, error)) << error;
    plan.content = PICTURE_CONTENT::SRGB_ENCODED;
    plan.conversions = {{0, PICTURE_CONTENT::SRGB_ENCODED, PICTURE_CONTENT::DISPLAY_LINEAR}};
    const ChainResult decoded = veldris::runChain(_session, image.view(), plan);
    ASSERT_TRUE(decoded) << decoded.error;
    EXPECT_NEAR(decoded.image->getComponent(0, 0, 0), std::pow((128.0 / 255.0 + 0.055) / 1.055, 2.4), 1e-5);
    EXPECT_EQ(decoded.image->getComponent(0, 0, 3), 0.5f);
    ASSERT_EQ(decoded.timings.size(), 3u);
    EXPECT_EQ(decoded.timings[0].effect, "srgb-encoded to display-linear");

    plan.conversions.push_back({1, PICTURE_CONTENT::DISPLAY_LINEAR, PICTURE_CONTENT::SRGB_ENCODED});
    const ChainResult back = veldris::runChain(_session, image.view(), plan);
    ASSERT_TRUE(back) << back.error;
    EXPECT_NEAR(back.image->getComponent(0, 0, 0), 128.0 / 255.0, 1e-5);
}

TEST_P(EffectChainTest, wrongOrdersAreRefusedUnlessRaw) {
    ChainOptions options;
    options.output = PICTURE_CONTENT::SRGB_ENCODED;
    options.outputName = "the file";
    const Image image = onePixel(2.0f, 2.0f, 2.0f, 1.0f);
    EXPECT_EQ(run(image, "texture-copy", options).error,
              "the file takes srgb-encoded colours and the input gives scene-linear ones: put a tone-mapping "
              "between "
              "them, write an EXR or HDR file, or use --raw.");
    EXPECT_FALSE(run(image, "tone-mapping;tone-mapping", options));
    options.raw = true;
    const ChainResult raw = run(image, "texture-copy;texture-copy", options);
    ASSERT_TRUE(raw) << raw.error;
    EXPECT_EQ(raw.image->getComponent(0, 0, 0), 2.0f);
    EXPECT_TRUE(run(image, "tone-mapping;tone-mapping", options));
}

TEST_P(EffectChainTest, pictureTooLargeForTheDeviceIsOneClearLine) {
    const Image image(100000, 1, 4, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    ChainOptions options;
    options.input = PICTURE_CONTENT::SRGB_ENCODED;
    const ChainResult result = run(image, "texture-copy", options);
    EXPECT_FALSE(result);
    EXPECT_NE(result.error.find("100000"), ovMemory::String::npos) << result.error;
    EXPECT_EQ(result.error.find('\n'), ovMemory::String::npos) << result.error;
}

INSTANTIATE_TEST_SUITE_P(Languages, EffectChainTest, testing::Values("glsl", "hlsl"),
                         [](const auto& language) { return language.param; });

} // namespace

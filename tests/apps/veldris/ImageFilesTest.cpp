#include <veldris/ImageFiles.h>

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ovImages/CompositeEncoder.h>

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using veldris::PICTURE_CONTENT;

Image floatPixel(float value, float alpha, COLOR_ENCODING encoding) {
    Image image(1, 1, 4, COMPONENT_TYPE::FLOAT, encoding);
    for (unsigned int channel = 0; channel < 3; ++channel)
        image.setComponent(0, 0, channel, value);
    image.setComponent(0, 0, 3, alpha);
    return image;
}

TEST(ImageFilesTest, theFormatSaysWhatItHolds) {
    const struct {
        const char* path;
        std::optional<PICTURE_CONTENT> content;
    } cases[] = {{"a.png", PICTURE_CONTENT::SRGB_ENCODED},
                 {"a.JPG", PICTURE_CONTENT::SRGB_ENCODED},
                 {"a.jpeg", PICTURE_CONTENT::SRGB_ENCODED},
                 {"a.exr", std::nullopt},
                 {"a.hdr", std::nullopt}};
    for (const auto& test : cases) {
        std::optional<PICTURE_CONTENT> content = PICTURE_CONTENT::SCENE_LINEAR;
        ovMemory::String error;
        EXPECT_TRUE(veldris::contentOfFormat(test.path, content, error)) << error;
        EXPECT_EQ(content, test.content) << test.path;
    }
    std::optional<PICTURE_CONTENT> content;
    ovMemory::String error;
    EXPECT_FALSE(veldris::contentOfFormat("a.bmp", content, error));
    EXPECT_EQ(error.rfind("'a.bmp' names no image format by its extension; write .png", 0), 0u) << error;
}

TEST(ImageFilesTest, colorIsEncodedOnce) {
    const TemporaryFolder folder;
    const struct {
        const char* name;
        COLOR_ENCODING encoding;
        bool raw;
        float stored; // of the linear or encoded value 0.5
    } cases[] = {
        {"linear.png", COLOR_ENCODING::LINEAR, false,
         188.0f / 255.0f}, // 1.055 * 0.5^(1/2.4) - 0.055 = 0.7354
        {"encoded.png", COLOR_ENCODING::SRGB, false, 128.0f / 255.0f},
        {"raw.png", COLOR_ENCODING::LINEAR, true, 128.0f / 255.0f},
        {"linear.exr", COLOR_ENCODING::LINEAR, false, 0.5f},
        {"encoded.exr", COLOR_ENCODING::SRGB, false, 0.21404114f}, // ((0.5 + 0.055) / 1.055)^2.4
        {"raw.exr", COLOR_ENCODING::SRGB, true, 0.5f},
    };
    for (const auto& test : cases) {
        const ovMemory::String path = folder.getPath(test.name);
        ovMemory::String warning;
        ovMemory::String error;
        ASSERT_TRUE(veldris::writePicture(path, floatPixel(0.5f, 1.0f, test.encoding).view(), test.raw,
                                          warning, error))
            << error;
        const ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
        ASSERT_TRUE(read) << read.error;
        EXPECT_NEAR(read.image->getComponent(0, 0, 0), test.stored, 1e-6f) << test.name;
        EXPECT_EQ(read.image->getChannels(), 3u) << test.name;
    }
}

TEST(ImageFilesTest, alphaIsKeptWhereItSaysSomething) {
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("alpha.png");
    ovMemory::String warning;
    ovMemory::String error;
    ASSERT_TRUE(veldris::writePicture(path, floatPixel(0.5f, 0.2f, COLOR_ENCODING::SRGB).view(), false,
                                      warning, error));
    const ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
    ASSERT_TRUE(read) << read.error;
    ASSERT_EQ(read.image->getChannels(), 4u);
    EXPECT_FLOAT_EQ(read.image->getComponent(0, 0, 3), 0.2f);
}

TEST(ImageFilesTest, alphaOfOnePixelIsEnough) {
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("alpha.png");
    Image image(3, 2, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::SRGB);
    for (unsigned int i = 0; i < 6; ++i)
        image.setComponent(i % 3, i / 3, 3, i == 4 ? 0.6f : 1.0f);
    ovMemory::String warning;
    ovMemory::String error;
    ASSERT_TRUE(veldris::writePicture(path, image.view(), false, warning, error)) << error;
    const ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
    ASSERT_TRUE(read) << read.error;
    ASSERT_EQ(read.image->getChannels(), 4u);
    EXPECT_FLOAT_EQ(read.image->getComponent(1, 1, 3), 0.6f);
}

TEST(ImageFilesTest, decodedImagesSayWhatTheyHold) {
    EXPECT_EQ(veldris::contentOf(floatPixel(1, 1, COLOR_ENCODING::LINEAR).view()),
              PICTURE_CONTENT::SCENE_LINEAR);
    EXPECT_EQ(veldris::contentOf(floatPixel(1, 1, COLOR_ENCODING::SRGB).view()),
              PICTURE_CONTENT::SRGB_ENCODED);
}

TEST(ImageFilesTest, aFailedWriteLeavesWhatWasThere) {
    const TemporaryFolder folder;
    ovMemory::String warning;
    ovMemory::String error;
    EXPECT_FALSE(veldris::writePicture(folder.getPath("missing/a.png"),
                                       floatPixel(1, 1, COLOR_ENCODING::SRGB).view(), false, warning, error));
    EXPECT_NE(error.find("missing/a.png"), ovMemory::String::npos) << error;
    EXPECT_TRUE(std::filesystem::is_empty(folder.getPath()));
}

} // namespace

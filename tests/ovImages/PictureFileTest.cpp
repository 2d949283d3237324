#include <ovImages/PictureFile.h>

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <ovImages/CompositeEncoder.h>
#include <support/TemporaryFolder.h>

namespace {

using namespace ovImages;

Image pixels(unsigned int channels, COMPONENT_TYPE type, COLOR_ENCODING encoding,
             std::initializer_list<float> numbers) {
    Image image(static_cast<unsigned int>(numbers.size()) / channels, 1, channels, type, encoding);
    unsigned int i = 0;
    for (const float number : numbers) {
        image.setComponent(i / channels, 0, i % channels, number);
        ++i;
    }
    return image;
}

Image read(const ovMemory::String& path) {
    DecodeResult result = CompositeEncoder().decodeFile(path);
    EXPECT_TRUE(result) << result.error;
    return result ? std::move(*result.image) : Image();
}

/// IEC 61966-2-1, in double precision.
double encoded(double light) {
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
}

double decoded(double number) {
    return number <= 0.04045 ? number / 12.92 : std::pow((number + 0.055) / 1.055, 2.4);
}

} // namespace

TEST(PictureFileTest, formsOfFormats) {
    const CompositeEncoder encoders;
    for (const char* name : {"a.png", "a.jpg", "a.jpeg"}) {
        EXPECT_EQ(formOf(*encoders.findByExtension(name)).components, COMPONENT_TYPE::UINT8) << name;
        EXPECT_EQ(formOf(*encoders.findByExtension(name)).encoding, COLOR_ENCODING::SRGB) << name;
    }
    for (const char* name : {"a.exr", "a.hdr"}) {
        EXPECT_EQ(formOf(*encoders.findByExtension(name)).components, COMPONENT_TYPE::FLOAT) << name;
        EXPECT_EQ(formOf(*encoders.findByExtension(name)).encoding, COLOR_ENCODING::LINEAR) << name;
    }
}

TEST(PictureFileTest, aPictureIsOpaqueWhereEveryAlphaIsOne) {
    for (const auto type :
         {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16, COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT}) {
        const auto linear = COLOR_ENCODING::LINEAR;
        EXPECT_TRUE(isOpaque(pixels(1, type, linear, {0.0f, 0.5f}).view()));
        EXPECT_TRUE(isOpaque(pixels(3, type, linear, {0.0f, 0.5f, 0.5f}).view()));
        EXPECT_TRUE(isOpaque(pixels(2, type, linear, {0.0f, 1.0f, 0.5f, 1.0f}).view()));
        EXPECT_FALSE(isOpaque(pixels(2, type, linear, {0.0f, 1.0f, 0.5f, 0.99f}).view()));
        EXPECT_TRUE(isOpaque(pixels(4, type, linear, {0, 0, 0, 1, 0, 0, 0, 1}).view()));
        EXPECT_FALSE(isOpaque(pixels(4, type, linear, {0, 0, 0, 0.99f, 1, 1, 1, 1}).view()));
    }
}

TEST(PictureFileTest, opaqueAlphaGoes) {
    for (const auto type : {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::FLOAT}) {
        Image image = pixels(4, type, COLOR_ENCODING::SRGB, {0.2f, 0.4f, 0.6f, 1, 0.8f, 0, 1, 1});
        dropOpaqueAlpha(image);
        ASSERT_EQ(image.getChannels(), 3u);
        EXPECT_EQ(image.getEncoding(), COLOR_ENCODING::SRGB);
        EXPECT_NEAR(image.getComponent(1, 0, 0), 0.8f, 1e-6f);
        EXPECT_NEAR(image.getComponent(1, 0, 2), 1.0f, 1e-6f);
        Image holes = pixels(4, type, COLOR_ENCODING::SRGB, {0.2f, 0.4f, 0.6f, 1, 0.8f, 0, 1, 0});
        dropOpaqueAlpha(holes);
        EXPECT_EQ(holes.getChannels(), 4u);
    }
}

TEST(PictureFileTest, lightIsEncodedWhereTheFormatHoldsSrgb) {
    const TemporaryFolder folder;
    const Image light = pixels(4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR, {0.001f, 0.2f, 0.7f, 1});
    const Image shown = pixels(4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::SRGB, {0.001f, 0.2f, 0.7f, 1});
    for (const double number : {0.001, 0.2, 0.7}) {
        const unsigned int channel = number == 0.001 ? 0 : number == 0.2 ? 1 : 2;
        const struct {
            const Image& picture;
            const char* name;
            bool raw;
            double stored;
            double tolerance; // half a step of 8 bits, of the HDR's mantissas, or rounding to floats
        } cases[] = {{light, "light.png", false, encoded(number), 0.5 / 255},
                     {light, "raw.png", true, number, 0.5 / 255},
                     {shown, "shown.png", false, number, 0.5 / 255},
                     {light, "light.exr", false, number, 1e-7},
                     {shown, "shown.exr", false, decoded(number), 1e-6},
                     {shown, "raw.exr", true, number, 1e-7},
                     {light, "light.hdr", false, number, 0.5 / 128},
                     {shown, "shown.hdr", false, decoded(number), 0.5 / 128},
                     {light, "light.jpg", false, encoded(number), 4.0 / 255}};
        for (const auto& test : cases) {
            const ovMemory::Result saved =
                savePicture(folder.getPath(test.name), test.picture.view(), test.raw);
            ASSERT_TRUE(saved) << saved.error;
            EXPECT_EQ(saved.warning, "") << test.name;
            const Image file = read(folder.getPath(test.name));
            EXPECT_EQ(file.getChannels(), 3u) << test.name;
            EXPECT_NEAR(file.getComponent(0, 0, channel), test.stored, test.tolerance + 1e-6) << test.name;
        }
    }
}

TEST(PictureFileTest, nothingIsRoundedThatTheFormatHolds) {
    const TemporaryFolder folder;
    const ovMemory::String png = folder.getPath("deep.png");
    const Image deep = pixels(1, COMPONENT_TYPE::UINT16, COLOR_ENCODING::SRGB, {0.1f, 0.70001f});
    ASSERT_TRUE(savePicture(png, deep.view()));
    EXPECT_EQ(read(png).getComponentType(), COMPONENT_TYPE::UINT16);
    EXPECT_EQ(read(png).getChannels(), 1u);
    EXPECT_EQ(read(png).getComponent(1, 0, 0), deep.getComponent(1, 0, 0));
    const ovMemory::String exr = folder.getPath("half.exr");
    const Image half = pixels(4, COMPONENT_TYPE::HALF, COLOR_ENCODING::LINEAR, {9.0f, 0.1f, 100.0f, 0.5f});
    ASSERT_TRUE(savePicture(exr, half.view()));
    EXPECT_EQ(read(exr).getComponentType(), COMPONENT_TYPE::HALF);
    EXPECT_EQ(read(exr).getComponent(0, 0, 2), 100.0f);
    EXPECT_EQ(read(exr).getComponent(0, 0, 3), 0.5f);
}

TEST(PictureFileTest, greyAndItsAlphaAreKept) {
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("grey.png");
    const auto grey = [](float alpha) {
        return pixels(2, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB, {0.4f, alpha});
    };
    ASSERT_TRUE(savePicture(path, grey(1.0f).view()));
    EXPECT_EQ(read(path).getChannels(), 1u);
    ASSERT_TRUE(savePicture(path, grey(0.2f).view()));
    EXPECT_EQ(read(path).getChannels(), 2u);
    EXPECT_FLOAT_EQ(read(path).getComponent(0, 0, 1), 0.2f);
}

TEST(PictureFileTest, whatTheFormatCannotHoldIsTold) {
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("losses.jpg");
    const float nan = std::nanf("");
    const Image bad = pixels(4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR, {nan, 0.2f, 0.2f, 0.5f});
    const ovMemory::Result saved = savePicture(path, bad.view());
    EXPECT_TRUE(saved);
    EXPECT_TRUE(saved.warning.starts_with("Encoding file '" + path + "': 1 ")) << saved.warning;
    EXPECT_NE(saved.warning.find("alpha"), ovMemory::String::npos) << saved.warning;
}

TEST(PictureFileTest, reasonsAreTold) {
    const TemporaryFolder folder;
    const Image picture = pixels(3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB, {0, 1, 0});
    EXPECT_EQ(savePicture("a.bmp", picture.view()).error,
              "Encoding file 'a.bmp' failed: its extension names no image format; expected one of png, jpg, "
              "jpeg, jpe, exr, hdr, pic, rgbe");
    EXPECT_EQ(savePicture("png", picture.view()).error.rfind("Encoding file 'png' failed: its ext", 0), 0u);
    EXPECT_NE(savePicture("", picture.view()).error, "");
    const ovMemory::String missing = folder.getPath("missing/a.png");
    EXPECT_NE(savePicture(missing, picture.view()).error.find(missing), ovMemory::String::npos);
    EXPECT_NE(savePicture(folder.getPath("a.png"), ImageView()).error.find("a.png' failed: "),
              ovMemory::String::npos);
    EXPECT_TRUE(std::filesystem::is_empty(folder.getPath()));
}

// Headers of Radiance pictures, through the decoder.
#include <ovImages/HdrEncoder.h>
#include <ovImages/support/HandMade.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace {

using namespace ovImages;

DecodeResult decode(const ovMemory::String& header, const handMade::Bytes& pixels) {
    handMade::Bytes file = handMade::fromText(header);
    file.insert(file.end(), pixels.begin(), pixels.end());
    return HdrEncoder().decode(file);
}

TEST(HdrHeaderTest, whatTheHeaderDidToTheNumbersIsUndone) {
    struct Case {
        ovMemory::String variables;
        std::array<float, 3> expected; // of the stored colour (4, 2, 1)
        ovMemory::String warning;
    };
    const Case cases[] = {{"", {4, 2, 1}, ""},
                          {"FORMAT=32-bit_rle_rgbe\n", {4, 2, 1}, ""},
                          {"FORMAT= 32-bit_rle_rgbe \r\n", {4, 2, 1}, ""},
                          {"# EXPOSURE=7\nnonsense\n=\nVIEW= -vtv\n", {4, 2, 1}, ""},
                          {"EXPOSURE=2\n", {2, 1, 0.5f}, ""},
                          {"EXPOSURE=2\nEXPOSURE= 4\n", {0.5f, 0.25f, 0.125f}, ""},
                          {"COLORCORR=1 2 4\n", {4, 1, 0.25f}, ""},
                          {"COLORCORR= 1  2\t4\nEXPOSURE=0.5\n", {8, 2, 0.5f}, ""},
                          {"GAMMA=1\n", {4, 2, 1}, ""},
                          {"GAMMA=2\n", {16, 4, 1}, "HDR: the file's gamma of 2 was undone"},
                          {"GAMMA=2\nEXPOSURE=4\n", {4, 1, 0.25f}, "HDR: the file's gamma of 2 was undone"}};
    for (const Case& c : cases) {
        const DecodeResult result =
            decode("#?RADIANCE\n" + c.variables + "\n-Y 1 +X 1\n", {128, 64, 32, 131});
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.warning, c.warning);
        for (unsigned i = 0; i < 3; ++i)
            // The power is exact to the last bits only.
            EXPECT_NEAR(result.image->getComponent(0, 0, i), c.expected[i], c.expected[i] * 1e-6f)
                << c.variables;
    }
}

TEST(HdrHeaderTest, allEightOrientations) {
    // Stored: scanlines (1 2 3) and (4 5 6). The first axis counts scanlines; -Y runs down, +X to the right.
    struct Case {
        ovMemory::String axes;
        ovMemory::String upright;
    };
    const Case cases[] = {{"-Y 2 +X 3", "123/456/"},  {"-Y 2 -X 3", "321/654/"},  {"+Y 2 +X 3", "456/123/"},
                          {"+Y 2 -X 3", "654/321/"},  {"+X 2 -Y 3", "14/25/36/"}, {"+X 2 +Y 3", "36/25/14/"},
                          {"-X 2 -Y 3", "41/52/63/"}, {"-X 2 +Y 3", "63/52/41/"}};
    handMade::Bytes pixels;
    for (unsigned char i = 1; i <= 6; ++i)
        pixels.insert(pixels.end(), {i, 9, 9, 136});
    for (const Case& c : cases) {
        const DecodeResult result = decode("#?RGBE\n\n" + c.axes + "\n", pixels);
        ASSERT_TRUE(result) << result.error;
        ovMemory::String text;
        for (unsigned y = 0; y < result.image->getHeight(); ++y) {
            for (unsigned x = 0; x < result.image->getWidth(); ++x)
                text += std::to_string(static_cast<int>(result.image->getComponent(x, y, 0)));
            text += '/';
        }
        EXPECT_EQ(text, c.upright) << c.axes;
    }
}

TEST(HdrHeaderTest, unsoundHeaders) {
    struct Case {
        ovMemory::String header;
        ovMemory::String error;
    };
    const ovMemory::String early = "HDR: bad header: the data ends within it";
    const auto noResolution = [](const ovMemory::String& line) {
        return "HDR: bad header: \"" + line + "\" is no resolution such as \"-Y 480 +X 640\"";
    };
    const Case cases[] = {
        {"#?RADIANCE", early},
        {"#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n", early},
        {"#?RADIANCE\n\n", early},
        {"#?RADIANCE\n\n-Y 1 +X 1", early},
        {"#?RADIANCE\n" + ovMemory::String(100000, 'a') + "\n\n-Y 1 +X 1\n", early},
        {"#?RADIANCE\n\n-Y 1 +Y 1\n", noResolution("-Y 1 +Y 1")},
        {"#?RADIANCE\n\n-Y 1\n", noResolution("-Y 1")},
        {"#?RADIANCE\n\n-Y 1 +X 1 3\n", noResolution("-Y 1 +X 1 3")},
        {"#?RADIANCE\n\n-Y -1 +X 1\n", noResolution("-Y -1 +X 1")},
        {"#?RADIANCE\n\n-Y 1x +X 1\n", noResolution("-Y 1x +X 1")},
        {"#?RADIANCE\n\n-Y 99999999999 +X 1\n", noResolution("-Y 99999999999 +X 1")},
        {"#?RADIANCE\nFORMAT=32-bit_rle_xyze\n\n-Y 1 +X 1\n",
         "HDR: the pixel format is 32-bit_rle_xyze: only 32-bit_rle_rgbe can be read"},
        {"#?RADIANCE\nEXPOSURE=0\n\n-Y 1 +X 1\n", "HDR: bad header: EXPOSURE=0 is no positive number"},
        {"#?RADIANCE\nEXPOSURE=nan\n\n-Y 1 +X 1\n", "HDR: bad header: EXPOSURE=nan is no positive number"},
        {"#?RADIANCE\nEXPOSURE=\n\n-Y 1 +X 1\n", "HDR: bad header: EXPOSURE= is no positive number"},
        {"#?RADIANCE\nCOLORCORR=1 2\n\n-Y 1 +X 1\n", "HDR: bad header: COLORCORR= is no positive number"},
        {"#?RADIANCE\nGAMMA=-2\n\n-Y 1 +X 1\n", "HDR: bad header: GAMMA=-2 is no positive number"},
        {"#?RADIANCE\nGAMMA=9\n\n-Y 1 +X 1\n", "HDR: bad header: the gamma is 9: expected 0.2 to 5"},
        {"#?RADIANCE\nEXPOSURE=1e20\nEXPOSURE=1e20\n\n-Y 1 +X 1\n",
         "HDR: bad header: the exposure is 1e+40 in all: expected 1e-30 to 1e+30"}};
    for (const Case& c : cases) {
        const DecodeResult result = decode(c.header, {});
        EXPECT_FALSE(result);
        EXPECT_EQ(result.error, c.error);
    }
}

TEST(HdrHeaderTest, extremeFactorsGiveFiniteNumbers) {
    for (const char* variables : {"EXPOSURE=1e-30\n", "EXPOSURE=1e30\n", "GAMMA=5\nEXPOSURE=1e-30\n"})
        for (const unsigned char exponent : {1, 128, 255}) {
            const DecodeResult result =
                decode("#?RADIANCE\n" + ovMemory::String(variables) + "\n-Y 1 +X 1\n", {255, 0, 1, exponent});
            ASSERT_TRUE(result) << result.error;
            for (unsigned i = 0; i < 3; ++i)
                EXPECT_TRUE(std::isfinite(result.image->getComponent(0, 0, i))) << variables;
            EXPECT_EQ(result.image->getComponent(0, 0, 1), 0.0f);
        }
}

} // namespace

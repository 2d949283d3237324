#include <veldris/demo/EffectPictures.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <support/TemporaryFolder.h>
#include <veldris/Session.h>
#include <veldris/demo/DemoScene.h>
#include <veldris/demo/PictureMeans.h>

namespace {

using ovImages::Image;
using Pictures = std::map<ovMemory::String, Image>;

class EffectPicturesTest : public testing::Test {
protected:
    void SetUp() override {
        veldris::DrawingOptions options;
        options.device = "software";
        options.noCache = true;
        options.timings = true;
        ovMemory::String error;
        ASSERT_TRUE(_session.open(options, error)) << error;
    }

    Pictures drawAll(unsigned int width, unsigned int height, const char* only) {
        Pictures pictures;
        ovMemory::String error;
        const auto take = [&](veldris::EffectPicture& picture, ovMemory::String&) {
            EXPECT_FALSE(picture.caption.empty());
            EXPECT_FALSE(picture.timings.empty());
            EXPECT_TRUE(pictures.emplace(picture.name, std::move(picture.image)).second) << picture.name;
            return true;
        };
        EXPECT_TRUE(veldris::drawEffectPictures(_session, veldris::drawDemoScene(width, height).view(), only,
                                                take, error))
            << error;
        return pictures;
    }

    veldris::Session _session;
};

/// Shades of a part of a picture that are neither of the two of the edges.
std::size_t countBetween(const Image& picture, unsigned int left, unsigned int top, unsigned int width,
                         unsigned int height) {
    std::size_t count = 0;
    for (unsigned int y = top; y < top + height; ++y)
        for (unsigned int x = left; x < left + width; ++x) {
            const float green = picture.getComponent(x, y, 1);
            count += green > 0.15f && green < 0.85f ? 1 : 0;
        }
    return count;
}

TEST_F(EffectPicturesTest, presetsSmoothTheChartEachInItsOwnWay) {
    const Pictures pictures = drawAll(576, 324, "fxaa-presets");
    ASSERT_EQ(pictures.size(), 1u);
    const Image& picture = pictures.at("fxaa-presets");
    EXPECT_EQ(picture.getWidth(), 576u);
    EXPECT_EQ(picture.getHeight(), 324u);
    EXPECT_EQ(countBetween(picture, 0, 0, 96, 108), 0u) << "without FXAA there are two shades";
    for (unsigned int cell = 1; cell < 18; ++cell)
        EXPECT_GT(countBetween(picture, cell % 6 * 96, cell / 6 * 108, 96, 108), 500u) << cell;
    // The first preset searches 16 texels, the last one 25.5: long steps look different.
    std::size_t different = 0;
    for (unsigned int y = 0; y < 108; ++y)
        for (unsigned int x = 0; x < 96; ++x)
            different +=
                picture.getComponent(96 + x, y, 1) != picture.getComponent(480 + x, 216 + y, 1) ? 1 : 0;
    EXPECT_GT(different, 100u);
}

TEST_F(EffectPicturesTest, grainChangesFromFrameToFrameAndBlendsToTheSame) {
    const Pictures pictures = drawAll(192, 128, "film-grain-modes");
    ASSERT_EQ(pictures.size(), 1u);
    const Image& picture = pictures.at("film-grain-modes");
    constexpr unsigned int SIDE = 32; // of a cell: six frames across, four modes down
    const auto colorAt = [&](unsigned int frame, unsigned int mode, unsigned int x, unsigned int y,
                             unsigned int channel) {
        return picture.getComponent(frame * SIDE + x, mode * SIDE + y, channel);
    };
    std::size_t changed = 0, tinted = 0;
    for (unsigned int y = 0; y < SIDE; ++y) {
        for (unsigned int x = 0; x < SIDE; ++x) {
            changed += colorAt(0, 0, x, y, 1) != colorAt(1, 0, x, y, 1) ? 1 : 0;
            const float grey = colorAt(2, 0, x, y, 0) / colorAt(2, 0, x, y, 2);
            tinted += std::abs(colorAt(2, 1, x, y, 0) / colorAt(2, 1, x, y, 2) - grey) > 0.02f ? 1 : 0;
            for (unsigned int mode = 0; mode < 2; ++mode)
                for (unsigned int channel = 0; channel < 4; ++channel)
                    ASSERT_NEAR(colorAt(3, mode, x, y, channel), colorAt(3, mode + 2, x, y, channel), 1e-6f);
        }
    }
    EXPECT_GT(changed, 900u);
    EXPECT_GT(tinted, 700u);
}

TEST_F(EffectPicturesTest, blurSoftensEdgesByItsRadiusAndKeepsTheLight) {
    const Pictures pictures = drawAll(384, 256, "blur-radii");
    ASSERT_EQ(pictures.size(), 1u);
    const Image& picture = pictures.at("blur-radii");
    constexpr unsigned int SIDE = 128; // of a cell
    constexpr double STEP = 0.84;      // from black to white
    // A falling row of weights makes no slope steeper than the step times its largest weight, which is
    // C(2 r + 2, r + 1) / (2^(2 r + 2) - 2) for the radii 0, 2, 4, 8, 16 and 32.
    constexpr double LARGEST_WEIGHTS[] = {1.0, 0.32258, 0.24658, 0.18547, 0.13583, 0.09784};
    const double mean = meanIn(picture, 0, 0, SIDE, SIDE, 1);
    for (unsigned int cell = 0; cell < 6; ++cell) {
        const unsigned int left = cell % 3 * SIDE;
        const unsigned int top = cell / 3 * SIDE;
        EXPECT_NEAR(meanIn(picture, left, top, SIDE, SIDE, 1), mean, 0.01) << cell;
        double slope = 0.0;
        for (unsigned int y = 1; y < SIDE; ++y) // through the rim of the wheel, where it is level
            slope = std::max(slope, double(std::abs(picture.getComponent(left + SIDE / 2, top + y, 1) -
                                                    picture.getComponent(left + SIDE / 2, top + y - 1, 1))));
        EXPECT_LT(slope, STEP * LARGEST_WEIGHTS[cell] + 1e-4) << cell;
        EXPECT_GT(slope, 0.7 * STEP * LARGEST_WEIGHTS[cell]) << cell;
    }
}

TEST_F(EffectPicturesTest, coloursStayInTheirAlphaPlane) {
    const Pictures pictures = drawAll(192, 64, "blur-alpha-planes");
    ASSERT_EQ(pictures.size(), 1u);
    const Image& picture = pictures.at("blur-alpha-planes");
    constexpr unsigned int SIDE = 64; // of a cell
    std::size_t mixedAsWhole = 0, smoothed = 0;
    for (unsigned int y = 0; y < SIDE; ++y) {
        for (unsigned int x = 0; x < SIDE; ++x) {
            for (unsigned int channel = 0; channel < 3; ++channel) {
                const float sharp = picture.getComponent(x, y, channel);
                const float whole = picture.getComponent(SIDE + x, y, channel);
                const float byPlane = picture.getComponent(2 * SIDE + x, y, channel);
                if (sharp == 0.0f) {
                    ASSERT_EQ(byPlane, 0.0f) << x << " " << y << ": the colour of another plane";
                    mixedAsWhole += whole > 0.05f ? 1 : 0;
                } else {
                    // A mean of the two tiles of the plane.
                    ASSERT_GE(byPlane, 0.3999f) << x << " " << y;
                    ASSERT_LE(byPlane, 1.0001f) << x << " " << y;
                    smoothed += byPlane > 0.45f && byPlane < 0.95f ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(mixedAsWhole, 500u) << "without planes they bleed";
    EXPECT_GT(smoothed, 3000u);
}

TEST_F(EffectPicturesTest, areDrawnInAnySizeAndHandedOnUntilSomebodyStops) {
    for (const auto& [name, picture] : drawAll(16, 16, ""))
        EXPECT_EQ(picture.getWidth(), 16u) << name;
    EXPECT_TRUE(drawAll(16, 16, "no such picture").empty());
    ovMemory::String error;
    const auto stop = [](veldris::EffectPicture&, ovMemory::String& reason) {
        reason = "stopped";
        return false;
    };
    EXPECT_FALSE(
        veldris::drawEffectPictures(_session, veldris::drawDemoScene(16, 16).view(), "", stop, error));
    EXPECT_EQ(error, "stopped");
}

} // namespace

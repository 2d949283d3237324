#include <veldris/demo/FocusScenes.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <veldris/SessionTesting.h>

namespace {

using ovImages::Image;
using ovMemory::String;

class FocusScenesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    veldris::Session _session;
};

constexpr unsigned int FRAMES = 6;
constexpr unsigned int CELL_WIDTH = 192;
constexpr unsigned int CELL_HEIGHT = 72;

/// How much neighbours differ in the square around a sphere, in one frame of the sheet. The ground in front
/// of it is left out: that is sharp in frames of its own.
double edgesOf(const Image& sheet, unsigned int frame, unsigned int sphere) {
    // The eye is 2.2 m above the middles of the spheres, and looks down by 0.16 of its way.
    const double distance = 8.0 + 3.5 * sphere;
    const double slope = (0.16 * distance - 2.2) / (distance + 0.16 * 2.2);
    const double scale = 0.5 * CELL_HEIGHT / std::tan(0.3); // pixels of a slope of 1
    const auto radius = static_cast<unsigned int>(scale / distance);
    const unsigned int column = frame % 2 * CELL_WIDTH + (2 * sphere + 1) * CELL_WIDTH / (2 * FRAMES);
    const unsigned int row =
        frame / 2 * CELL_HEIGHT + static_cast<unsigned int>(0.5 * CELL_HEIGHT - scale * slope);
    double sum = 0.0;
    for (unsigned int y = row - radius + 1; y < row + radius; ++y)
        for (unsigned int x = column - radius + 1; x < column + radius; ++x) {
            const double here = double(sheet.getComponent(x, y, 1));
            const double across = double(sheet.getComponent(x - 1, y, 1)) - here;
            const double down = double(sheet.getComponent(x, y - 1, 1)) - here;
            sum += across * across + down * down;
        }
    return sum;
}

TEST_F(FocusScenesTest, eachSphereIsSharpestInItsOwnFrame) {
    Image sheet;
    String error;
    const auto take = [&](veldris::MaterialPicture& picture, String&) {
        EXPECT_FALSE(picture.caption.empty());
        sheet = std::move(*picture.texture->convertToImage());
        return true;
    };
    ASSERT_TRUE(
        veldris::drawFocusPictures(_session, 2 * CELL_WIDTH, 3 * CELL_HEIGHT, "focus-rack", take, error))
        << error;
    ASSERT_EQ(sheet.getWidth(), 2 * CELL_WIDTH);
    ASSERT_EQ(sheet.getHeight(), 3 * CELL_HEIGHT);
    for (unsigned int y = 0; y < sheet.getHeight(); ++y)
        for (unsigned int x = 0; x < sheet.getWidth(); ++x)
            for (unsigned int channel = 0; channel < 3; ++channel)
                ASSERT_TRUE(std::isfinite(sheet.getComponent(x, y, channel))) << x << " " << y;
    for (unsigned int sphere = 0; sphere < FRAMES; ++sphere)
        for (unsigned int frame = 0; frame < FRAMES; ++frame)
            EXPECT_GT(edgesOf(sheet, sphere, sphere),
                      frame == sphere ? 0.0 : 1.1 * edgesOf(sheet, frame, sphere))
                << "sphere " << sphere << " with the focus on sphere " << frame;
}

TEST_F(FocusScenesTest, isDrawnInSmallSizesAndOnlyWhenAsked) {
    int taken = 0;
    String error;
    const auto refuse = [&](veldris::MaterialPicture& picture, String& reason) {
        ++taken;
        EXPECT_EQ(picture.name, veldris::focusPictureNames().front());
        EXPECT_EQ(picture.texture->getWidth(), 16u);
        reason = "the disk is full";
        return false;
    };
    EXPECT_TRUE(veldris::drawFocusPictures(_session, 16, 16, "another-picture", refuse, error)) << error;
    EXPECT_EQ(taken, 0);
    EXPECT_FALSE(veldris::drawFocusPictures(_session, 16, 16, "", refuse, error));
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(error, "the disk is full");
}

} // namespace

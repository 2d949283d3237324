#include <veldris/bake/CrossLayout.h>

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using ovImages::Image;

constexpr unsigned int SIDE = 3;

/// A mip each of whose pixels has a number of its own.
Image numberedMip(unsigned int side) {
    Image mip(side, side * veldris::FACE_COUNT, 1, ovImages::COMPONENT_TYPE::FLOAT,
              ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < mip.getHeight(); ++y) {
        for (unsigned int x = 0; x < side; ++x)
            mip.setComponent(x, y, 0, static_cast<float>(1 + y * side + x));
    }
    return mip;
}

/// Rows of letters: a face's place in the cross, by the order of the faces, and '.' for nothing.
constexpr const char* HORIZONTAL[] = {".2..", "1405", ".3.."};

TEST(CrossLayoutTest, knowsCrossesByTheirShape) {
    struct Case {
        unsigned int width;
        unsigned int height;
        bool isCross;
    };
    const Case cases[] = {{4, 3, true},  {3, 4, true},   {1024, 768, true}, {768, 1024, true}, {2, 1, false},
                          {1, 1, false}, {0, 0, false},  {8, 3, false},     {5, 4, false},     {4, 6, false},
                          {6, 4, false}, {12, 8, false}, {1, 6, false},     {1025, 768, false}};
    for (const Case& row : cases)
        EXPECT_EQ(veldris::isCross(row.width, row.height), row.isCross) << row.width << " x " << row.height;
}

TEST(CrossLayoutTest, putsEachFaceInItsPlace) {
    const Image mip = numberedMip(SIDE);
    const Image cross = veldris::crossOfFaces(mip);
    ASSERT_EQ(cross.getWidth(), 4 * SIDE);
    ASSERT_EQ(cross.getHeight(), 3 * SIDE);
    for (unsigned int y = 0; y < cross.getHeight(); ++y) {
        for (unsigned int x = 0; x < cross.getWidth(); ++x) {
            const char face = HORIZONTAL[y / SIDE][x / SIDE];
            const unsigned int row = static_cast<unsigned int>(face - '0') * SIDE + y % SIDE;
            const float expected = face == '.' ? 0.0f : static_cast<float>(1 + row * SIDE + x % SIDE);
            EXPECT_EQ(cross.getComponent(x, y, 0), expected) << x << ", " << y;
        }
    }
}

TEST(CrossLayoutTest, whatWasUnfoldedFoldsBack) {
    for (const unsigned int side : {1u, 2u, SIDE}) {
        const Image mip = numberedMip(side);
        const Image back = veldris::facesOfCross(veldris::crossOfFaces(mip).view());
        ASSERT_EQ(back.getBytes().size(), mip.getBytes().size());
        EXPECT_TRUE(std::ranges::equal(back.getBytes(), mip.getBytes())) << side;
    }
}

TEST(CrossLayoutTest, theLastFaceOfAVerticalCrossIsTurned) {
    const Image mip = numberedMip(SIDE);
    const Image horizontal = veldris::crossOfFaces(mip);
    Image vertical(3 * SIDE, 4 * SIDE, 1, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 3 * SIDE; ++y) {
        for (unsigned int x = 0; x < 3 * SIDE; ++x)
            vertical.setComponent(x, y, 0, horizontal.getComponent(x, y, 0));
    }
    for (unsigned int y = 0; y < SIDE; ++y) {
        for (unsigned int x = 0; x < SIDE; ++x)
            vertical.setComponent(2 * SIDE - 1 - x, 4 * SIDE - 1 - y, 0,
                                  mip.getComponent(x, 5 * SIDE + y, 0));
    }
    const Image back = veldris::facesOfCross(vertical.view());
    ASSERT_EQ(back.getBytes().size(), mip.getBytes().size());
    EXPECT_TRUE(std::ranges::equal(back.getBytes(), mip.getBytes()));
}

TEST(CrossLayoutTest, otherShapesHaveNoFaces) {
    EXPECT_TRUE(veldris::facesOfCross(numberedMip(1).view()).isEmpty());
    EXPECT_TRUE(veldris::crossOfFaces(Image()).isEmpty());
}

} // namespace

#include <ovImages/cubes/CubeLayout.h>

#include <ImfEnvmap.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using ovImages::CUBE_LAYOUT;
using ovImages::Image;

constexpr unsigned int SIDE = 3;

/// A mip each of whose pixels has a number of its own.
Image numberedMip(unsigned int side) {
    Image mip(side, side * ovImages::FACE_COUNT, 1, ovImages::COMPONENT_TYPE::FLOAT,
              ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < mip.getHeight(); ++y) {
        for (unsigned int x = 0; x < side; ++x)
            mip.setComponent(x, y, 0, static_cast<float>(1 + y * side + x));
    }
    return mip;
}

/// Rows of letters: a face's place in the cross, by the order of the faces, and '.' for nothing.
constexpr const char* HORIZONTAL[] = {".2..", "1405", ".3.."};

TEST(CubeLayoutTest, knowsLayoutsByTheirShape) {
    using enum CUBE_LAYOUT;
    struct Case {
        unsigned int width;
        unsigned int height;
        CUBE_LAYOUT layout;
    };
    const Case cases[] = {{4, 3, CROSS},     {3, 4, CROSS},  {1024, 768, CROSS}, {768, 1024, CROSS},
                          {1, 6, STRIP},     {6, 1, STRIP},  {64, 384, STRIP},   {384, 64, STRIP},
                          {2, 1, NONE},      {1, 1, NONE},   {0, 0, NONE},       {8, 3, NONE},
                          {5, 4, NONE},      {4, 6, NONE},   {6, 4, NONE},       {12, 8, NONE},
                          {1025, 768, NONE}, {64, 385, NONE}};
    for (const Case& row : cases)
        EXPECT_EQ(ovImages::cubeLayoutOf(row.width, row.height), row.layout)
            << row.width << " x " << row.height;
}

TEST(CubeLayoutTest, facesOfAStripAreInTheirOrder) {
    const Image mip = numberedMip(SIDE);
    const Image column = ovImages::facesOfPicture(mip.view(), CUBE_LAYOUT::STRIP);
    EXPECT_TRUE(std::ranges::equal(column.getBytes(), mip.getBytes()));
    Image row(6 * SIDE, SIDE, 1, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 6 * SIDE; ++y) {
        for (unsigned int x = 0; x < SIDE; ++x)
            row.setComponent(y / SIDE * SIDE + x, y % SIDE, 0, mip.getComponent(x, y, 0));
    }
    const Image folded = ovImages::facesOfPicture(row.view(), CUBE_LAYOUT::STRIP);
    EXPECT_TRUE(std::ranges::equal(folded.getBytes(), mip.getBytes()));
}

/// A direction in three channels.
using Direction = std::array<float, 3>;

/// Direct3D's layout of cubes: from the middle of a face to its right and to its top.
constexpr Direction FORWARD[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
constexpr Direction RIGHT[] = {{0, 0, -1}, {0, 0, 1}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {-1, 0, 0}};
constexpr Direction UP[] = {{0, 1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}, {0, 1, 0}, {0, 1, 0}};

// The truth is OpenEXR's own function from places in its cube to directions. Its space has x and z the other
// way round: the middle of its panoramas lies in +z, that of ours in +x, and right is right in both.
TEST(CubeLayoutTest, aCubeOfOpenExrShowsTheSameDirections) {
    constexpr int EXR_SIDE = 5;
    const Imath::Box2i window(Imath::V2i(0, 0), Imath::V2i(EXR_SIDE - 1, 6 * EXR_SIDE - 1));
    Image strip(EXR_SIDE, 6 * EXR_SIDE, 3, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (int face = 0; face < 6; ++face) {
        const auto exrFace = static_cast<Imf::CubeMapFace>(face);
        for (int y = 0; y < EXR_SIDE; ++y) {
            for (int x = 0; x < EXR_SIDE; ++x) {
                const Imath::V2f place(static_cast<float>(x), static_cast<float>(y));
                const Imath::V3f direction = Imf::CubeMap::direction(exrFace, window, place).normalized();
                const Imath::V2f pixel = Imf::CubeMap::pixelPosition(exrFace, window, place);
                for (int channel = 0; channel < 3; ++channel)
                    strip.setComponent(static_cast<unsigned int>(pixel.x), static_cast<unsigned int>(pixel.y),
                                       static_cast<unsigned int>(channel), direction[channel]);
            }
        }
    }
    const Image mip = ovImages::facesOfPicture(strip.view(), CUBE_LAYOUT::EXR_STRIP);
    ASSERT_EQ(mip.getHeight(), 6u * EXR_SIDE);
    for (unsigned int y = 0; y < mip.getHeight(); ++y) {
        for (unsigned int x = 0; x < mip.getWidth(); ++x) {
            const unsigned int face = y / EXR_SIDE;
            // OpenEXR's texels reach to the edges of a face.
            const float across = 2.0f * static_cast<float>(x) / (EXR_SIDE - 1) - 1.0f;
            const float upwards = 1.0f - 2.0f * static_cast<float>(y % EXR_SIDE) / (EXR_SIDE - 1);
            const float length = std::sqrt(1.0f + across * across + upwards * upwards);
            for (unsigned int channel = 0; channel < 3; ++channel) {
                const float expected =
                    (FORWARD[face][channel] + across * RIGHT[face][channel] + upwards * UP[face][channel]) /
                    length;
                EXPECT_NEAR(mip.getComponent(x, y, 2 - channel), expected, 1e-6f)
                    << "face " << face << ", " << x << ", " << y % EXR_SIDE;
            }
        }
    }
}

TEST(CubeLayoutTest, putsEachFaceInItsPlace) {
    const Image mip = numberedMip(SIDE);
    const Image cross = ovImages::crossOfFaces(mip);
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

TEST(CubeLayoutTest, whatWasUnfoldedFoldsBack) {
    for (const unsigned int side : {1u, 2u, SIDE}) {
        const Image mip = numberedMip(side);
        const Image back = ovImages::facesOfPicture(ovImages::crossOfFaces(mip).view(), CUBE_LAYOUT::CROSS);
        ASSERT_EQ(back.getBytes().size(), mip.getBytes().size());
        EXPECT_TRUE(std::ranges::equal(back.getBytes(), mip.getBytes())) << side;
    }
}

TEST(CubeLayoutTest, theLastFaceOfAVerticalCrossIsTurned) {
    const Image mip = numberedMip(SIDE);
    const Image horizontal = ovImages::crossOfFaces(mip);
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
    const Image back = ovImages::facesOfPicture(vertical.view(), CUBE_LAYOUT::CROSS);
    ASSERT_EQ(back.getBytes().size(), mip.getBytes().size());
    EXPECT_TRUE(std::ranges::equal(back.getBytes(), mip.getBytes()));
}

TEST(CubeLayoutTest, otherShapesHaveNoFaces) {
    for (const CUBE_LAYOUT layout : {CUBE_LAYOUT::NONE, CUBE_LAYOUT::CROSS})
        EXPECT_TRUE(ovImages::facesOfPicture(numberedMip(1).view(), layout).isEmpty());
    EXPECT_TRUE(ovImages::crossOfFaces(Image()).isEmpty());
}

} // namespace

#include <ovImages/Panorama.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using ovImages::COMPONENT_TYPE;
using ovImages::Image;

constexpr COMPONENT_TYPE TYPES[] = {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16, COMPONENT_TYPE::HALF,
                                    COMPONENT_TYPE::FLOAT};

// Bytes that differ all over, among them floats that are NaN: what is moved is moved bit by bit.
Image makePanorama(unsigned width, unsigned height, unsigned channels = 1,
                   COMPONENT_TYPE type = COMPONENT_TYPE::UINT8) {
    Image image(width, height, channels, type, ovImages::COLOR_ENCODING::LINEAR);
    unsigned state = width * 7919 + height;
    for (unsigned char& byte : image.getBytes()) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<unsigned char>(state >> 24);
    }
    return image;
}

bool isSame(const Image& a, const Image& b) {
    return a.getWidth() == b.getWidth() && a.getHeight() == b.getHeight() &&
           a.getComponentType() == b.getComponentType() && a.getChannels() == b.getChannels() &&
           std::ranges::equal(a.getBytes(), b.getBytes());
}

// The bytes of one pixel.
std::string pixelOf(const Image& image, unsigned x, unsigned y) {
    const std::size_t size = image.getBytes().size() / image.getWidth() / image.getHeight();
    const auto* first = image.getBytes().data() + (std::size_t{y} * image.getWidth() + x) * size;
    return {first, first + size};
}

TEST(PanoramaTest, turningMovesEveryColumn) {
    for (const COMPONENT_TYPE type : TYPES) {
        for (const unsigned channels : {1u, 2u, 3u, 4u}) {
            // Seven columns divide no power of two: a number below 0 that wrapped round would be another.
            const Image before = makePanorama(7, 3, channels, type);
            for (const int columns : {0, 1, 2, 6, 7, 8, 700003, -1, -3, -7, -8, -700003}) {
                Image turned = before;
                ovImages::turnPanorama(turned, columns);
                for (int x = 0; x < 7; ++x)
                    for (unsigned y = 0; y < 3; ++y)
                        EXPECT_EQ(pixelOf(turned, unsigned(((x + columns) % 7 + 7) % 7), y),
                                  pixelOf(before, unsigned(x), y))
                            << columns << " of " << channels;
            }
        }
    }
}

TEST(PanoramaTest, turningBackRestoresEveryBit) {
    for (const unsigned width : {1u, 2u, 7u, 16u, 1024u}) {
        const Image before = makePanorama(width, 2, 3, COMPONENT_TYPE::FLOAT);
        for (const std::ptrdiff_t columns : {std::ptrdiff_t{1}, std::ptrdiff_t{5}, std::ptrdiff_t{1023},
                                             std::numeric_limits<std::ptrdiff_t>::max()}) {
            Image turned = before;
            ovImages::turnPanorama(turned, columns);
            ovImages::turnPanorama(turned, -columns);
            EXPECT_TRUE(isSame(turned, before)) << width << " by " << columns;
        }
        Image turned = before;
        ovImages::turnPanorama(turned, 1);
        EXPECT_EQ(isSame(turned, before), width == 1);
    }
}

TEST(PanoramaTest, mirroringReversesColumnsAndTwiceChangesNothing) {
    for (const COMPONENT_TYPE type : TYPES) {
        for (const unsigned width : {1u, 2u, 7u, 8u}) {
            const Image before = makePanorama(width, 3, 3, type);
            Image mirrored = before;
            ovImages::mirrorPanorama(mirrored);
            for (unsigned x = 0; x < width; ++x)
                for (unsigned y = 0; y < 3; ++y)
                    EXPECT_EQ(pixelOf(mirrored, width - 1 - x, y), pixelOf(before, x, y)) << width;
            ovImages::mirrorPanorama(mirrored);
            EXPECT_TRUE(isSame(mirrored, before)) << width;
        }
    }
}

TEST(PanoramaTest, aMirrorTurnsTurnsRound) {
    Image turnedFirst = makePanorama(11, 2);
    Image mirroredFirst = turnedFirst;
    ovImages::turnPanorama(turnedFirst, 3);
    ovImages::mirrorPanorama(turnedFirst);
    ovImages::mirrorPanorama(mirroredFirst);
    ovImages::turnPanorama(mirroredFirst, -3);
    EXPECT_TRUE(isSame(turnedFirst, mirroredFirst));
}

TEST(PanoramaTest, theEmptyPictureStaysEmpty) {
    Image nothing;
    ovImages::mirrorPanorama(nothing);
    ovImages::turnPanorama(nothing, 5);
    EXPECT_TRUE(nothing.isEmpty());
}

TEST(PanoramaTest, anglesBecomeTheNearestColumns) {
    struct Case {
        unsigned width;
        double degrees;
        std::ptrdiff_t columns;
    };
    constexpr double ENDLESS = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {1024, 90, 256},
        {1024, 1, 3},
        {1024, 0.17, 0},
        {1024, 0.18, 1}, // a column is 0.3516 degrees
        {720, 0.25, 1},
        {720, -0.25, -1},
        {720, 0.2, 0}, // halves go away from 0
        {4, 50, 1},
        {4, 40, 0},
        {4, -90, -1},
        {4, 450, 1},
        {4, -450, -1},
        {4, 360, 0},
        {7, 180, 4},
        {7, 540, 4},
        {7, -540, -4},
        {1u << 20, 3.6e6, 0},
        {16, 1e300, std::lround(std::fmod(1e300, 360.0) / 22.5)},
        {0, 90, 0},
        {4, ENDLESS, 0},
        {4, -ENDLESS, 0},
        {4, std::nan(""), 0},
    };
    for (const Case& row : cases)
        EXPECT_EQ(ovImages::getColumnsOfTurn(row.width, row.degrees), row.columns)
            << row.width << " by " << row.degrees;
    for (double degrees = 0.0; degrees < 800.0; degrees += 0.37)
        EXPECT_EQ(ovImages::getColumnsOfTurn(1001, -degrees), -ovImages::getColumnsOfTurn(1001, degrees));
}

} // namespace

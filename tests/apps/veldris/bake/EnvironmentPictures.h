// Small environments whose colours tell directions.
#pragma once

#include <cmath>
#include <gtest/gtest.h>
#include <ovImages/CompositeEncoder.h>
#include <ovMemory/Memory.h>
#include <support/LightTruth.h>

using lightTruth::Direction;

/// Direction of the middle of a texel of a face.
inline Direction directionOfTexel(unsigned int face, unsigned int side, unsigned int x, unsigned int y) {
    return lightTruth::faceDirection(face, side, x + 0.5, y + 0.5);
}

/// Direction of the middle of a pixel of a panorama.
inline Direction directionOfPixel(unsigned int width, unsigned int height, unsigned int x, unsigned int y) {
    return lightTruth::panoramaDirection(width, height, x + 0.5, y + 0.5);
}

/// Directions as colours: half of each part, and 0.5.
inline void setDirection(ovImages::Image& image, unsigned int x, unsigned int y, const Direction& direction) {
    for (unsigned int channel = 0; channel < 3; ++channel)
        image.setComponent(x, y, channel, static_cast<float>(0.5 + 0.5 * direction[channel]));
    if (image.getChannels() == 4)
        image.setComponent(x, y, 3, 1.0f);
}

inline ovImages::Image floatImage(unsigned int width, unsigned int height, unsigned int channels = 4) {
    return {width, height, channels, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR};
}

inline ovImages::Image directionPanorama(unsigned int height) {
    ovImages::Image image = floatImage(2 * height, height);
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < 2 * height; ++x)
            setDirection(image, x, y, directionOfPixel(2 * height, height, x, y));
    }
    return image;
}

/// Six faces below each other.
inline ovImages::Image directionFaces(unsigned int side) {
    ovImages::Image image = floatImage(side, 6 * side);
    for (unsigned int y = 0; y < 6 * side; ++y) {
        for (unsigned int x = 0; x < side; ++x)
            setDirection(image, x, y, directionOfTexel(y / side, side, x, y % side));
    }
    return image;
}

/// The largest difference of a colour from the one that its direction should have.
inline double worstDirection(const ovImages::Image& image, unsigned int x, unsigned int y,
                             const Direction& direction) {
    double worst = 0.0;
    for (unsigned int channel = 0; channel < 3; ++channel)
        worst = std::max(worst, std::abs(image.getComponent(x, y, channel) - 0.5 - 0.5 * direction[channel]));
    return worst;
}

/// The same of six faces below each other.
inline double worstDirectionOfFaces(const ovImages::Image& mip) {
    const unsigned int side = mip.getWidth();
    double worst = 0.0;
    for (unsigned int y = 0; y < 6 * side; ++y) {
        for (unsigned int x = 0; x < side; ++x)
            worst = std::max(worst, worstDirection(mip, x, y, directionOfTexel(y / side, side, x, y % side)));
    }
    return worst;
}

inline void writeImage(const ovMemory::String& path, const ovImages::Image& image) {
    const ovMemory::Result written = ovImages::CompositeEncoder().encodeFile(path, image.view());
    EXPECT_TRUE(written) << written.error;
}

/// The picture of a file; an empty one after a failed expectation.
inline ovImages::Image readImage(const ovMemory::String& path) {
    const ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
    EXPECT_TRUE(read) << read.error;
    return read ? *read.image : ovImages::Image();
}

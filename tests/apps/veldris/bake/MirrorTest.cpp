#include <veldris/bake/Mirror.h>

#include "veldris/bake/EnvironmentPictures.h"

namespace {

TEST(MirrorTest, whatWasAlongZIsOnTheOtherSide) {
    for (const unsigned int side : {1u, 2u, 5u, 8u}) {
        veldris::EnvironmentInput input;
        input.isCube = true;
        input.image = directionFaces(side);
        veldris::mirror(input);
        for (unsigned int y = 0; y < 6 * side; ++y) {
            for (unsigned int x = 0; x < side; ++x) {
                Direction expected = directionOfTexel(y / side, side, x, y % side);
                expected[2] = -expected[2];
                EXPECT_LT(worstDirection(input.image, x, y, expected), 1e-6)
                    << side << ": " << x << ", " << y;
            }
        }
    }
}

TEST(MirrorTest, panoramasTurnLeftToRight) {
    constexpr unsigned int HEIGHT = 5;
    veldris::EnvironmentInput input;
    input.image = directionPanorama(HEIGHT);
    veldris::mirror(input);
    for (unsigned int y = 0; y < HEIGHT; ++y) {
        for (unsigned int x = 0; x < 2 * HEIGHT; ++x) {
            Direction expected = directionOfPixel(2 * HEIGHT, HEIGHT, x, y);
            expected[2] = -expected[2];
            EXPECT_LT(worstDirection(input.image, x, y, expected), 1e-6) << x << ", " << y;
        }
    }
}

} // namespace

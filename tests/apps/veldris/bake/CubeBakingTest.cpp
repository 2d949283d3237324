#include <veldris/bake/CubeBaking.h>

#include "support/LightTruth.h"
#include "veldris/bake/EnvironmentPictures.h"

#include <algorithm>
#include <functional>
#include <mutex>

namespace {

using ovImages::Image;
using ovMemory::Buffer;
using ovMemory::String;
using veldris::CubeMap;
using veldris::EnvironmentInput;

EnvironmentInput inputOf(Image image, bool isCube) {
    EnvironmentInput input;
    input.image = std::move(image);
    input.isCube = isCube;
    return input;
}

/// Six faces of one colour.
Image uniformFaces(unsigned int side, float red, float green, float blue) {
    Image image = floatImage(side, 6 * side);
    for (unsigned int y = 0; y < 6 * side; ++y) {
        for (unsigned int x = 0; x < side; ++x) {
            const float color[] = {red, green, blue, 1.0f};
            for (unsigned int channel = 0; channel < 4; ++channel)
                image.setComponent(x, y, channel, color[channel]);
        }
    }
    return image;
}

class CubeBakingTest : public testing::Test {
protected:
    CubeMap cube(const EnvironmentInput& input, unsigned int side) {
        CubeMap cube;
        String error;
        EXPECT_TRUE(veldris::bakeCube(input, side, cube, error)) << error;
        return cube;
    }

    CubeMap prefiltered(const EnvironmentInput& input, unsigned int side) {
        CubeMap cube;
        String error;
        EXPECT_TRUE(veldris::bakePrefiltered(input, side, cube, error)) << error;
        return cube;
    }
};

TEST_F(CubeBakingTest, texelsOfCubesShowTheirDirection) {
    const EnvironmentInput panorama = inputOf(directionPanorama(64), false);
    const EnvironmentInput faces = inputOf(directionFaces(32), true);
    struct Case {
        const EnvironmentInput& input;
        unsigned int side;
        std::size_t mips;
        double limit;
    };
    // Straight lines between the directions of pixels, the flat caps around the poles of a panorama (half a
    // row, 1.4 degrees), and the mean over a texel, which is shorter than its middle: 0.02 of one for 8
    // texels a side.
    const Case cases[] = {{panorama, 32, 6, 0.013}, {panorama, 30, 5, 0.013}, {panorama, 8, 4, 0.02},
                          {panorama, 64, 7, 0.013}, {faces, 8, 4, 0.02},      {faces, 48, 6, 0.01}};
    for (const Case& row : cases) {
        const CubeMap baked = cube(row.input, row.side);
        ASSERT_EQ(baked.mips.size(), row.mips);
        EXPECT_EQ(baked.getSide(), row.side);
        EXPECT_LT(worstDirectionOfFaces(baked.mips[0]), row.limit) << row.side;
        EXPECT_EQ(baked.mips.back().getWidth(), 1u);
    }
}

TEST_F(CubeBakingTest, aCubeOfTheSameSizeKeepsItsTexels) {
    const Image faces = directionFaces(5);
    const CubeMap baked = cube(inputOf(faces, true), 5);
    EXPECT_TRUE(std::ranges::equal(baked.mips[0].getBytes(), faces.getBytes()));
    // A panorama that is as wide as the cube is none.
    EXPECT_EQ(cube(inputOf(directionPanorama(8), false), 16).mips[0].getHeight(), 96u);
}

TEST_F(CubeBakingTest, finePicturesAreAveragedRatherThanSkipped) {
    Image stripes = floatImage(512, 256); // of one pixel: 0 and 2
    for (unsigned int y = 0; y < 256; ++y) {
        for (unsigned int x = 1; x < 512; x += 2)
            stripes.setComponent(x, y, 0, 2.0f);
    }
    const CubeMap baked = cube(inputOf(std::move(stripes), false), 8);
    for (unsigned int y = 0; y < 6 * 8; ++y) {
        for (unsigned int x = 0; x < 8; ++x)
            // Each texel averages 16 x 16 points over some ten stripes.
            EXPECT_NEAR(baked.mips[0].getComponent(x, y, 0), 1.0f, 0.15f) << x << ", " << y;
    }
}

TEST_F(CubeBakingTest, prefilteringKeepsOneColor) {
    const CubeMap baked = prefiltered(inputOf(uniformFaces(16, 0.25f, 3.0f, 1000.0f), true), 32);
    ASSERT_EQ(baked.mips.size(), 4u); // 32, 16, 8, 4
    for (const Image& mip : baked.mips) {
        for (unsigned int y = 0; y < mip.getHeight(); ++y) {
            const float expected[] = {0.25f, 3.0f, 1000.0f, 1.0f};
            for (unsigned int channel = 0; channel < 4; ++channel)
                // Far texels are summed in groups.
                EXPECT_NEAR(mip.getComponent(y % mip.getWidth(), y, channel) / expected[channel], 1.0, 0.003);
        }
    }
}

TEST_F(CubeBakingTest, prefilteredMipsLookTheSameWay) {
    const CubeMap baked = prefiltered(inputOf(directionPanorama(64), false), 32);
    EXPECT_LT(worstDirectionOfFaces(baked.mips[0]), 0.013); // as in texelsOfCubesShowTheirDirection
    for (const Image& mip : baked.mips) {
        const unsigned int side = mip.getWidth();
        for (unsigned int y = 0; y < 6 * side; ++y) {
            for (unsigned int x = 0; x < side; ++x) {
                // A lobe around a direction shortens the mean and leaves where it points to.
                const Direction expected = directionOfTexel(y / side, side, x, y % side);
                double length = 0.0;
                double along = 0.0;
                for (unsigned int channel = 0; channel < 3; ++channel) {
                    const double part = 2.0 * mip.getComponent(x, y, channel) - 1.0;
                    length += part * part;
                    along += part * expected[channel];
                }
                EXPECT_GT(along / std::sqrt(length), 0.999) << side << ": " << x << ", " << y;
            }
        }
    }
}

/// Two by two texels of all the light that half floats hold, off the middle of +X, over a dim grey.
Image smallSunFaces(unsigned int side) {
    Image faces = uniformFaces(side, 0.1f, 0.1f, 0.1f);
    for (unsigned int i = 0; i < 4; ++i)
        lightTruth::setColor(faces, side / 3 + i % 2, side / 2 + i / 2, {65504.0, 40000.0, 20000.0});
    return faces;
}

TEST_F(CubeBakingTest, prefilteredMipsAreTheSumOverAllTexels) {
    struct Case {
        const char* name;
        EnvironmentInput sky;
        unsigned int side;
    };
    const Case cases[] = {{"panorama", inputOf(lightTruth::hardSunPanorama(56), false), 32},
                          {"cube of that size", inputOf(lightTruth::hardSunFaces(32), true), 32},
                          {"cube of another size", inputOf(lightTruth::hardSunFaces(27), true), 20},
                          {"small sun", inputOf(smallSunFaces(40), true), 40}};
    for (const Case& row : cases) {
        const CubeMap baked = prefiltered(row.sky, row.side);
        const auto lights = lightTruth::lightsOf(row.sky.image, row.sky.isCube);
        const auto last = static_cast<unsigned int>(baked.mips.size() - 1);
        ASSERT_EQ(last, row.side < 32 ? 2u : 3u) << row.name; // down to four or five texels
        for (unsigned int mip = 1; mip <= last; ++mip) {
            const Image& image = baked.mips[mip];
            const unsigned int side = row.side >> mip;
            ASSERT_EQ(image.getWidth(), side);
            ASSERT_EQ(image.getHeight(), 6 * side);
            const double roughness = static_cast<double>(mip) / last;
            const double integral = lightTruth::lobeIntegral(roughness);
            double squares = 0.0;
            for (unsigned int y = 0; y < 6 * side; ++y) {
                for (unsigned int x = 0; x < side; ++x) {
                    const auto truth = lightTruth::mirrored(
                        lights, roughness, integral,
                        lightTruth::faceDirection(y / side, side, x + 0.5, y % side + 0.5));
                    for (unsigned int channel = 0; channel < 3; ++channel) {
                        const double error = image.getComponent(x, y, channel) / truth[channel] - 1.0;
                        // Far texels are summed in groups; most where the sun stands on a texel's horizon.
                        EXPECT_NEAR(error, 0.0, 0.06) << row.name << ' ' << mip << ": " << x << ", " << y;
                        squares += error * error;
                    }
                }
            }
            EXPECT_LT(std::sqrt(squares / (18.0 * side * side)), 0.01) << row.name << ' ' << mip;
        }
    }
}

TEST_F(CubeBakingTest, aPrefilteredCubeOfTheSameSizeKeepsItsTexels) {
    // Beside a sun, where a texel that is drawn anew takes a little of its neighbour.
    const Image faces = smallSunFaces(37);
    const CubeMap same = prefiltered(inputOf(faces, true), 37);
    EXPECT_TRUE(std::ranges::equal(same.mips[0].getBytes(), faces.getBytes()));
}

TEST_F(CubeBakingTest, irradianceIsTheCosinesMean) {
    CubeMap baked;
    ovVeldris::IrradianceCoefficients coefficients;
    String error;
    ASSERT_TRUE(
        veldris::bakeIrradiance(inputOf(directionPanorama(128), false), 64, baked, coefficients, error))
        << error;
    ASSERT_EQ(baked.mips.size(), 1u);
    ASSERT_EQ(baked.getSide(), 64u);
    double worst = 0.0;
    for (unsigned int y = 0; y < 6 * 64; ++y) {
        for (unsigned int x = 0; x < 64; ++x) {
            // The light 0.5 + 0.5 d gives 0.5 + 0.5 d 2/3.
            Direction expected = directionOfTexel(y / 64, 64, x, y % 64);
            for (double& part : expected)
                part *= 2.0 / 3.0;
            worst = std::max(worst, worstDirection(baked.mips[0], x, y, expected));
        }
    }
    EXPECT_LT(worst, 0.0002);                              // sums over texels of 1.4 degrees
    EXPECT_NEAR(coefficients.values[0][0], 1.7725, 0.001); // sqrt(pi), the integral of 0.5 Y
}

TEST_F(CubeBakingTest, irradianceIsExactAtEverySize) {
    const EnvironmentInput skies[] = {inputOf(lightTruth::hardSunPanorama(128), false),
                                      inputOf(lightTruth::hardSunFaces(40), true),
                                      inputOf(lightTruth::oneBrightTexel(100, 50, 99, 0), false)};
    for (const EnvironmentInput& sky : skies) {
        const auto truth = lightTruth::coefficientsOf(lightTruth::lightsOf(sky.image, sky.isCube));
        double largest = 0.0;
        for (const auto& coefficient : truth)
            largest = std::max(largest, std::abs(coefficient[0]));
        for (const unsigned int side : {4u, 7u, 40u}) {
            CubeMap baked;
            ovVeldris::IrradianceCoefficients coefficients;
            String error;
            ASSERT_TRUE(veldris::bakeIrradiance(sky, side, baked, coefficients, error)) << error;
            for (std::size_t k = 0; k < 9; ++k)
                for (std::size_t channel = 0; channel < 3; ++channel)
                    EXPECT_NEAR(coefficients.values[k][channel], truth[k][channel], 1e-6 * largest);
            ASSERT_EQ(baked.getSide(), side);
            for (unsigned int y = 0; y < 6 * side; ++y) {
                for (unsigned int x = 0; x < side; ++x) {
                    const auto expected = lightTruth::irradiance(
                        truth, lightTruth::faceDirection(y / side, side, x + 0.5, y % side + 0.5));
                    // At the middles of texels, so that small cubes agree with large ones.
                    for (unsigned int channel = 0; channel < 3; ++channel)
                        EXPECT_NEAR(baked.mips[0].getComponent(x, y, channel), expected[channel],
                                    2e-6 * largest);
                }
            }
        }
    }
}

TEST_F(CubeBakingTest, panoramasAndCubesAreTheSameSurroundings) {
    constexpr unsigned int HEIGHT = 32;
    Image panorama;
    String error;
    ASSERT_TRUE(veldris::bakePanorama(inputOf(directionFaces(32), true), HEIGHT, panorama, error)) << error;
    ASSERT_EQ(panorama.getWidth(), 2 * HEIGHT);
    ASSERT_EQ(panorama.getHeight(), HEIGHT);
    double worst = 0.0;
    for (unsigned int y = 0; y < HEIGHT; ++y) {
        for (unsigned int x = 0; x < 2 * HEIGHT; ++x)
            worst =
                std::max(worst, worstDirection(panorama, x, y, directionOfPixel(2 * HEIGHT, HEIGHT, x, y)));
    }
    EXPECT_LT(worst, 0.01); // texels of 2.8 degrees, averaged where several fall into a pixel
}

TEST_F(CubeBakingTest, theSameInputGivesTheSameBits) {
    const EnvironmentInput input = inputOf(directionPanorama(16), false);
    const CubeMap first = prefiltered(input, 16);
    const CubeMap second = prefiltered(input, 16);
    ASSERT_EQ(first.mips.size(), second.mips.size());
    for (std::size_t mip = 0; mip < first.mips.size(); ++mip)
        EXPECT_TRUE(std::ranges::equal(first.mips[mip].getBytes(), second.mips[mip].getBytes())) << mip;
}

TEST_F(CubeBakingTest, whatIsTooLargeIsOneLine) {
    const EnvironmentInput small = inputOf(directionFaces(4), true);
    CubeMap cube;
    Image panorama;
    ovVeldris::IrradianceCoefficients coefficients;
    String errors[4];
    EXPECT_FALSE(veldris::bakeCube(small, 4097, cube, errors[0])); // six faces of 4096 are 1.5 GiB
    EXPECT_FALSE(veldris::bakePrefiltered(small, 4097, cube, errors[1]));
    EXPECT_FALSE(veldris::bakeIrradiance(small, 4097, cube, coefficients, errors[2]));
    EXPECT_FALSE(veldris::bakePanorama(small, 8193, panorama, errors[3]));
    for (const String& error : errors) {
        EXPECT_NE(error.find("can be held here"), String::npos) << error;
        EXPECT_EQ(error.find('\n'), String::npos) << error;
    }
}

TEST_F(CubeBakingTest, everyKindTellsHowFarItIs) {
    const EnvironmentInput panorama = inputOf(directionPanorama(8), false);
    const EnvironmentInput faces = inputOf(directionFaces(8), true);
    using Progress = ovCommon::WorkProgress;
    CubeMap cube;
    Image picture;
    ovVeldris::IrradianceCoefficients coefficients;
    String error;
    const std::function<bool(const Progress&)> KINDS[] = {
        [&](const Progress& progress) { return veldris::bakeCube(panorama, 8, cube, error, progress); },
        [&](const Progress& progress) {
            return veldris::bakePrefiltered(panorama, 8, cube, error, progress);
        },
        [&](const Progress& progress) {
            return veldris::bakeIrradiance(panorama, 8, cube, coefficients, error, progress);
        },
        [&](const Progress& progress) { return veldris::bakePanorama(faces, 8, picture, error, progress); },
    };
    for (const auto& bake : KINDS) {
        std::mutex mutex;
        Buffer<double> shares;
        EXPECT_TRUE(bake([&](double share) {
            const std::lock_guard lock(mutex);
            shares.push_back(share);
        })) << error;
        ASSERT_GE(shares.size(), 6u);
        EXPECT_EQ(*std::ranges::max_element(shares), 1.0);
        EXPECT_LT(*std::ranges::min_element(shares), 0.2);
    }
}

} // namespace

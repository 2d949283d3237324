#include <ovVeldris/environment/light/EnvironmentPrefilter.h>

#include "support/LightTruth.h"

#include <algorithm>
#include <gtest/gtest.h>

using lightTruth::Sky;
using ovVeldris::EnvironmentTexels;

namespace {

std::vector<Sky> hardSkies() {
    std::vector<Sky> all;
    all.push_back({"hard sun, panorama", lightTruth::hardSunPanorama(96), false});
    all.push_back({"hard sun, cube", lightTruth::hardSunFaces(54), true});
    all.push_back({"bright seam", lightTruth::oneBrightTexel(190, 95, 189, 40), false});
    all.push_back({"bright pole", lightTruth::oneBrightTexel(192, 96, 3, 95), false});
    // Side by side, so that the mean of both is right for neither.
    ovImages::Image two = lightTruth::oneBrightTexel(192, 96, 50, 40);
    lightTruth::setColor(two, 50, 40, {20000.0, 0.1, 0.1});
    lightTruth::setColor(two, 53, 40, {0.1, 0.1, 20000.0});
    all.push_back({"red and blue sun", std::move(two), false});
    return all;
}

/// The worst over all faces and colours of a mip, as shares of the truth.
struct Errors {
    double rms = 0.0;
    double largest = 0.0;
    double mean = 0.0;
    double step = 0.0; ///< the largest step between neighbours over the truth's
};

struct Face {
    std::vector<double> ours;
    std::vector<double> truth;
};

double largestStep(const std::vector<double>& values, unsigned int side) {
    double largest = 0.0;
    for (unsigned int y = 0; y < side; ++y) {
        for (unsigned int x = 0; x < side; ++x) {
            const double value = values[y * side + x];
            if (x + 1 < side)
                largest = std::max(largest, std::abs(values[y * side + x + 1] - value));
            if (y + 1 < side)
                largest = std::max(largest, std::abs(values[(y + 1) * side + x] - value));
        }
    }
    return largest;
}

void addFace(const Face& face, unsigned int side, Errors& errors) {
    double squares = 0.0;
    double ours = 0.0;
    double truth = 0.0;
    for (std::size_t i = 0; i < face.ours.size(); ++i) {
        const double error = std::abs(face.ours[i] / face.truth[i] - 1.0);
        squares += error * error;
        errors.largest = std::max(errors.largest, error);
        ours += face.ours[i];
        truth += face.truth[i];
    }
    errors.rms = std::max(errors.rms, std::sqrt(squares / static_cast<double>(face.ours.size())));
    errors.mean = std::max(errors.mean, std::abs(ours / truth - 1.0));
    // Where the truth is flat, steps of two thousandths are none.
    const double flat = 0.002 * truth / static_cast<double>(face.truth.size());
    errors.step =
        std::max(errors.step, largestStep(face.ours, side) / std::max(largestStep(face.truth, side), flat));
}

Errors errorsOf(const ovImages::Image& mip, const std::vector<lightTruth::Light>& lights, double roughness) {
    const unsigned int side = mip.getWidth();
    const double integral = lightTruth::lobeIntegral(roughness);
    Errors errors;
    for (unsigned int face = 0; face < 6; ++face) {
        std::array<Face, 3> colors;
        for (unsigned int y = 0; y < side; ++y) {
            for (unsigned int x = 0; x < side; ++x) {
                const auto truth = lightTruth::mirrored(
                    lights, roughness, integral, lightTruth::faceDirection(face, side, x + 0.5, y + 0.5));
                for (unsigned int color = 0; color < 3; ++color) {
                    colors[color].truth.push_back(truth[color]);
                    colors[color].ours.push_back(mip.getComponent(x, face * side + y, color));
                }
            }
        }
        for (const Face& color : colors)
            addFace(color, side, errors);
    }
    return errors;
}

TEST(EnvironmentPrefilterTest, hardSunsAreWhatTheSumOverAllTexelsIs) {
    constexpr unsigned int SIDE = 32;
    for (const Sky& sky : hardSkies()) {
        const EnvironmentTexels texels(sky.image.view(), sky.isCube);
        const auto mips = ovVeldris::prefilterEnvironment(texels, SIDE);
        ASSERT_EQ(mips.size(), 4u);
        const auto lights = lightTruth::lightsOf(sky.image, sky.isCube);
        for (unsigned int mip = 1; mip < mips.size(); ++mip) {
            SCOPED_TRACE(std::string(sky.name) + ", mip " + std::to_string(mip));
            ASSERT_EQ(mips[mip].getWidth(), SIDE >> mip);
            ASSERT_EQ(mips[mip].getHeight(), 6 * (SIDE >> mip));
            const Errors errors = errorsOf(mips[mip], lights, mip / 3.0);
            EXPECT_LT(errors.rms, 0.01);
            EXPECT_LT(errors.largest, 0.06); // where the sun stands on the horizon of a texel
            EXPECT_LT(errors.mean, 0.003);
            EXPECT_LT(errors.step, 1.5);
            EXPECT_EQ(mips[mip].getComponent(1, 1, 3), 1.0f);
        }
    }
}

TEST(EnvironmentPrefilterTest, narrowLobesAreExactAroundTheSun) {
    const ovImages::Image sky = lightTruth::hardSunPanorama(180);
    const auto mips = ovVeldris::prefilterEnvironment(EnvironmentTexels(sky.view(), false), 256);
    ASSERT_EQ(mips.size(), 7u);
    const auto lights = lightTruth::lightsOf(sky, false);
    const double integral = lightTruth::lobeIntegral(1.0 / 6.0);
    // The sun stands over the face -Z at (0.14, 0.07) of its side from the left and the top.
    for (unsigned int y = 0; y < 20; y += 3) {
        for (unsigned int x = 5; x < 60; x += 3) {
            const auto truth = lightTruth::mirrored(lights, 1.0 / 6.0, integral,
                                                    lightTruth::faceDirection(5, 128, x + 0.5, y + 0.5));
            for (unsigned int color = 0; color < 3; ++color)
                EXPECT_NEAR(mips[1].getComponent(x, 5 * 128 + y, color) / truth[color], 1.0, 0.01)
                    << x << ", " << y;
        }
    }
}

TEST(EnvironmentPrefilterTest, sizesThatAreNoTilesAreFilledWhole) {
    const ovImages::Image sky = lightTruth::hardSunPanorama(96);
    const EnvironmentTexels texels(sky.view(), false);
    const auto lights = lightTruth::lightsOf(sky, false);
    const auto mips = ovVeldris::prefilterEnvironment(texels, 43);
    ASSERT_EQ(mips.size(), 4u);
    EXPECT_EQ(mips[0].getWidth(), 43u);
    const unsigned int sides[] = {43, 21, 10, 5};
    for (unsigned int mip = 1; mip < 4; ++mip) {
        ASSERT_EQ(mips[mip].getWidth(), sides[mip]);
        EXPECT_LT(errorsOf(mips[mip], lights, mip / 3.0).largest, 0.06) << mip;
    }
}

TEST(EnvironmentPrefilterTest, coarseEnvironmentsShowNoTexels) {
    // One bright texel of eight by four: each texel is 45 degrees, and the narrowest lobe 6. A sum over
    // texels would be a spot; between the texels it has to fall all the way to the neighbours.
    const ovImages::Image sky = lightTruth::oneBrightTexel(8, 4, 4, 1);
    const auto mips = ovVeldris::prefilterEnvironment(EnvironmentTexels(sky.view(), false), 64);
    const auto at = [&](double x, double y) { // of the panorama, from the mip of roughness 1/4
        const auto d = lightTruth::panoramaDirection(8, 4, x, y);
        const auto column = static_cast<unsigned int>((1.0 - d[2] / d[0]) * 16.0);
        const auto row = static_cast<unsigned int>((1.0 - d[1] / d[0]) * 16.0);
        return static_cast<double>(mips[1].getComponent(column, row, 0));
    };
    const double peak = at(4.5, 1.5);
    EXPECT_GT(peak, 0.7 * 20000.0);
    EXPECT_NEAR(at(4.5, 1.75) / peak, 0.75, 0.15);
    EXPECT_NEAR(at(4.5, 2.0) / peak, 0.5, 0.15);
}

TEST(EnvironmentPrefilterTest, theFirstMipIsTheEnvironment) {
    const ovImages::Image sky = lightTruth::hardSunFaces(16);
    const auto mips = ovVeldris::prefilterEnvironment(EnvironmentTexels(sky.view(), true), 16);
    ASSERT_EQ(mips.size(), 3u);
    for (unsigned int y = 0; y < 96; ++y)
        for (unsigned int x = 0; x < 16; ++x)
            for (unsigned int color = 0; color < 3; ++color)
                EXPECT_NEAR(mips[0].getComponent(x, y, color), sky.getComponent(x, y, color), 1e-5);
}

TEST(EnvironmentPrefilterTest, threadsDoNotChangeTheBits) {
    const ovImages::Image sky = lightTruth::hardSunPanorama(64);
    const EnvironmentTexels texels(sky.view(), false);
    const auto first = ovVeldris::prefilterEnvironment(texels, 32);
    for (int round = 0; round < 5; ++round) {
        const auto again = ovVeldris::prefilterEnvironment(texels, 32);
        for (std::size_t mip = 0; mip < first.size(); ++mip)
            EXPECT_TRUE(std::ranges::equal(again[mip].getBytes(), first[mip].getBytes())) << mip;
    }
}

TEST(EnvironmentPrefilterTest, mipsEndAtFourTexels) {
    const unsigned int cases[][2] = {{0, 0}, {3, 0}, {4, 1}, {7, 1}, {8, 2}, {30, 3}, {256, 7}, {4096, 11}};
    for (const auto& [side, mips] : cases)
        EXPECT_EQ(ovVeldris::countPrefilteredMips(side), mips) << side;
    const ovImages::Image sky = lightTruth::hardSunPanorama(4);
    const EnvironmentTexels texels(sky.view(), false);
    EXPECT_EQ(ovVeldris::prefilterEnvironment(texels, 4).size(), 1u);
    EXPECT_TRUE(ovVeldris::prefilterEnvironment(texels, 3).empty());
}

TEST(EnvironmentPrefilterTest, darknessStaysDark) {
    const ovImages::Image sky = lightTruth::floatPicture(128, 64);
    for (const ovImages::Image& mip :
         ovVeldris::prefilterEnvironment(EnvironmentTexels(sky.view(), false), 16))
        for (unsigned int y = 0; y < mip.getHeight(); ++y)
            EXPECT_EQ(mip.getComponent(y % mip.getWidth(), y, 1), 0.0f);
}

} // namespace

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <ovVeldris/environment/detail/PbsFilterLobe.h>

using ovVeldris::computePbsFilterLobe;
using ovVeldris::PbsFilterLobe;

TEST(PbsFilterLobeTest, isOneDirectionForAMirror) {
    const PbsFilterLobe lobe = computePbsFilterLobe(0.0, 128.0);
    ASSERT_EQ(lobe.samples.size(), 1u);
    EXPECT_EQ(lobe.samples[0], ovMaths::Vector(0.0f, 0.0f, 1.0f, 0.0f));
    EXPECT_EQ(lobe.weightSum, 1.0f);
}

TEST(PbsFilterLobeTest, holdsUnitDirectionsAboveTheHorizonAndTheirSum) {
    for (const double roughness : {1e-3, 1.0 / 6.0, 0.5, 1.0}) {
        const PbsFilterLobe lobe = computePbsFilterLobe(roughness, 64.0);
        ASSERT_FALSE(lobe.samples.empty());
        EXPECT_LE(lobe.samples.size(), std::size_t{ovVeldris::PBS_FILTER_SAMPLE_COUNT});
        double sum = 0.0;
        for (const ovMaths::Vector& sample : lobe.samples) {
            EXPECT_NEAR(sample.getLengthVec3(), 1.0f, 2e-7f);
            EXPECT_GT(sample.z, 0.0f);
            EXPECT_TRUE(std::isfinite(sample.w));
            sum += double(sample.z);
        }
        EXPECT_NEAR(double(lobe.weightSum), sum, 1e-4);
    }
}

TEST(PbsFilterLobeTest, followsTheClosedFormOfTheLobe) {
    // The share of half vectors within an angle of the normal: with t = tan^2 of the angle and a =
    // roughness^2, the GGX lobe has t / (t + a^2) of them. Light within twice that angle of the normal is
    // counted.
    for (const double roughness : {0.2, 0.5, 0.9, 1.0}) {
        const PbsFilterLobe lobe = computePbsFilterLobe(roughness, 64.0);
        for (const double angle : {0.05, 0.1, 0.3, 0.6, 0.75}) {
            const auto isWithin = [&](const ovMaths::Vector& sample) {
                return std::acos(std::min(1.0, double(sample.z))) < 2.0 * angle;
            };
            const auto count = std::count_if(lobe.samples.begin(), lobe.samples.end(), isWithin);
            const double t = std::pow(std::tan(angle), 2.0);
            const double expected = t / (t + std::pow(roughness, 4.0));
            // Evenly spaced, the count is off by one at most.
            EXPECT_NEAR(double(count), 1024.0 * expected, 1.5) << roughness << " " << angle;
        }
    }
}

TEST(PbsFilterLobeTest, spreadsEvenlyAroundTheNormal) {
    const PbsFilterLobe lobe = computePbsFilterLobe(0.6, 64.0);
    double x = 0.0;
    double y = 0.0;
    for (const ovMaths::Vector& sample : lobe.samples) {
        x += double(sample.x);
        y += double(sample.y);
    }
    const double count = double(lobe.samples.size());
    EXPECT_NEAR(x / count, 0.0, 0.01); // the discrepancy of 1024 Hammersley points is about ln(1024) / 1024
    EXPECT_NEAR(y / count, 0.0, 0.01);
}

TEST(PbsFilterLobeTest, readsMipsAsCoarseAsItsSamplesAreApart) {
    // Along the normal of a lobe of roughness 1 the density D / 4 of light is 1 / (4 pi): each of 1024
    // samples stands for a 1024th of the sphere, and texels of a cube of resolution s are a (6 s^2)th of it.
    const PbsFilterLobe rough = computePbsFilterLobe(1.0, 64.0);
    EXPECT_NEAR(double(rough.samples[0].w), 0.5 * std::log2(6.0 * 64.0 * 64.0 / 1024.0), 1e-3);
    // Twice the resolution is one mip more, and narrower lobes want finer mips.
    const PbsFilterLobe finer = computePbsFilterLobe(1.0, 128.0);
    const PbsFilterLobe narrow = computePbsFilterLobe(0.3, 64.0);
    EXPECT_NEAR(double(finer.samples[0].w), double(rough.samples[0].w) + 1.0, 1e-6);
    EXPECT_LT(narrow.samples[0].w, 0.0f);
    // Away from the normal the lobe is thinner.
    EXPECT_GT(narrow.samples.back().w, narrow.samples.front().w);
}

#include <cmath>
#include <gtest/gtest.h>
#include <ovVeldris/effects/ToneMappingHablesCurve.h>

using namespace ovVeldris;

namespace {

struct CurveCase {
    ToneMappingHablesCurveDescriptor descriptor;
    float expected[7][4];
};

// Computed once from the published formulas with forty decimal digits.
constexpr CurveCase CURVES[] = {
    {{},
     {{0.931946071f, 0.0232986518f, 0.887620386f, 0},
      {0, 0, 1, 1},
      {0.217048077f, 1.05263158f, 0, 0},
      {0.00113295202f, 0, 1, 1},
      {0.0704803297f, 1, 0, 0},
      {1.16705674f, 1.02117464f, -1, -1},
      {1.63240302f, 3.39218879f, 0, 0}}},
    {{0.5f, 0.5f, 0.5f, 1.0f, 0.8f, 1.2f},
     {{0.470588235f, 0.117647059f, 0.323529412f, 0},
      {0, 0, 1, 1},
      {2.64082894f, 2.4f, 0, 0},
      {0.0439662264f, 0, 1, 1},
      {0.904526163f, 1.2f, 0, 0},
      {1.94330721f, 1.11923622f, -1, -1},
      {-4.2768561f, 5.19427385f, 0, 0}}},
    {{0.3f, 0.9f, 0.9f, 2.0f, 1.0f, 2.2f},
     {{0.241837969f, 0.0362756953f, 0.0600967352f, 0},
      {0, 0, 1, 1},
      {63.7260097f, 22.0f, 0, 0},
      {0.0498720066f, 0, 1, 1},
      {3.12287212f, 2.2f, 0, 0},
      {7.63780545f, 7.01882765f, -1, -1},
      {0.373543405f, 0.719671604f, 0, 0}}},
    // Nothing is straight: the ends of the linear part are equal and its slope counts as 1.
    {{1.0f, 0.25f, 1.0f, 0.0f, 0.0f, 0.45f},
     {{0.888888889f, 0.444444444f, 0.444444444f, 0},
      {0, 0, 1, 1},
      {-0.00887704854f, 0.533333333f, 0, 0},
      {0.0694444444f, 0, 1, 1},
      {0, 0.45f, 0, 0},
      {1, 1, -1, -1},
      {-0.32419458f, 1.20154585f, 0, 0}}},
};

} // namespace

TEST(ToneMappingHablesCurveTest, hasDefaults) {
    const ToneMappingHablesCurveDescriptor descriptor;
    EXPECT_EQ(descriptor.toeLength, 0.05f);
    EXPECT_EQ(descriptor.toeStrength, 0.05f);
    EXPECT_EQ(descriptor.shoulderLength, 0.05f);
    EXPECT_EQ(descriptor.shoulderStrength, 0.1f);
    EXPECT_EQ(descriptor.shoulderAngle, 1.0f);
    EXPECT_EQ(descriptor.gamma, 1.0f);
}

TEST(ToneMappingHablesCurveTest, hasTheConstantsOfTheFormulas) {
    for (const CurveCase& row : CURVES) {
        const ToneMappingHablesCurve curve = computeToneMappingHablesCurve(row.descriptor);
        for (std::size_t i = 0; i < curve.size(); ++i) {
            const float actual[4] = {curve[i].x, curve[i].y, curve[i].z, curve[i].w};
            for (std::size_t j = 0; j < 4; ++j)
                // 32-bit floats: some thirty roundings of 6e-8, magnified by the differences of neighbours in
                // the linear part's offset (which stays below 0.1, so the limit is absolute there).
                EXPECT_NEAR(actual[j], row.expected[i][j],
                            3e-6f * std::max(1.0f, std::abs(row.expected[i][j])))
                    << "gamma " << row.descriptor.gamma << ", vector " << i << ", component " << j;
        }
    }
}

TEST(ToneMappingHablesCurveTest, joinsItsSegmentsSmoothlyBeforeTheScaling) {
    for (const CurveCase& row : CURVES) {
        const ToneMappingHablesCurve curve = computeToneMappingHablesCurve(row.descriptor);
        // The scaling undone: the shoulder's offset x is 1 + 2 angle strength before it.
        const double offsetX =
            1.0 + 2.0 * double(row.descriptor.shoulderAngle) * double(row.descriptor.shoulderStrength);
        const double scale = curve[5].x / offsetX;
        const auto segment = [&](std::size_t i, double x) {
            const ovMaths::Vector& offset = curve[i];
            const double unscaled = i == 1 ? 1.0 : scale;
            const double t = (x - offset.x / unscaled) * offset.z;
            return offset.y / unscaled + std::exp(curve[i + 1].x + curve[i + 1].y * std::log(t)) * offset.w;
        };
        const auto slope = [&](std::size_t i, double x) {
            return (segment(i, x + 1e-6) - segment(i, x - 1e-6)) / 2e-6;
        };
        // Values to the floats' rounding; slopes also to that of the finite difference.
        const double x0 = curve[0].y, x1 = curve[0].z;
        EXPECT_NEAR(segment(1, x0), segment(3, x0), 2e-5);
        EXPECT_NEAR(segment(3, x1), segment(5, x1), 2e-5);
        EXPECT_NEAR(slope(1, x0), slope(3, x0), 1e-4 * std::max(1.0, slope(1, x0)));
        EXPECT_NEAR(slope(3, x1), slope(5, x1), 1e-4 * std::max(1.0, slope(3, x1)));
    }
}

TEST(ToneMappingHablesCurveTest, isFiniteInTheUsefulRanges) {
    for (const float toeLength : {0.001f, 0.5f, 1.0f})
        for (const float toeStrength : {0.0f, 0.5f, 0.999f})
            for (const float shoulderLength : {0.001f, 0.5f, 1.0f})
                for (const float shoulderStrength : {0.0f, 0.1f, 2.0f, 10.0f})
                    for (const float shoulderAngle : {0.0f, 0.5f, 1.0f})
                        for (const float gamma : {0.45f, 1.0f, 2.2f})
                            for (const ovMaths::Vector& vector :
                                 computeToneMappingHablesCurve({toeLength, toeStrength, shoulderLength,
                                                                shoulderStrength, shoulderAngle, gamma}))
                                EXPECT_TRUE(std::isfinite(vector.getLengthVec4()))
                                    << toeLength << " " << toeStrength << " " << shoulderLength << " "
                                    << shoulderStrength << " " << shoulderAngle << " " << gamma;
}

TEST(ToneMappingHablesCurveTest, keepsTheNanOfDegenerateDescriptors) {
    // Without any shoulder its end coincides with that of the line: 0 / 0.
    const ToneMappingHablesCurve curve =
        computeToneMappingHablesCurve({.shoulderLength = 0.0f, .shoulderStrength = 0.0f});
    EXPECT_TRUE(std::isnan(curve[6].y));
    // Without a toe only its unused power is undefined.
    const ToneMappingHablesCurve noToe = computeToneMappingHablesCurve({.toeLength = 0.0f});
    EXPECT_TRUE(std::isnan(noToe[2].x));
    EXPECT_TRUE(std::isfinite(noToe[3].x + noToe[4].x + noToe[5].x + noToe[6].x));
}

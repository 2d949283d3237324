#include <cmath>
#include <gtest/gtest.h>
#include <ovMaths/MathConstants.h>

using ovMaths::MathConstants;

TEST(MathConstantsTest, AreTheNearestFloats) {
    const double pi = std::acos(-1.0);
    const struct {
        float actual;
        double exact;
        float printed;
    } cases[] = {
        {MathConstants::PI, pi, 3.1415927f},
        {MathConstants::PI_SQRT, std::sqrt(pi), 1.7724539f},
        {MathConstants::PI_2, 2 * pi, 6.2831855f},
        {MathConstants::PI_4, 4 * pi, 12.566371f},
        {MathConstants::PI_OVER_2, pi / 2, 1.5707964f},
        {MathConstants::PI_OVER_3, pi / 3, 1.0471976f},
        {MathConstants::PI_OVER_4, pi / 4, 0.7853982f},
        {MathConstants::PI_OVER_6, pi / 6, 0.5235988f},
        {MathConstants::PI_OVER_8, pi / 8, 0.3926991f},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(row.actual, float(row.exact));
        EXPECT_EQ(row.actual, row.printed);
    }
}

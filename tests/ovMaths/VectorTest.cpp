#include <ovMaths/Vector.h>

#include "Reference.h"
#include <cfloat>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using ovMaths::Vector;

namespace {

constexpr float INFINITE = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

using Getter = float (Vector::*)() const;
using Binary = float (Vector::*)(const Vector&) const;
using Static = float (*)(const Vector&, const Vector&);

double dot(const Vector& a, const Vector& b, int count) {
    const double products[] = {double(a.x) * b.x, double(a.y) * b.y, double(a.z) * b.z, double(a.w) * b.w};
    double sum = 0;
    for (int i = 0; i < count; ++i)
        sum += products[i];
    return sum;
}

double distanceSquared(const Vector& a, const Vector& b, int count) {
    const double differences[] = {double(a.x) - b.x, double(a.y) - b.y, double(a.z) - b.z, double(a.w) - b.w};
    double sum = 0;
    for (int i = 0; i < count; ++i)
        sum += differences[i] * differences[i];
    return sum;
}

} // namespace

TEST(VectorTest, MadeFromNumbers) {
    EXPECT_EQ(Vector(), Vector(0, 0, 0, 0));
    EXPECT_EQ(Vector(1, 2), Vector(1, 2, 0, 0));
    EXPECT_EQ(Vector(1, 2, 3), Vector(1, 2, 3, 0));
    EXPECT_EQ(Vector::newVec2(1, 2), Vector(1, 2, 0, 0));
    EXPECT_EQ(Vector::newVec3(1, 2, 3), Vector(1, 2, 3, 0));
    const Vector four = Vector::newVec4(1, 2, 3, 4);
    EXPECT_EQ(four.x, 1.0f);
    EXPECT_EQ(four.y, 2.0f);
    EXPECT_EQ(four.z, 3.0f);
    EXPECT_EQ(four.w, 4.0f);
}

TEST(VectorTest, LengthsDistancesAndProductsOfTheComponentsInUse) {
    const struct {
        int count;
        Getter length, lengthSquared;
        Binary distance, distanceSquared, dot;
        Static staticDistance, staticDistanceSquared, staticDot;
    } rows[] = {
        {2, &Vector::getLengthVec2, &Vector::getLengthSquaredVec2, &Vector::getDistanceVec2,
         &Vector::getDistanceSquaredVec2, &Vector::dotProductVec2, Vector::distanceVec2,
         Vector::distanceSquaredVec2, Vector::dotVec2},
        {3, &Vector::getLengthVec3, &Vector::getLengthSquaredVec3, &Vector::getDistanceVec3,
         &Vector::getDistanceSquaredVec3, &Vector::dotProductVec3, Vector::distanceVec3,
         Vector::distanceSquaredVec3, Vector::dotVec3},
        {4, &Vector::getLengthVec4, &Vector::getLengthSquaredVec4, &Vector::getDistanceVec4,
         &Vector::getDistanceSquaredVec4, &Vector::dotProductVec4, Vector::distanceVec4,
         Vector::distanceSquaredVec4, Vector::dotVec4},
    };
    reference::Numbers numbers;
    for (const auto& row : rows)
        for (int i = 0; i < 100; ++i) {
            const Vector a = numbers.nextVector();
            const Vector b = numbers.nextVector();
            // Sums are exact but for the last bit of a double, so the result is the nearest float or its
            // neighbour.
            EXPECT_FLOAT_EQ((a.*row.length)(), float(std::sqrt(dot(a, a, row.count))));
            EXPECT_FLOAT_EQ((a.*row.lengthSquared)(), float(dot(a, a, row.count)));
            const float squared = float(distanceSquared(a, b, row.count));
            const float distance = float(std::sqrt(distanceSquared(a, b, row.count)));
            EXPECT_FLOAT_EQ((a.*row.distance)(b), distance);
            EXPECT_FLOAT_EQ((a.*row.distanceSquared)(b), squared);
            EXPECT_FLOAT_EQ(row.staticDistance(a, b), distance);
            EXPECT_FLOAT_EQ(row.staticDistanceSquared(a, b), squared);
            EXPECT_FLOAT_EQ((a.*row.dot)(b), float(dot(a, b, row.count)));
            EXPECT_FLOAT_EQ(row.staticDot(a, b), float(dot(a, b, row.count)));
        }
}

TEST(VectorTest, LengthsOfExtremeVectors) {
    EXPECT_EQ(Vector(3e30f, 4e30f).getLengthVec2(), 5e30f);
    EXPECT_FLOAT_EQ(Vector(3e-30f, 4e-30f).getLengthVec3(), 5e-30f);
    EXPECT_EQ(Vector::distanceVec2({2e38f, 0}, {-1e38f, 0}), 3e38f);
    EXPECT_EQ(Vector().getLengthVec4(), 0.0f);
}

TEST(VectorTest, NormalisesTheComponentsInUse) {
    const struct {
        Vector vector, two, three, four;
    } cases[] = {
        {{3, 4, 12, 84},
         {0.6f, 0.8f, 12, 84},
         {3 / 13.f, 4 / 13.f, 12 / 13.f, 84},
         {3 / 85.f, 4 / 85.f, 12 / 85.f, 84 / 85.f}},
        {{-2, 0, 0, 0}, {-1, 0, 0, 0}, {-1, 0, 0, 0}, {-1, 0, 0, 0}},
        {{0, 0, 0, 5}, {0, 0, 0, 5}, {0, 0, 0, 5}, {0, 0, 0, 1}},
        {{0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}},
        {{3e30f, 4e30f, 0, 0}, {0.6f, 0.8f, 0, 0}, {0.6f, 0.8f, 0, 0}, {0.6f, 0.8f, 0, 0}},
        {{FLT_MAX, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}},
        {{0, 1e-44f, 0, 0}, {0, 1, 0, 0}, {0, 1, 0, 0}, {0, 1, 0, 0}},
        {{INFINITE, 1, 2, 3}, {0, 0, 2, 3}, {0, 0, 0, 3}, {0, 0, 0, 0}},
        {{1, NOT_A_NUMBER, 2, 3}, {0, 0, 2, 3}, {0, 0, 0, 3}, {0, 0, 0, 0}},
    };
    for (const auto& row : cases) {
        // Two roundings of numbers up to one.
        const double tolerance = 2e-7;
        reference::expectNear(row.vector.getNormalizedVec2(), row.two, tolerance);
        reference::expectNear(row.vector.getNormalizedVec3(), row.three, tolerance);
        reference::expectNear(row.vector.getNormalizedVec4(), row.four, tolerance);
        Vector two = row.vector;
        Vector three = row.vector;
        Vector four = row.vector;
        two.normalizeVec2();
        three.normalizeVec3();
        four.normalizeVec4();
        EXPECT_EQ(two, row.vector.getNormalizedVec2());
        EXPECT_EQ(three, row.vector.getNormalizedVec3());
        EXPECT_EQ(four, row.vector.getNormalizedVec4());
    }
}

TEST(VectorTest, CrossProductOfTheAxesIsTheThird) {
    const Vector x(1, 0, 0, 9);
    const Vector y(0, 1, 0, 9);
    const Vector z(0, 0, 1, 9);
    const struct {
        Vector first, second, expected;
    } cases[] = {
        {x, y, {0, 0, 1}},  {y, z, {1, 0, 0}},          {z, x, {0, 1, 0}},
        {y, x, {0, 0, -1}}, {x, x, {0, 0, 0}},          {{1, 2, 3}, {4, 5, 6}, {-3, 6, -3}},
        {{}, y, {0, 0, 0}}, {{2, 4, 6}, {1, 2, 3}, {}},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(row.first.getCrossVec3(row.second), row.expected);
        EXPECT_EQ(Vector::crossVec3(row.first, row.second), row.expected);
        Vector set(7, 7, 7, 7);
        set.setAsCrossVec3(row.first, row.second);
        EXPECT_EQ(set, Vector(row.expected.x, row.expected.y, row.expected.z, 7)) << "w stays";
        Vector first = row.first;
        first.setAsCrossVec3(first, row.second);
        EXPECT_EQ(first, Vector(row.expected.x, row.expected.y, row.expected.z, row.first.w));
        Vector second = row.second;
        second.setAsCrossVec3(row.first, second);
        EXPECT_EQ(second, Vector(row.expected.x, row.expected.y, row.expected.z, row.second.w));
    }
}

TEST(VectorTest, OperatorsWorkOnAllFour) {
    const Vector a(1, -2, 3, 8);
    const Vector b(4, 5, -6, 2);
    EXPECT_EQ(a + b, Vector(5, 3, -3, 10));
    EXPECT_EQ(a - b, Vector(-3, -7, 9, 6));
    EXPECT_EQ(a * b, Vector(4, -10, -18, 16));
    EXPECT_EQ(a / b, Vector(0.25f, -0.4f, -0.5f, 4));
    EXPECT_EQ(a * 2.0f, Vector(2, -4, 6, 16));
    EXPECT_EQ(2.0f * a, Vector(2, -4, 6, 16));
    EXPECT_EQ(a / 2.0f, Vector(0.5f, -1, 1.5f, 4));
    EXPECT_EQ(-a, Vector(-1, 2, -3, -8));
    EXPECT_TRUE(a == a);
    for (const Vector& other :
         {Vector(0, -2, 3, 8), Vector(1, 0, 3, 8), Vector(1, -2, 0, 8), Vector(1, -2, 3, 0)}) {
        EXPECT_FALSE(a == other);
        EXPECT_TRUE(a != other);
    }
    const Vector byZero = Vector(1, -1, 0, 1) / Vector(0, 0, 0, 2);
    EXPECT_EQ(byZero.x, INFINITE);
    EXPECT_EQ(byZero.y, -INFINITE);
    EXPECT_TRUE(std::isnan(byZero.z));
    EXPECT_EQ(byZero.w, 0.5f);
}

TEST(VectorTest, TextHasAlwaysFourNumbers) {
    EXPECT_EQ(Vector().toString(), "Vec(0.000000, 0.000000, 0.000000, 0.000000)");
    EXPECT_EQ(Vector::newVec2(1, -2).toString(), "Vec(1.000000, -2.000000, 0.000000, 0.000000)");
    EXPECT_EQ(Vector::newVec3(0.1f, 1e6f, 1e-7f).toString(),
              "Vec(0.100000, 1000000.000000, 0.000000, 0.000000)");
    EXPECT_EQ(Vector(1, 2, 3, 4.5f).toString(), "Vec(1.000000, 2.000000, 3.000000, 4.500000)");
}

TEST(VectorTest, ReadsItsOwnText) {
    reference::Numbers numbers;
    for (int i = 0; i < 100; ++i) {
        const Vector vector = numbers.nextVector();
        Vector read;
        ASSERT_TRUE(read.fromString(vector.toString()));
        // The text has six decimals, and numbers below 16 are within half a millionth of their neighbours.
        reference::expectNear(read, vector, 1.5e-6);
        EXPECT_EQ(read.toString(), vector.toString());
    }
    for (const Vector& vector : {Vector(FLT_MAX, -FLT_MAX, 0, 0.5f), Vector(-0.25f, 16777216, 1e20f, -1)}) {
        Vector read;
        ASSERT_TRUE(read.fromString(vector.toString()));
        EXPECT_EQ(read, vector);
    }
}

TEST(VectorTest, ReadsOnlyWholeVectorsOfFiniteNumbers) {
    const struct {
        ovMemory::StringView text;
        bool good;
    } cases[] = {
        {"Vec(1, 2, 3, 4)", true},
        {"Vec(1,2,3,4)", true},
        {"Vec( 1.0 , 2e0 ,3., 4 )", true},
        {"", false},
        {"Vec", false},
        {"Vec(", false},
        {"Vec()", false},
        {"Vec(1, 2, 3)", false},
        {"Vec(1, 2, 3, 4", false},
        {"Vec(1, 2, 3, 4, 5)", false},
        {"Vec(1, 2, 3, 4) ", false},
        {" Vec(1, 2, 3, 4)", false},
        {"vec(1, 2, 3, 4)", false},
        {"Vec(1 2 3 4)", false},
        {"Vec(1, 2, 3, x)", false},
        {"Vec(1, , 3, 4)", false},
        {"Vec(1, 2, 3, nan)", false},
        {"Vec(inf, 2, 3, 4)", false},
        {"Vec(1e99, 2, 3, 4)", false},
        {"Vec(1,5, 2,0, 3,0, 4,0)", false},
        {"Quat(1, 2, 3, 4)", false},
        {ovMemory::StringView("Vec(1, 2, 3, 4)\0", 16), false},
        {ovMemory::StringView("Vec(1, 2, 3, 4)", 14), false},
    };
    for (const auto& row : cases) {
        Vector vector(9, 9, 9, 9);
        EXPECT_EQ(vector.fromString(row.text), row.good) << row.text;
        EXPECT_EQ(vector, row.good ? Vector(1, 2, 3, 4) : Vector(9, 9, 9, 9)) << row.text;
    }
}

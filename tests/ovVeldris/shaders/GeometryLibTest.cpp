#include <ovVeldris/shaders/GeometryLib.h>

#include <array>
#include <cmath>
#include <numbers>
#include <ovVeldris/shaders/SnippetTest.h>

using ovVeldris::GeometryLib;
using std::numbers::pi;

namespace {

class GeometryLibTest : public SnippetTest {};
INSTANTIATE_TEST_SUITE_P(, GeometryLibTest, bothLanguages(), languageName);

using Vector = std::array<double, 3>;

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// A direction of longitude (from +x to +z) and latitude (from the equator to +y).
Vector makeDirection(double longitude, double latitude) {
    return {std::cos(latitude) * std::cos(longitude), std::sin(latitude),
            std::cos(latitude) * std::sin(longitude)};
}

FloatPixel toPixel(const Vector& v, double w = 0.0) {
    return {float(v[0]), float(v[1]), float(v[2]), float(w)};
}

Vector toVector(const FloatPixel& pixel) {
    return {pixel[0], pixel[1], pixel[2]};
}

/// The distance to the sphere by way of the ray's point that is closest to the centre. Sets clear to whether
/// small errors of the inputs cannot change which kind of hit it is.
double intersectByClosestPoint(const Vector& o, const Vector& d, double radius, bool& clear) {
    const double toClosest = -dot(o, d);
    const Vector closest = {o[0] + toClosest * d[0], o[1] + toClosest * d[1], o[2] + toClosest * d[2]};
    const double closestDistance = std::sqrt(dot(closest, closest));
    const double originDistance = std::sqrt(dot(o, o));
    const auto differ = [radius](double a, double b) { return std::abs(a - b) > 0.01 * radius; };
    clear = differ(closestDistance, radius) && differ(originDistance, radius) && differ(toClosest, 0.0);
    const double halfChord = std::sqrt(std::max(radius * radius - closestDistance * closestDistance, 0.0));
    if (originDistance < radius)
        return toClosest + halfChord;
    return toClosest < 0.0 || closestDistance > radius ? -1.0 : toClosest - halfChord;
}

/// The equirectangular place of a direction, by the angles that it makes with the axes.
std::array<double, 2> toUv(const Vector& d) {
    const double horizontal = std::hypot(d[0], d[2]);
    return {0.5 + std::atan2(d[2], d[0]) / (2.0 * pi), std::atan2(horizontal, d[1]) / pi};
}

/// asin and atan2 of the software rasteriser are polynomials, off by up to 4e-4 radians, which are 1.3e-4 of
/// half a turn.
constexpr PictureLimits ANGLE_LIMITS = {.worst = 1.5e-4f, .mean = 5e-5f};

constexpr ovMemory::StringView EVALUATE_INTERSECTION = R"(
ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {
    return ovFloat4(ovGetSphereIntersection(a.xyz, b.xyz, a.w), 0.0, 0.0, 0.0);
})";

constexpr ovMemory::StringView EVALUATE_UV = R"(
ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {
    return ovFloat4(ovDirectionToUv(a.xyz), 0.0, 0.0);
})";

} // namespace

TEST_P(GeometryLibTest, SphereIntersectionAtItsLimits) {
    struct Case {
        const char* what;
        Vector origin;
        Vector direction;
        double radius;
        float expected;
    };
    const Case cases[] = {
        {"from outside, towards", {0, 0, -3}, {0, 0, 1}, 1, 2},
        {"from outside, away", {0, 0, 3}, {0, 0, 1}, 1, -1},
        {"from outside, past it", {0, 2, -3}, {0, 0, 1}, 1, -1},
        {"from outside, square to it", {0, 0, 3}, {1, 0, 0}, 1, -1},
        {"from outside, touching it", {-2, 1, 0}, {1, 0, 0}, 1, 2},
        {"from the centre", {0, 0, 0}, {0, 1, 0}, 4, 4},
        {"from inside, along the radius", {0, 0, 1}, {0, 0, 1}, 4, 3},
        {"from inside, against the radius", {0, 0, 1}, {0, 0, -1}, 4, 5},
        {"from inside, square to the radius", {0, 3, 0}, {1, 0, 0}, 5, 4},
        {"from the sphere, inwards", {0, 0, 2}, {0, 0, -1}, 2, 0},
        {"from the sphere, outwards: its near hit lies behind", {0, 0, 2}, {0, 0, 1}, 2, -4},
        {"from the sphere, along its tangent", {0, 0, 2}, {0, 1, 0}, 2, 0},
        {"a planet's scale, from the ground up", {0, 6371000, 0}, {0, 1, 0}, 6471000, 100000},
    };
    FloatPixels origins;
    FloatPixels directions;
    for (const Case& row : cases) {
        origins.push_back(toPixel(row.origin, row.radius));
        directions.push_back(toPixel(row.direction));
    }
    const ovMemory::StringView snippet = GeometryLib::ovGetSphereIntersection();
    const FloatPicture actual =
        evaluate(joinLines({snippet, snippet, EVALUATE_INTERSECTION}), origins, directions);
    for (std::size_t i = 0; i < std::size(cases); ++i)
        // The numbers and their squares are exact in floats, but for the planet's: its squares of 4e13 are
        // rounded to 4e6, which the root of 4e13 turns into 0.3 metres.
        EXPECT_NEAR(actual.pixels[i][0], cases[i].expected, cases[i].radius > 1e6 ? 1.0 : 0.0)
            << cases[i].what;
}

TEST_P(GeometryLibTest, SphereIntersectionOverManyRays) {
    FloatPixels origins;
    FloatPixels directions;
    FloatPixels expected;
    for (const double radius : {0.5, 2.0})
        for (const double distance : {0.1, 0.4, 1.0, 3.0})
            for (int i = 0; i < 12; ++i)
                for (int j = -3; j <= 3; ++j) {
                    const Vector place = makeDirection(0.7 * i, 0.35 * j);
                    const FloatPixel origin =
                        toPixel({place[0] * distance, place[1] * distance, place[2] * distance}, radius);
                    const FloatPixel direction = toPixel(makeDirection(2.9 * i + j, 0.45 * j - 0.1));
                    bool clear = false;
                    const double hit =
                        intersectByClosestPoint(toVector(origin), toVector(direction), radius, clear);
                    if (!clear)
                        continue;
                    origins.push_back(origin);
                    directions.push_back(direction);
                    expected.push_back({float(hit)});
                }
    ASSERT_GT(expected.size(), 500u);
    const FloatPicture actual = evaluate(
        joinLines({GeometryLib::ovGetSphereIntersection(), EVALUATE_INTERSECTION}), origins, directions);
    // b^2 - c of numbers up to 9 is off by about 2e-6; its root, which is at least 0.07 here, by 1.5e-5.
    EXPECT_TRUE(
        picturesMatch("sphere_intersection", actual, toPicture(expected), {.worst = 3e-5f, .mean = 5e-7f}));
}

TEST_P(GeometryLibTest, SphericalToDirection) {
    FloatPixels inputs;
    FloatPixels expected;
    for (int i = -16; i <= 16; ++i)
        for (int j = 0; j <= 16; ++j) {
            const FloatPixel input = {float(i * pi / 8.0), float(j * pi / 16.0)};
            inputs.push_back(input);
            // Longitude counts from +x to +z, theta from +z to +x.
            expected.push_back(
                toPixel(makeDirection(pi / 2.0 - double(input[0]), pi / 2.0 - double(input[1]))));
        }
    const ovMemory::StringView snippet = GeometryLib::ovSphericalToDirection();
    const FloatPicture actual = evaluate(joinLines({snippet, snippet, R"(
ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {
    return ovFloat4(ovSphericalToDirection(a.x, a.y), 0.0);
})"}),
                                         inputs);
    // Two sines and a product in floats; languages promise 2^-11 for a sine, the software rasteriser gives
    // 1e-6.
    EXPECT_TRUE(picturesMatch("spherical_to_direction", actual, toPicture(expected),
                              {.worst = 2e-6f, .mean = 2e-7f}));
}

TEST_P(GeometryLibTest, DirectionToUv) {
    FloatPixels inputs;
    for (const double length : {1.0, 0.01, 250.0})
        for (int i = 0; i < 32; ++i)
            for (int j = -7; j <= 7; ++j) {
                const Vector d = makeDirection(i * pi / 16.0, j * pi / 16.0);
                inputs.push_back(toPixel({d[0] * length, d[1] * length, d[2] * length}));
            }
    const std::size_t poles = inputs.size();
    for (const float y : {1.0f, -1.0f, 5.0f, -5.0f})
        inputs.push_back({0.0f, y, 0.0f});

    const ovMemory::StringView snippet = GeometryLib::ovDirectionToUv();
    const FloatPicture actual = evaluate(joinLines({snippet, snippet, EVALUATE_UV}), inputs);
    FloatPicture expected = actual;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const auto [u, v] = toUv(toVector(inputs[i]));
        FloatPixel& pixel = expected.pixels[i];
        if (i < poles) // where any u is right; elsewhere both sides of the seam are
            pixel[0] = float(u + std::round(double(pixel[0]) - u));
        pixel[1] = float(v);
        EXPECT_TRUE(actual.pixels[i][0] >= 0.0f && actual.pixels[i][0] <= 1.0f) << actual.pixels[i][0];
    }
    EXPECT_TRUE(picturesMatch("direction_to_uv", actual, expected, ANGLE_LIMITS));
}

TEST_P(GeometryLibTest, TheSeamOfTheMapIsAtMinusX) {
    const FloatPicture actual =
        evaluate(joinLines({GeometryLib::ovDirectionToUv(), EVALUATE_UV}),
                 {{-1.0f, 0.0f, 1e-3f}, {-1.0f, 0.0f, -1e-3f}, {1.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f}});
    const float expected[] = {1.0f, 0.0f, 0.5f, 0.75f};
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_NEAR(actual.pixels[i][0], expected[i], 5e-4) << i; // 1e-3 radians are 1.6e-4 of the circle
}

TEST_P(GeometryLibTest, UvToDirection) {
    FloatPixels inputs;
    FloatPixels expected;
    for (int i = 0; i <= 32; ++i)
        for (int j = 0; j <= 16; ++j) {
            const FloatPixel input = {float(i) / 32.0f, float(j) / 16.0f};
            inputs.push_back(input);
            expected.push_back(
                toPixel(makeDirection((double(input[0]) - 0.5) * 2.0 * pi, (0.5 - double(input[1])) * pi)));
        }
    const ovMemory::StringView snippet = GeometryLib::ovUvToDirection();
    const FloatPicture actual = evaluate(joinLines({snippet, snippet, R"(
ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {
    return ovFloat4(ovUvToDirection(a.xy), 0.0);
})"}),
                                         inputs);
    // As for spherical_to_direction, then normalised; multiples of pi in floats are off by up to 2e-7.
    EXPECT_TRUE(
        picturesMatch("uv_to_direction", actual, toPicture(expected), {.worst = 3e-6f, .mean = 3e-7f}));
}

TEST_P(GeometryLibTest, UvOfTheDirectionOfUv) {
    FloatPixels inputs;
    for (int i = 1; i < 32; ++i)
        for (int j = 1; j < 16; ++j)
            inputs.push_back({float(i) / 32.0f, float(j) / 16.0f});
    const FloatPicture actual =
        evaluate(joinLines({GeometryLib::ovUvToDirection(), GeometryLib::ovDirectionToUv(), R"(
ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {
    return ovFloat4(ovDirectionToUv(ovUvToDirection(a.xy)), 0.0, 0.0);
})"}),
                 inputs);
    EXPECT_TRUE(picturesMatch("uv_round_trip", actual, toPicture(inputs), ANGLE_LIMITS));
}

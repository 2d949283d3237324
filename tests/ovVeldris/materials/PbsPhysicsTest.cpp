#include <cmath>
#include <ovVeldris/materials/PbsPictureFixture.h>

using namespace ovVeldris;
using ovMaths::Matrix;

namespace {

class PbsPhysicsTest : public PbsPictureFixture {
protected:
    /// White in every direction and mip.
    static SurroundingsMap white(bool cube, unsigned int mipCount) {
        return {[](const Vec3&, double) {
                    return FloatPixel{1.0f, 1.0f, 1.0f, 1.0f};
                },
                cube, 16, mipCount, "rgb"};
    }

    /// The smallest and the largest colour of a picture.
    static std::pair<float, float> rangeOf(const FloatPicture& picture) {
        std::pair<float, float> range = {picture.pixels[0][0], picture.pixels[0][0]};
        for (const FloatPixel& pixel : picture.pixels)
            for (std::size_t channel = 0; channel < 3; ++channel) {
                range.first = std::min(range.first, pixel[channel]);
                range.second = std::max(range.second, pixel[channel]);
            }
        return range;
    }

    void checkRange(const char* name, const PbsSetup& setup, float least, float most) {
        const auto [smallest, largest] = rangeOf(drawPbs(setup, makeFacing()));
        EXPECT_GE(smallest, least) << name;
        EXPECT_LE(largest, most) << name;
    }

    /// A flat square: the cosines between its normal and the eye go from 1.5 / sqrt(1.5^2 + 2) = 0.728 to 1.
    static PbsSurface makeFacing() {
        PbsSurface surface;
        surface.normals.fill({0.0, 0.0, -1.0});
        return surface;
    }

    /// A perfect reflector in white surroundings: no colours of its own.
    static PbsSetup makeFurnace(double roughness) {
        PbsSetup setup;
        setup.emissive = setup.albedo = setup.environmentColor = {};
        setup.specular = {1.0, 1.0, 1.0};
        setup.metalness = 1.0;
        setup.roughnessGlossiness = roughness;
        return setup;
    }
};

constexpr float ROUNDING = 1e-4f;

/// What a perfect reflector gives back of white surroundings by the microfacet model: the integral over all
/// half vectors, spread as the distribution has them, of the visibility times v.h / (n.h n.v).
double reflectedWhite(double dotNV, double roughness) {
    constexpr int STEPS =
        400; // of both coordinates; the second runs over half a turn, the other half is the same
    constexpr double PI = 3.14159265358979;
    const double alpha = roughness * roughness;
    const auto shadowing = [&](double cosine) { return cosine / (cosine * (1.0 - alpha) + alpha); };
    const Vec3 view = {std::sqrt(1.0 - dotNV * dotNV), 0.0, dotNV};
    double sum = 0.0;
    for (int i = 0; i < STEPS; ++i)
        for (int j = 0; j < STEPS; ++j) {
            const double u = (i + 0.5) / STEPS;
            const double phi = PI * (j + 0.5) / STEPS;
            const double dotNH = std::sqrt((1.0 - u) / (1.0 + (alpha * alpha - 1.0) * u));
            const double across = std::sqrt(1.0 - dotNH * dotNH);
            const double dotVH = view[0] * across * std::cos(phi) + view[2] * dotNH;
            const double dotNL = 2.0 * dotVH * dotNH - dotNV;
            if (dotVH > 0.0 && dotNL > 0.0)
                sum += shadowing(dotNV) * shadowing(dotNL) * dotVH / (dotNH * dotNV);
        }
    return sum / (double(STEPS) * STEPS);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsPhysicsTest, bothLanguages(), languageName);

// A surface in white surroundings must not be brighter than they are. What microfacets shadow is lost (a
// second reflection is not computed), the more the rougher.
TEST_P(PbsPhysicsTest, aSampledMirrorIsAsWhiteAsItsSurroundingsAndRoughSurfacesAreDarker) {
    PbsSetup setup = makeFurnace(0.0);
    setup.environment = white(true, 1);
    checkRange("mirror", setup, 1.0f - ROUNDING, 1.0f + ROUNDING);
    for (const double roughness : {0.25, 0.5, 0.75, 1.0}) {
        setup = makeFurnace(roughness);
        setup.environment = white(roughness < 0.6, 1);
        checkRange("sampled", setup, 0.0f, 1.0f + ROUNDING);
    }
    // With r = 1 and the eye along the normal, the squares u of n.h are spread evenly from 0 to 1; v.h = n.h,
    // n.l = 2 u - 1 and V = n.l, so that the mean is the integral of 2 u - 1 from 1/2 to 1, a quarter. The
    // middle pixels are off by 2.4 degrees, and the sum has 1024 terms.
    EXPECT_NEAR(drawPbs(setup, makeFacing()).at(SIZE / 2, SIZE / 2)[0], 0.25f, 0.002f);
}

// The square is tilted until it is seen from the side: the cosines between its normal and the eye go from 0
// to 1.
TEST_P(PbsPhysicsTest, aSampledReflectorIsTrueAtEveryAngle) {
    double smallest = 1.0;
    for (const double roughness : {0.2, 0.5, 1.0})
        for (const double tilt : {0.3, 0.8, 1.2, 1.4}) {
            PbsSetup setup = makeFurnace(roughness);
            setup.environment = white(true, 1);
            const Vec3 normal = {0.0, std::sin(tilt), -std::cos(tilt)};
            PbsSurface surface;
            surface.normals.fill(normal);
            const FloatPicture picture = drawPbs(setup, surface);
            for (unsigned int y = 0; y < SIZE; ++y)
                for (unsigned int x = 1; x < SIZE; x += 7) {
                    // The eye is 1.5 in front of a square of side 2.
                    const Vec3 towardsEye = {1.0 - (x + 0.5) * 2.0 / SIZE, (y + 0.5) * 2.0 / SIZE - 1.0,
                                             -1.5};
                    const double length =
                        std::sqrt(towardsEye[0] * towardsEye[0] + towardsEye[1] * towardsEye[1] +
                                  towardsEye[2] * towardsEye[2]);
                    const double dotNV = (towardsEye[1] * normal[1] + towardsEye[2] * normal[2]) / length;
                    if (dotNV < 0.02) // below, n.v is held off from 0, which it divides
                        continue;
                    smallest = std::min(smallest, dotNV);
                    const double expected = reflectedWhite(dotNV, roughness);
                    EXPECT_LE(expected, 1.0 + 1e-3) << dotNV;
                    EXPECT_NEAR(picture.at(x, y)[0], expected, 0.02) << roughness << ", " << dotNV;
                }
        }
    EXPECT_LT(smallest, 0.05);
}

TEST_P(PbsPhysicsTest, thePrefilteredReflectorKeepsWithinItsFit) {
    // With F0 = 1 the fit is its delta (which exceeds the bias here). Over the roots s of the roughness and
    // the cosines x from 0.7, delta = 0.991 + 0.412 s x^2 - 0.364 s^2 - 0.759 x s^2 is largest at x = 1, s =
    // 0.412 / (2 * 1.122) = 0.184, where it is 1.029, three per cent too bright; and smallest at s = 1, x =
    // 0.759 / (2 * 0.412) = 0.92, where it is 0.278.
    for (const double roughness : {0.0, 0.034, 0.25, 0.5, 1.0}) {
        PbsSetup setup = makeFurnace(roughness);
        setup.environment = white(true, 3);
        setup.prefiltered = true;
        checkRange("prefiltered", setup, 0.278f, 1.029f + ROUNDING);
    }
}

TEST_P(PbsPhysicsTest, whiteDielectricsAreAboutAsBrightAsTheirSurroundings) {
    // Diffuse: 1 - F, where F stays F0 = 0.04 to within (1 - cos 22 degrees)^5. Specular: F0 scale + bias,
    // with a scale of at most 1.029 as above and a bias between 0 and 0.01 for these cosines.
    for (const double roughness : {0.0, 0.3, 1.0}) {
        PbsSetup setup = makeFurnace(roughness);
        setup.albedo = {1.0, 1.0, 1.0};
        setup.specular = {0.04, 0.04, 0.04};
        setup.environment = white(true, 3);
        setup.irradiance = white(false, 1);
        setup.prefiltered = true;
        checkRange("dielectric", setup, 0.96f - ROUNDING, 0.96f + 0.0412f + 0.01f);
    }
}

TEST_P(PbsPhysicsTest, turningEverythingChangesNothing) {
    PbsSetup setup;
    const FloatPicture picture = drawPbs(setup);
    // About (1, 2, 2) / 3 by 90 degrees, moved: Rodrigues' formula.
    const double x = 1.0 / 3.0;
    const double y = 2.0 / 3.0;
    const double z = 2.0 / 3.0;
    PbsSurface turned;
    turned.stage = Matrix::newMat4(float(x * x), float(x * y - z), float(x * z + y), 1.0f,  //
                                   float(x * y + z), float(y * y), float(y * z - x), -2.0f, //
                                   float(x * z - y), float(y * z + x), float(z * z), 0.5f, 0, 0, 0, 1.0f);
    const Vec3 light = setup.lightDirection;
    for (std::size_t row = 0; row < 3; ++row)
        setup.lightDirection[row] = double(turned.stage.m[row][0]) * light[0] +
                                    double(turned.stage.m[row][1]) * light[1] +
                                    double(turned.stage.m[row][2]) * light[2];
    // Everything is rounded in another place; highlights enlarge that.
    EXPECT_TRUE(
        picturesMatch("pbs_turned", drawPbs(setup, turned), picture, {.worst = 2e-4f, .mean = 1e-5f}));
}

TEST_P(PbsPhysicsTest, bothModelsDescribeTheSameSurface) {
    // The glossiness model multiplies the albedo by 1 - max F0 and counts roughness backwards.
    const auto makeSetup = [](bool glossiness) {
        PbsSetup setup;
        setup.specular = {0.4, 0.2, 0.1};
        setup.metalness = 0.5;
        const double kept = 1.0 - 0.5 * 0.4;
        setup.glossiness = glossiness;
        setup.albedo = glossiness ? Vec3{0.25, 0.5, 0.75} : kept * Vec3{0.25, 0.5, 0.75};
        setup.roughnessGlossiness = glossiness ? 0.375 : 0.625;
        setup.environment = {
            [](const Vec3& d, double mip) {
                return FloatPixel{float(1.0 + 0.3 * d[0] + mip), 1.0f, float(1.0 - d[1]), 1.0f};
            },
            true, 32, 4, "rgb"};
        setup.prefiltered = setup.combine = true;
        return setup;
    };
    EXPECT_TRUE(picturesMatch("pbs_models", drawPbs(makeSetup(true)), drawPbs(makeSetup(false)),
                              {.worst = 1e-6f, .mean = 1e-7f}));
}

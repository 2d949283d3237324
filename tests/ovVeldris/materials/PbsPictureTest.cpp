#include <cmath>
#include <ovVeldris/materials/PbsPictureFixture.h>

using namespace ovVeldris;
using ovMaths::Matrix;

namespace {

// Floats of 24 bits through a few hundred operations; the brightest pixels divide by a difference of the size
// of roughness^4, here 0.03 and more.
constexpr PictureLimits ARITHMETIC = {.worst = 4e-5f, .mean = 1e-6f};
// The same with roughnesses down to 0.1, and down to 0.08 with a highlight of a few pixels.
constexpr PictureLimits HIGHLIGHTS = {.worst = 2e-3f, .mean = 1e-5f};
// Maps are read between texels, which is off by an eighth of the square of their distance (a 32nd of a cube's
// half side) times the curvature, and by more where faces meet or a mip is coarse.
constexpr PictureLimits FILTERED = {.worst = 1e-3f, .mean = 3e-5f};
// The mean of many reads; flat maps are less fine.
constexpr PictureLimits SAMPLED = {.worst = 2e-4f, .mean = 2e-5f};
// Mesa's rasteriser misses the mip between two by up to 0.05, and where neighbours step in both directions by
// more; a mip changes the colours below by 0.1.
constexpr PictureLimits CHOSEN_MIP = {.worst = 2e-2f, .mean = 2e-3f};

struct Case {
    const char* name;
    PictureLimits limits;
    std::function<void(PbsSetup& setup, PbsSurface& surface)> change;
};

class PbsPictureTest : public PbsPictureFixture {
protected:
    void check(const ovMemory::Buffer<Case>& cases) {
        for (const Case& row : cases) {
            PbsSetup setup;
            PbsSurface surface;
            row.change(setup, surface);
            EXPECT_TRUE(picturesMatch(ovMemory::String("pbs_") + row.name, drawPbs(setup, surface),
                                      computePbs(setup, surface), row.limits))
                << row.name;
        }
    }

    /// Each channel different, all within 0.1 to 0.9, and none flat.
    static FloatPicture pattern(double phase) {
        return paint([phase](double a, double b) {
            const auto wave = [&](double i) {
                return float(0.5 + 0.4 * std::sin(4.0 * a + 3.0 * b * i + phase + i));
            };
            return FloatPixel{wave(0.0), wave(1.0), wave(2.0), wave(3.0)};
        });
    }

    /// Stored normals: mostly up, all directions tilted.
    static FloatPicture bumps() {
        return paint([](double a, double b) {
            const auto x = float(0.5 + 0.3 * std::sin(9.0 * a));
            const auto y = float(0.5 + 0.3 * std::cos(7.0 * b));
            return FloatPixel{x, y, 0.9f, 0.25f};
        });
    }

    static void useEveryTexture(PbsSetup& setup) {
        setup.albedoTexture = {pattern(0.1), "rgb"};
        setup.specularTexture = {pattern(0.2), "bgr"};
        setup.emissiveTexture = {pattern(0.3), "arg"};
        setup.metalnessTexture = {pattern(0.4), "g"};
        setup.roughnessTexture = {pattern(0.5), "b"};
        setup.alphaTexture = {pattern(0.6), "a"};
        setup.occlusionTexture = {pattern(0.7), "r"};
        setup.normalMap = {bumps(), "rgb"};
    }

    static void mixAll(PbsSetup& setup) {
        setup.mixAlbedo = setup.mixSpecular = setup.mixEmissive = setup.mixMetalness = setup.mixRoughness =
            setup.mixAlpha = setup.mixEnvironment = true;
    }

    /// Radiance that grows evenly along three directions, different in every channel, and by 0.1 a mip.
    static FloatPixel sky(const Vec3& d, double mip) {
        const auto value = [&](const Vec3& axis, double middle) {
            return float(middle + dot(d, axis) + 0.1 * mip);
        };
        return {value({0.3, 0.4, 0.0}, 1.0), value({0.0, -0.3, 0.5}, 1.2), value({-0.4, 0.2, 0.3}, 0.9),
                value({0.1, 0.1, 0.1}, 2.0)};
    }
    /// The mip alone.
    static FloatPixel mipSky(const Vec3&, double mip) {
        const auto value = float(0.1 + 0.1 * mip);
        return {value, value, value, value};
    }
    static SurroundingsMap cube(ovMemory::StringView channels = "rgb") {
        return {sky, true, 64, 1, ovMemory::String(channels)};
    }
    static SurroundingsMap flat(ovMemory::StringView channels = "rgb") {
        return {sky, false, 64, 1, ovMemory::String(channels)};
    }

    /// A map of depths in squares of the given size in texels, before and behind the surface.
    static ShadowSetup shadow(SHADOW_MAP_PCF method, unsigned int size = 16, unsigned int square = 3) {
        ShadowSetup setup;
        setup.depths = FloatPicture(size, size);
        for (unsigned int y = 0; y < size; ++y)
            for (unsigned int x = 0; x < size; ++x)
                setup.depths.at(x, y)[0] = (x / square + y / square) % 2 ? 0.25f : 0.9f;
        setup.position = {0.1, 0.2, -2.0};
        setup.direction = {0.2, -0.1, 1.0};
        setup.extent = 2.4; // more than is seen in some directions, less in others
        setup.parameters.pcfMethod = method;
        return setup;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsPictureTest, bothLanguages(), languageName);

TEST_P(PbsPictureTest, reflectsTheLight) {
    check({
        {"light", ARITHMETIC, [](PbsSetup&, PbsSurface&) {}},
        {"light_glossiness", ARITHMETIC, [](PbsSetup& setup, PbsSurface&) { setup.glossiness = true; }},
        {"light_rough", ARITHMETIC, [](PbsSetup& setup, PbsSurface&) { setup.roughnessGlossiness = 1.0; }},
        {"light_metal", ARITHMETIC, [](PbsSetup& setup, PbsSurface&) { setup.metalness = 1.0; }},
        {"light_dielectric", ARITHMETIC, [](PbsSetup& setup, PbsSurface&) { setup.metalness = 0.0; }},
        {"light_from_behind", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.lightDirection = {0.2, 0.1, -1.0};
         }},
        {"light_smooth", HIGHLIGHTS, [](PbsSetup& setup, PbsSurface&) { setup.roughnessGlossiness = 0.08; }},
    });
}

TEST_P(PbsPictureTest, showsNoHighlightInAPerfectMirror) {
    // Normals point to the eye, and the light comes from there for one pixel or other, whose D is 0 / 0.
    for (const double offset : {-5.0, -3.0, -1.0, 1.0, 3.0, 5.0}) {
        PbsSetup setup;
        PbsSurface surface;
        setup.roughnessGlossiness = 0.0;
        for (std::size_t i = 0; i < 4; ++i)
            surface.normals[i] = EYE - Vec3{i % 2 ? 1.0 : -1.0, i / 2 ? -1.0 : 1.0, 0.0};
        setup.lightDirection = Vec3{offset / SIZE, 1.0 / SIZE, 0.0} - EYE;
        EXPECT_TRUE(picturesMatch("pbs_light_mirror", drawPbs(setup, surface), computePbs(setup, surface),
                                  ARITHMETIC))
            << offset;
    }
}

TEST_P(PbsPictureTest, readsTexturesByTheirChannels) {
    check({
        {"textures", ARITHMETIC, [](PbsSetup& setup, PbsSurface&) { useEveryTexture(setup); }},
        {"textures_mixed", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             useEveryTexture(setup);
             mixAll(setup);
         }},
        {"textures_glossiness", HIGHLIGHTS,
         [](PbsSetup& setup, PbsSurface&) {
             useEveryTexture(setup);
             setup.glossiness = true;
         }},
        {"texture_alone", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.albedoTexture = {pattern(0.0), "abr"};
             mixAll(setup); // switches without textures change nothing
         }},
        {"occlusion", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.occlusionTexture = {pattern(0.5), "b"};
         }},
    });
}

TEST_P(PbsPictureTest, turnsNormals) {
    const Matrix placed =
        Matrix::newMat4(0.0f, -2.0f, 0.0f, 0.3f, 0.5f, 0.0f, 0.2f, -0.1f, 0.0f, 0.1f, 1.5f, 0.0f, 0, 0, 0, 1);
    check({
        {"normal_map", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.normalMap = {bumps(), "rgb"};
         }},
        {"normal_map_channels", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.normalMap = {bumps(), "agb"};
         }},
        {"normal_map_given_binormals", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.normalMap = {bumps(), "rgb"};
             setup.reconstructBinormals = false;
         }},
        {"world_matrix", ARITHMETIC, [&](PbsSetup&, PbsSurface& surface) { surface.world = placed; }},
        {"world_matrix_normal_map", ARITHMETIC,
         [&](PbsSetup& setup, PbsSurface& surface) {
             surface.world = placed;
             setup.normalMap = {bumps(), "rgb"};
         }},
        {"world_matrix_given_binormals", ARITHMETIC,
         [&](PbsSetup& setup, PbsSurface& surface) {
             surface.world = placed;
             setup.normalMap = {bumps(), "rgb"};
             setup.reconstructBinormals = false;
         }},
    });
}

TEST_P(PbsPictureTest, cutsAlphaOff) {
    const float half = 0.5f;
    check({
        {"alpha_equal_to_the_cutoff", ARITHMETIC,
         [&](PbsSetup& setup, PbsSurface&) { setup.alpha = setup.alphaCutoff = double(half); }},
        {"alpha_just_above_the_cutoff", ARITHMETIC,
         [&](PbsSetup& setup, PbsSurface&) {
             setup.alpha = double(std::nextafter(half, 1.0f));
             setup.alphaCutoff = double(half);
         }},
        {"alpha_texture", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.alphaTexture = {pattern(0.0), "g"};
             setup.alphaCutoff = 0.45;
         }},
        {"alpha_zero", ARITHMETIC, [](PbsSetup& setup, PbsSurface&) { setup.alpha = 0.0; }},
        {"alpha_negative_cutoff", ARITHMETIC,
         [](PbsSetup& setup, PbsSurface&) {
             setup.alpha = 0.0;
             setup.alphaCutoff = -1.0;
         }},
    });
}

TEST_P(PbsPictureTest, samplesTheEnvironment) {
    check({
        {"environment_cube", SAMPLED, [](PbsSetup& setup, PbsSurface&) { setup.environment = cube(); }},
        {"environment_flat", SAMPLED, [](PbsSetup& setup, PbsSurface&) { setup.environment = flat("agb"); }},
        {"environment_mirror", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = cube("brg");
             setup.roughnessGlossiness = 0.0;
         }},
        {"environment_rough", SAMPLED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = cube();
             setup.roughnessGlossiness = 1.0;
         }},
        {"environment_glossiness", SAMPLED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = cube();
             setup.glossiness = true;
         }},
        {"environment_combined", SAMPLED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = cube();
             setup.combine = true;
         }},
        {"environment_mixed_from_below", SAMPLED,
         [](PbsSetup& setup, PbsSurface& surface) { // normals near y span another frame
             setup.environment = cube();
             setup.mixEnvironment = true;
             surface.normals = {
                 Vec3{0.01, 1.0, -0.02}, {0.02, 1.0, -0.01}, {-0.01, 1.0, 0.01}, {0.3, 1.0, 0.0}};
         }},
        {"environment_cube_mips", CHOSEN_MIP,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {mipSky, true, 128, 8, "rgb"};
         }},
        {"environment_flat_mips", CHOSEN_MIP,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {mipSky, false, 128, 8, "rgb"};
             setup.roughnessGlossiness = 0.4;
         }},
    });
}

TEST_P(PbsPictureTest, readsAPrefilteredEnvironment) {
    check({
        {"prefiltered_cube", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {sky, true, 128, 3, "gbr"};
             setup.prefiltered = true;
         }},
        {"prefiltered_cube_roughness", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {sky, true, 128, 3, "rgb"};
             setup.prefiltered = true;
             setup.roughnessTexture = {pattern(0.0), "r"};
         }},
        {"prefiltered_cube_glossiness", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {sky, true, 128, 3, "rgb"};
             setup.prefiltered = setup.glossiness = true;
         }},
        {"prefiltered_cube_combined_and_mixed", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {sky, true, 128, 3, "rgb"};
             setup.prefiltered = setup.combine = true;
             setup.irradiance = cube("rbg");
             mixAll(setup);
         }},
        {"prefiltered_flat_single_mip", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = flat();
             setup.prefiltered = true;
         }},
        {"prefiltered_flat", CHOSEN_MIP,
         [](PbsSetup& setup, PbsSurface&) {
             setup.environment = {mipSky, false, 128, 8, "rgb"};
             setup.prefiltered = true;
             setup.roughnessGlossiness = 0.3;
         }},
    });
}

TEST_P(PbsPictureTest, readsIrradiance) {
    check({
        {"irradiance_cube", FILTERED, [](PbsSetup& setup, PbsSurface&) { setup.irradiance = cube("bga"); }},
        {"irradiance_flat", FILTERED, [](PbsSetup& setup, PbsSurface&) { setup.irradiance = flat(); }},
        {"irradiance_mixed", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.irradiance = cube();
             setup.mixEnvironment = true;
         }},
        {"irradiance_and_environment", FILTERED,
         [](PbsSetup& setup, PbsSurface&) {
             setup.irradiance = flat("gra");
             setup.environment = {sky, true, 128, 3, "rgb"};
             setup.prefiltered = true;
             setup.occlusionTexture = {pattern(0.5), "b"};
         }},
    });
}

TEST_P(PbsPictureTest, shadowsByEveryKernel) {
    using PCF = SHADOW_MAP_PCF;
    check({
        {"shadow_single", ARITHMETIC, [](PbsSetup& s, PbsSurface&) { s.shadow = shadow(PCF::NONE); }},
        {"shadow_4", ARITHMETIC, [](PbsSetup& s, PbsSurface&) { s.shadow = shadow(PCF::PCF_4_TAP); }},
        {"shadow_9", ARITHMETIC, [](PbsSetup& s, PbsSurface&) { s.shadow = shadow(PCF::PCF_9_TAP); }},
        {"shadow_16", ARITHMETIC,
         [](PbsSetup& s, PbsSurface&) { s.shadow = shadow(PCF::PCF_16_TAP, 24, 5); }},
        {"shadow_out_of_bounds", ARITHMETIC,
         [](PbsSetup& s, PbsSurface&) {
             s.shadow = shadow(PCF::PCF_9_TAP);
             s.shadow.extent = 1.1;
             s.shadow.parameters.debugOutOfBounds = true;
         }},
        // So far that everything becomes lit.
        {"shadow_bias", ARITHMETIC,
         [](PbsSetup& s, PbsSurface&) {
             s.shadow = shadow(PCF::NONE);
             s.shadow.parameters.bias = 0.5f;
         }},
        {"shadow_on_the_environment", FILTERED,
         [](PbsSetup& s, PbsSurface&) {
             s.shadow = shadow(PCF::PCF_4_TAP);
             s.environment = {sky, true, 128, 3, "rgb"};
             s.prefiltered = true;
         }},
        {"shadow_on_both", FILTERED,
         [](PbsSetup& s, PbsSurface&) {
             s.shadow = shadow(PCF::PCF_4_TAP);
             s.environment = {sky, true, 128, 3, "rgb"};
             s.prefiltered = s.combine = true;
             s.irradiance = cube();
         }},
    });
}

TEST_P(PbsPictureTest, drawsTheSameInBothLanguages) {
    PbsSetup setup;
    useEveryTexture(setup);
    setup.environment = {sky, true, 128, 3, "rgb"};
    setup.irradiance = flat();
    setup.shadow = shadow(SHADOW_MAP_PCF::PCF_9_TAP);
    setup.combine = true;
    setup.alphaCutoff = 0.4;
    const FloatPicture picture = drawPbs(setup);
    TearDown();
    useLanguage(getOtherLanguage());
    // The projections differ by a sign, so that places in the shadow map are rounded differently.
    EXPECT_TRUE(picturesMatch("pbs_languages", drawPbs(setup), picture, {.worst = 1e-4f, .mean = 1e-5f}));
}

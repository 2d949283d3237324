// The physically based material's formulas in double precision, plain and slow, written from the equations in
// docs/materials.md.
#pragma once

#include <array>
#include <functional>

using Vec3 = std::array<double, 3>;

Vec3 operator+(const Vec3& a, const Vec3& b);
Vec3 operator-(const Vec3& a, const Vec3& b);
Vec3 operator*(const Vec3& a, const Vec3& b);
Vec3 operator*(double s, const Vec3& a);
double dot(const Vec3& a, const Vec3& b);
Vec3 cross(const Vec3& a, const Vec3& b);
Vec3 normalized(const Vec3& a);

/// Light by direction.
struct PbsReferenceMap {
    /// What is read in a direction at a level: of a single read the level is exact or a bias, as the map's
    /// kind has it; of one sample of many it is a bias, and the sample's number comes with it.
    std::function<Vec3(const Vec3& direction, double level, int sample)> read;
    bool prefiltered = false;
    double resolution = 1.0; ///< texels of a cube's side, or half the height of a flat map
    double mipCount = 1.0;
};

/// What a point of a surface is made of, textures and mix switches applied.
struct PbsReferencePoint {
    Vec3 normal{};       ///< of length 1, normal map applied
    Vec3 eyeDirection{}; ///< of any length
    Vec3 albedo{};
    Vec3 specular{};
    Vec3 emissive{};
    double metalness = 0.0;
    double roughnessGlossiness = 0.0;
    double occlusion = 1.0;
    double shadow = 1.0;
};

/// What is the same at every point.
struct PbsReferenceScene {
    bool glossiness = false;
    bool combine = false;
    Vec3 lightDirection{1.0, -1.0, 1.0};
    Vec3 lightColor{1.0, 1.0, 1.0};
    Vec3 irradianceColor{}; ///< without an irradiance map
    const PbsReferenceMap* environment = nullptr;
    const PbsReferenceMap* irradiance = nullptr;
};

/// The light that a point sends to the eye.
Vec3 shadePbs(const PbsReferenceScene& scene, const PbsReferencePoint& point);

/// The directions of the 1024 samples of an environment map that is not prefiltered, in their order.
std::array<Vec3, 1024> listPbsSampleDirections(const Vec3& normal, const Vec3& eye, double roughness);

/// The place of a direction in a flat map, v = 0 at the top.
std::array<double, 2> toFlatMap(const Vec3& direction);

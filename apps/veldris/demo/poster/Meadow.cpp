#include <veldris/demo/poster/Meadow.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ovGraphics/scene/Mesh.h>
#include <veldris/demo/Noise.h>
#include <veldris/demo/PaintedTexture.h>
#include <veldris/demo/SurfaceMesh.h>

namespace veldris {

using ovMaths::Vector;

namespace {

constexpr float TOP_RADIUS = 30.0f; // metres; beyond it the hill falls away
constexpr float STEEPNESS = 0.0016f;

/// Numbers from 0 to 1 in an order that is the same on every run: places far apart in noise.
class Numbers {
public:
    explicit Numbers(unsigned int kind)
        : _at(0.5f + 7.0f * static_cast<float>(kind)) {}
    float next() {
        _at += 1.0f;
        const float stretched = 1.6f * (smoothNoise({_at, 0.5f * _at, 3.0f}) - 0.5f) + 0.5f;
        return std::clamp(stretched, 0.0f, 1.0f);
    }

private:
    float _at;
};

/// A blade that bends over: three pairs of corners and a tip, seen from both sides.
void addBlade(SurfaceMesh& mesh, Numbers& numbers) {
    constexpr unsigned int JOINTS = 3;
    const float angle = 2.0f * std::numbers::pi_v<float> * numbers.next();
    const float place = std::sqrt(numbers.next());
    const float around = 6.0f * std::numbers::pi_v<float> * numbers.next();
    const Vector foot(place * std::cos(around), 0.0f, place * std::sin(around));
    const Vector across(std::cos(angle), 0.0f, std::sin(angle));
    const Vector over(-across.z, 0.0f, across.x);
    const float height = 0.14f + 0.3f * numbers.next();
    const float bend = height * (0.15f + 0.5f * numbers.next());
    const float halfWidth = 0.006f + 0.006f * numbers.next();
    const float dryness = numbers.next();
    // Blades are lit like the meadow that they are part of, with a little of their own direction.
    const Vector normal = (Vector(0.0f, 1.0f, 0.0f) - over * 0.35f).getNormalizedVec3();
    ovMemory::Buffer<SurfaceCorner> corners;
    for (unsigned int joint = 0; joint <= JOINTS; ++joint) {
        const float t = static_cast<float>(joint) / JOINTS;
        const Vector middle = foot + Vector(0.0f, height * t, 0.0f) + over * (bend * t * t);
        const Vector side = across * (halfWidth * (1.0f - t));
        corners.push_back({middle - side, normal, {dryness, t}});
        corners.push_back({middle + side, normal, {dryness, t}});
    }
    ovMemory::Buffer<uint32_t> indices;
    for (uint32_t joint = 0; joint < JOINTS; ++joint) {
        const uint32_t left = 2 * joint;
        for (const uint32_t index : {left, left + 2, left + 1, left, left + 1, left + 2, // both sides
                                     left + 1, left + 2, left + 3, left + 1, left + 3, left + 2})
            indices.push_back(index);
    }
    mesh.addTriangles(corners, indices);
}

} // namespace

float meadowHeight(float x, float z) {
    const float uneven = 1.1f * fractalNoise({0.06f * x, 0.0f, 0.06f * z}, 3) +
                         0.12f * fractalNoise({0.7f * x, 4.0f, 0.7f * z}, 2);
    const float beyond = std::max(std::sqrt(x * x + z * z) - TOP_RADIUS, 0.0f);
    return uneven - STEEPNESS * beyond * beyond;
}

ovMemory::UniquePtr<ovGraphics::Mesh> makeMeadow(ovGraphics::System& graphics, float halfSide,
                                                 unsigned int rows) {
    SurfaceMesh mesh;
    mesh.addGrid(rows, rows, [=](float u, float v) {
        const float x = halfSide * (2.0f * u - 1.0f);
        const float z = halfSide * (1.0f - 2.0f * v);
        return Vector(x, meadowHeight(x, z), z);
    });
    return mesh.make(graphics, "meadow");
}

ovMemory::UniquePtr<ovGraphics::Texture> paintMeadow(ovGraphics::System& graphics, float halfSide,
                                                     unsigned int side) {
    return paintTexture(graphics, side, true, [=](float u, float v) {
        const float x = halfSide * (2.0f * u - 1.0f);
        const float z = halfSide * (1.0f - 2.0f * v);
        const float fine = fractalNoise({3.0f * x, 0.0f, 3.0f * z}, 3);
        const float broad = fractalNoise({0.15f * x, 7.0f, 0.15f * z}, 4);
        const Vector grass = mixColors({0.20f, 0.24f, 0.12f, 1.0f}, {0.38f, 0.38f, 0.20f, 1.0f}, fine);
        const Vector dry = mixColors({0.34f, 0.30f, 0.18f, 1.0f}, {0.50f, 0.43f, 0.27f, 1.0f}, fine);
        return mixColors(grass, dry, (broad - 0.42f) * 5.0f);
    });
}

ovMemory::UniquePtr<ovGraphics::Mesh> makeGrass(ovGraphics::System& graphics, unsigned int kind,
                                                unsigned int blades) {
    SurfaceMesh mesh;
    Numbers numbers(kind);
    for (unsigned int blade = 0; blade < blades; ++blade)
        addBlade(mesh, numbers);
    return mesh.make(graphics, "grass");
}

ovMemory::UniquePtr<ovGraphics::Texture> paintGrass(ovGraphics::System& graphics) {
    constexpr unsigned int SIDE = 64;
    return paintTexture(graphics, SIDE, true, [](float u, float v) {
        const Vector green = mixColors({0.10f, 0.14f, 0.05f, 1.0f}, {0.40f, 0.46f, 0.20f, 1.0f}, v);
        const Vector dry = mixColors({0.18f, 0.15f, 0.08f, 1.0f}, {0.66f, 0.57f, 0.34f, 1.0f}, v);
        return mixColors(green, dry, 1.4f * u - 0.25f);
    });
}

} // namespace veldris

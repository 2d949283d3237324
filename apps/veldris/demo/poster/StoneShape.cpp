#include <veldris/demo/poster/StoneShape.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ovGraphics/scene/Mesh.h>
#include <veldris/demo/Noise.h>
#include <veldris/demo/PaintedTexture.h>
#include <veldris/demo/SurfaceMesh.h>

namespace veldris {

using ovMaths::Vector;

namespace {

constexpr unsigned int FACES = 6;
constexpr unsigned int CELLS_ACROSS = 3; // of the texture, a cell for each face of the block
constexpr unsigned int CELLS_DOWN = 2;
constexpr unsigned int GRID = 48;
constexpr float SQUARENESS = 7.0f; // the exponent of the superellipsoid: 2 is a ball
constexpr float BULGES = 0.16f;    // of its size
constexpr float ROUGHNESS = 0.05f;
constexpr float TAPER = 0.22f;

struct Face {
    Vector outwards;
    Vector alongU;
    Vector alongV;
};

/// The cross product of alongU and alongV points outwards.
constexpr std::array<Face, FACES> BLOCK = {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                            {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
                                            {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
                                            {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
                                            {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
                                            {{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}}};

Vector offsetOf(unsigned int kind) {
    const auto number = static_cast<float>(kind);
    return {13.7f * number, 5.3f * number, 29.1f * number};
}

/// Where the noise of the surface is read: in front of a place of a face.
Vector directionOf(unsigned int face, float u, float v) {
    const Face& side = BLOCK[face];
    return (side.outwards + side.alongU * (2.0f * u - 1.0f) + side.alongV * (2.0f * v - 1.0f))
        .getNormalizedVec3();
}

/// How far weather has left the stone standing, about 0: below, it is hollow.
float reliefOf(unsigned int kind, const Vector& direction) {
    const Vector place = direction + offsetOf(kind);
    const float bulge = fractalNoise(place * 1.6f, 3) - 0.5f;
    // Layers of the rock: long cracks along the ground.
    const float layers = fractalNoise(Vector(place.x * 4.0f, place.y * 11.0f, place.z * 4.0f), 4) - 0.5f;
    return BULGES * 2.0f * bulge + ROUGHNESS * 2.0f * layers;
}

Vector placeOn(unsigned int kind, unsigned int face, float u, float v) {
    const Vector direction = directionOf(face, u, v);
    const auto power = [](float x) { return std::pow(std::abs(x), SQUARENESS); };
    const float reach =
        std::pow(power(direction.x) + power(direction.y) + power(direction.z), -1.0f / SQUARENESS);
    Vector place = direction * (reach * (0.88f + reliefOf(kind, direction)));
    const float narrowing = 1.0f - TAPER * (0.5f + 0.5f * place.y);
    place.x *= narrowing;
    place.z *= narrowing;
    return place;
}

Vector colorOf(unsigned int kind, unsigned int face, float u, float v) {
    const Vector direction = directionOf(face, u, v);
    const Vector place = direction + offsetOf(kind);
    const float grain = fractalNoise(place * 23.0f, 3);
    const float spots = fractalNoise(place * 5.0f + Vector(3.0f, 1.0f, 4.0f), 5);
    const Vector rock = mixColors({0.34f, 0.33f, 0.32f, 1.0f}, {0.52f, 0.49f, 0.45f, 1.0f}, grain);
    const Vector lichen = mixColors({0.52f, 0.50f, 0.34f, 1.0f}, {0.63f, 0.61f, 0.52f, 1.0f}, grain);
    const Vector wet(0.24f, 0.25f, 0.22f, 1.0f);
    const Vector covered = mixColors(rock, lichen, (spots - 0.56f) * 9.0f);
    const Vector hollow = mixColors(covered, wet, -6.0f * reliefOf(kind, direction));
    return mixColors(hollow, wet, -1.4f * direction.y - 0.75f);
}

} // namespace

ovMemory::UniquePtr<ovGraphics::Mesh> makeStone(ovGraphics::System& graphics, unsigned int kind) {
    SurfaceMesh mesh;
    for (unsigned int face = 0; face < FACES; ++face) {
        const unsigned int column = face % CELLS_ACROSS;
        const unsigned int row = face / CELLS_ACROSS;
        mesh.addGrid(
            GRID, GRID, [&](float u, float v) { return placeOn(kind, face, u, v); },
            [=](float u, float v) {
                return Vector((static_cast<float>(column) + u) / CELLS_ACROSS,
                              (static_cast<float>(row) + v) / CELLS_DOWN);
            });
    }
    return mesh.make(graphics, "stone");
}

ovMemory::UniquePtr<ovGraphics::Texture> paintStone(ovGraphics::System& graphics, unsigned int kind,
                                                    unsigned int side) {
    return paintTexture(graphics, side, true, [&](float u, float v) {
        const float across = u * CELLS_ACROSS;
        const float down = v * CELLS_DOWN;
        const auto column = static_cast<unsigned int>(across);
        const auto row = static_cast<unsigned int>(down);
        return colorOf(kind, row * CELLS_ACROSS + column, across - static_cast<float>(column),
                       down - static_cast<float>(row));
    });
}

} // namespace veldris

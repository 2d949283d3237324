#include <veldris/demo/Terrain.h>

#include <algorithm>
#include <cmath>
#include <ovGraphics/scene/Mesh.h>
#include <veldris/demo/Noise.h>
#include <veldris/demo/SurfaceMesh.h>

namespace veldris {

using ovMaths::Vector;

namespace {

constexpr unsigned int OCTAVES = 7;
constexpr float FIRST_FREQUENCY = 2.6f; // ridges along a side, about
constexpr float LACUNARITY = 2.03f;
constexpr float GAIN = 0.48f;
constexpr float VALLEY_HALF_WIDTH = 0.16f;

} // namespace

float terrainHeight(float x, float z) {
    float sum = 0.0f;
    float most = 0.0f;
    float amplitude = 1.0f;
    float weight = 1.0f;
    float frequency = FIRST_FREQUENCY;
    for (unsigned int octave = 0; octave < OCTAVES; ++octave) {
        const float offset = 17.3f * static_cast<float>(octave);
        const float noise = smoothNoise({x * frequency + offset, 0.0f, z * frequency - offset});
        const float ridge = 1.0f - std::abs(2.0f * noise - 1.0f);
        // What lies high gets the finer ridges; valleys stay smooth.
        sum += ridge * ridge * weight * amplitude;
        most += amplitude;
        weight = std::clamp(ridge * 1.6f, 0.0f, 1.0f);
        amplitude *= GAIN;
        frequency *= LACUNARITY;
    }
    const float bend = 0.12f * std::sin(4.0f * z);
    const float beside =
        std::clamp((std::abs(x - bend) - 0.3f * VALLEY_HALF_WIDTH) / VALLEY_HALF_WIDTH, 0.0f, 3.0f);
    const float valley = 1.0f - std::exp(-0.9f * beside * beside);
    return std::clamp(sum / most * (0.12f + 0.88f * valley), 0.0f, 1.0f);
}

Vector terrainNormal(float x, float z, float heightScale) {
    constexpr float STEP = 1.0f / 1024.0f;
    const float slopeX = (terrainHeight(x + STEP, z) - terrainHeight(x - STEP, z)) / (2.0f * STEP);
    const float slopeZ = (terrainHeight(x, z + STEP) - terrainHeight(x, z - STEP)) / (2.0f * STEP);
    return Vector(-heightScale * slopeX, 1.0f, -heightScale * slopeZ).getNormalizedVec3();
}

Vector terrainColor(float u, float v, float heightScale) {
    const float x = 2.0f * u - 1.0f;
    const float z = 1.0f - 2.0f * v;
    const float height = terrainHeight(x, z);
    const float level = terrainNormal(x, z, heightScale).y;
    const Vector grass(0.36f, 0.42f, 0.24f, 1.0f);
    const Vector rock(0.44f, 0.40f, 0.37f, 1.0f);
    const Vector snow(0.93f, 0.94f, 0.96f, 1.0f);
    const Vector ground = mixColors(rock, grass, (level - 0.82f) * 8.0f);
    return mixColors(ground, snow, (height - 0.42f) * 9.0f + (level - 0.8f) * 3.0f);
}

ovMemory::UniquePtr<ovGraphics::Mesh> makeTerrain(ovGraphics::System& graphics, unsigned int columns,
                                                  unsigned int rows) {
    SurfaceMesh mesh;
    mesh.addGrid(columns, rows, [](float u, float v) {
        const float x = 2.0f * u - 1.0f;
        const float z = 1.0f - 2.0f * v;
        return Vector(x, terrainHeight(x, z), z);
    });
    return mesh.make(graphics, "terrain");
}

} // namespace veldris

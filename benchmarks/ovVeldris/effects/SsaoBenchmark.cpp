// What ambient occlusion costs at 1280 x 720 beside a hand-written OpenGL program of the same formula.
//
// The scene is a courtyard: a floor, a wall behind it and pillars, so that some samples are hidden, some are
// not, and none lies beside everything. EffectPass.h tells what makes the comparison fair.
#include "ovVeldris/effects/SsaoBenchmark.h"

#include "ovVeldris/effects/EffectPass.h"

#include <array>
#include <cmath>
#include <epoxy/gl.h>
#include <ovVeldris/effects/SsaoEffect.h>

namespace {

using namespace ovBenchmarks;

constexpr double RATIO_AIM = 1.1;
constexpr int WIDTH = 1280;
constexpr int HEIGHT = 720;
constexpr int ROUNDS = 15;

constexpr float FIELD_OF_VIEW = 1.1f; // from the bottom to the top, radians
constexpr float ASPECT = float(WIDTH) / float(HEIGHT);
constexpr float NEAR_PLANE = 0.1f;
constexpr float FAR_PLANE = 60.0f;
constexpr float RADIUS = 0.4f;
constexpr float MAX_DISTANCE = 1.0f;
constexpr float STRENGTH = 0.8f;

// Constants: radius, largest distance, strength; the scale of the projection; near, far and the two numbers
// of depth.
const std::string HEADER = R"glsl(#version 450 core
layout(binding = 1) uniform sampler2D scene;
layout(binding = 2) uniform sampler2D normals;
layout(binding = 0, std140) uniform Constants { vec4 limits; vec4 lens; vec4 planes; mat4 projection; };
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 colour;
const vec3 KERNEL[16] = vec3[](
    vec3(0.92564, 0.11612, 0.86813), vec3(0.81392, 0.40855, 0.02675), vec3(0.28794, -0.56523, -0.92131),
    vec3(-0.75754, 0.45838, -0.05279), vec3(0.47536, -0.82889, 0.45496), vec3(-0.26338, 0.85357, -0.90751),
    vec3(0.38205, 0.32105, -0.68946), vec3(-0.90984, 0.58611, 0.16960), vec3(-0.18035, 0.33897, -0.29953),
    vec3(-0.40315, -0.67820, -0.56017), vec3(0.36937, -0.81180, -0.48061), vec3(0.67736, -0.91273, 0.87091),
    vec3(0.91413, 0.39406, 0.90515), vec3(-0.00458, 0.50195, 0.53110), vec3(0.83173, -0.98079, -0.08618),
    vec3(-0.85342, -0.98334, -0.20135));
)glsl";

const std::string BODY = R"glsl(
float openness(vec3 position, vec3 normal) {
    float occlusion = 0.0;
    vec3 n = normalize(normal);
    for (int i = 0; i < 16; ++i) {
        vec3 d = normalize(KERNEL[i]);
        float cosine = dot(d, n);
        d = mix(d * sign(cosine), normal, clamp(1.5 - exp(cosine * 0.4), 0.0, 1.0));
        vec3 place = position + d * limits.x;
        vec4 clip = projection * vec4(place, 1.0);
        float z = depthAt(clip.xy / clip.w * 0.5 + 0.5);
        float inFront = place.z - z;
        if (z != 0.0 && inFront > 0.00001 && inFront < limits.y)
            occlusion += 1.0 / 16.0;
    }
    return pow(max(1.0 - occlusion, 0.0), limits.z);
}
)glsl";

const std::string FROM_DEPTH = HEADER + R"glsl(
float depthAt(vec2 uv) { return planes.x + planes.y * planes.w / (textureLod(scene, uv, 0.0).x - planes.z); }
)glsl" + BODY + R"glsl(
void main() {
    vec3 position = vec3((2.0 * uvs - 1.0) * lens.xy, 1.0) * depthAt(uvs);
    vec3 dX = dFdx(position), dY = dFdy(position);
    if (max(dot(dX, dX), dot(dY, dY)) > limits.y * limits.y || position.z == planes.y)
        discard;
    colour = vec4(vec3(openness(position, cross(normalize(dX), normalize(dY)))), 1.0);
}
)glsl";

const std::string FROM_POSITIONS = HEADER + R"glsl(
float depthAt(vec2 uv) { return textureLod(scene, uv, 0.0).z; }
)glsl" + BODY + R"glsl(
void main() {
    vec3 position = textureLod(scene, uvs, 0.0).xyz;
    if (position.z == 0.0)
        discard;
    colour = vec4(vec3(openness(position, normalize(textureLod(normals, uvs, 0.0).xyz))), 1.0);
}
)glsl";

using Three = std::array<float, 3>;

struct Surface {
    float z;
    Three normal;
};

/// What the camera, 1.5 m above the floor, sees along a direction with z = 1.
Surface courtyardAt(float x, float y) {
    Surface nearest = {20.0f, {0.0f, 0.0f, -1.0f}};
    if (y < 0.0f && -1.5f / y < nearest.z)
        nearest = {-1.5f / y, {0.0f, 1.0f, 0.0f}};
    for (int pillar = 0; pillar < 24; ++pillar) {
        const float front = 3.0f + 0.7f * static_cast<float>(pillar);
        const float left = 1.3f * static_cast<float>(pillar * 7 % 11) - 6.5f;
        const bool isSeen = x * front > left && x * front < left + 0.6f && y * front < 0.9f;
        if (isSeen && front < nearest.z)
            nearest = {front, {0.0f, 0.0f, -1.0f}};
    }
    return nearest;
}

/// The courtyard as the textures that the effect reads.
struct Courtyard {
    std::vector<float> depth;
    std::vector<float> positions;
    std::vector<float> normals;

    Courtyard() {
        const float halfHeight = std::tan(0.5f * FIELD_OF_VIEW);
        const float range = FAR_PLANE - NEAR_PLANE;
        for (int row = 0; row < HEIGHT; ++row) {
            for (int column = 0; column < WIDTH; ++column) {
                const float x = (2.0f * (float(column) + 0.5f) / float(WIDTH) - 1.0f) * halfHeight * ASPECT;
                const float y = (1.0f - 2.0f * (float(row) + 0.5f) / float(HEIGHT)) * halfHeight;
                const Surface surface = courtyardAt(x, y);
                depth.push_back((FAR_PLANE - NEAR_PLANE * FAR_PLANE / surface.z) / range);
                positions.insert(positions.end(), {x * surface.z, y * surface.z, surface.z, 1.0f});
                normals.insert(normals.end(), surface.normal.begin(), surface.normal.end());
                normals.push_back(0.0f);
            }
        }
    }
};

std::vector<float> makeConstants() {
    const float halfHeight = std::tan(0.5f * FIELD_OF_VIEW);
    const float halfWidth = halfHeight * ASPECT;
    const float range = FAR_PLANE - NEAR_PLANE;
    // Rows of pictures grow downwards.
    const float lens[] = {halfWidth, -halfHeight, 0.0f, 0.0f};
    const float planes[] = {NEAR_PLANE, FAR_PLANE, FAR_PLANE / range, -NEAR_PLANE / range};
    const float projection[] = {1.0f / halfWidth,
                                0.0f,
                                0.0f,
                                0.0f,
                                0.0f,
                                -1.0f / halfHeight,
                                0.0f,
                                0.0f,
                                0.0f,
                                0.0f,
                                1.0f,
                                1.0f,
                                0.0f,
                                0.0f,
                                -NEAR_PLANE,
                                0.0f};
    std::vector<float> constants = {RADIUS, MAX_DISTANCE, STRENGTH, 0.0f};
    constants.insert(constants.end(), std::begin(lens), std::end(lens));
    constants.insert(constants.end(), std::begin(planes), std::end(planes));
    constants.insert(constants.end(), std::begin(projection), std::end(projection));
    return constants;
}

std::size_t sizeOf(const std::vector<float>& numbers) {
    return numbers.size() * sizeof(float);
}

void runSsao(benchmark::State& state, bool readsPositions) {
    using ovGraphics::FORMAT;
    const Courtyard courtyard;
    LibraryEffect library;
    const auto makeEffect = [&](ovVeldris::System& system, ovGraphics::Texture*) {
        auto effect = ovVeldris::SsaoEffect::create(&system);
        const auto add = [&](FORMAT format, const std::vector<float>& numbers) {
            return library.addTexture(format, numbers.data(), sizeOf(numbers));
        };
        if (readsPositions)
            effect->setEffectFromGBufferInfo(add(FORMAT::R32G32B32A32_FLOAT, courtyard.positions),
                                             add(FORMAT::R32G32B32A32_FLOAT, courtyard.normals));
        else
            effect->setEffectFromDepthInfo(add(FORMAT::R32_FLOAT, courtyard.depth), false);
        effect->setSamplingRadius(RADIUS);
        effect->setMaxOcclusionDistance(MAX_DISTANCE);
        effect->setStrength(STRENGTH);
        return effect;
    };
    if (!library.open(WIDTH, HEIGHT) || !library.load(makeEffect)) {
        state.SkipWithError("the effect could not be loaded");
        return;
    }
    library.camera().setPerspective(FIELD_OF_VIEW, ASPECT, NEAR_PLANE, FAR_PLANE);
    BareOpenGlPass bare(readsPositions ? FROM_POSITIONS : FROM_DEPTH, GL_RGBA16F, WIDTH, HEIGHT,
                        makeConstants());
    bare.setZeroBorder();
    if (readsPositions) {
        bare.addTexture(1, GL_RGBA32F, WIDTH, HEIGHT, 4, GL_FLOAT, courtyard.positions.data());
        bare.addTexture(2, GL_RGBA32F, WIDTH, HEIGHT, 4, GL_FLOAT, courtyard.normals.data());
    } else {
        bare.addTexture(1, GL_R32F, WIDTH, HEIGHT, 1, GL_FLOAT, courtyard.depth.data());
    }
    measureEffect(state, library, bare, ROUNDS, RATIO_AIM);
}

} // namespace

namespace ovBenchmarks {

void registerSsao() {
    const auto add = [](const char* name, bool readsPositions) {
        benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { runSsao(state, readsPositions); })
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    };
    add("effect/ssao_depth", false);
    add("effect/ssao_positions_normals", true);
}

} // namespace ovBenchmarks

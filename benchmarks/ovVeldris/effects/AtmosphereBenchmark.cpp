// What the sky and its tables cost beside hand-written OpenGL of the same loops: the sky at 1280 x 720, the
// tables at their default sizes and counts. EffectPass.h tells what makes the comparison fair.
#include "ovVeldris/effects/AtmosphereBenchmark.h"

#include "ovVeldris/effects/EffectPass.h"
#include "support/Aims.h"
#include "support/Pairs.h"

#include <cmath>
#include <epoxy/gl.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

namespace {

using namespace ovBenchmarks;

constexpr double RATIO_AIM = 1.1;
constexpr double TABLES_RATIO_AIM = 1.2;
constexpr int WIDTH = 1280;
constexpr int HEIGHT = 720;
constexpr int ROUNDS = 9; // a sky takes most of a second here

constexpr float NEAR_PLANE = 1.0f;
constexpr float FAR_PLANE = 20000.0f;
constexpr float EYE_HEIGHT = 500.0f; // metres
const ovMaths::Vector TO_SUN{0.0f, 0.14f, 0.99f};

// Constants of the air, per kilometre, then the camera.
const std::string HEADER = R"glsl(#version 450 core
layout(binding = 0, std140) uniform Constants {
    vec4 albedo; // and the factor of distances
    vec4 rayleighScattering; // in w the factor of heights
    vec4 rayleighExtinction;
    vec4 rayleighAbsorb;
    vec4 mieScattering; // in w the factor of heights
    vec4 mieExtinction;
    vec4 mieAbsorb; // in w the asymmetry
    vec4 ozoneScattering; // in w the factor of heights
    vec4 ozoneExtinction;
    vec4 ozoneAbsorb;
    vec4 sun; // its light, its radius
    vec4 toSun;
    vec4 planes;
    vec4 eye;
    vec4 corners[4];
};
layout(binding = 1) uniform sampler2D sunTable;
layout(binding = 2) uniform sampler2D multiTable;
layout(binding = 3) uniform sampler2D depthMap;
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 colour;
const float PI = 3.14159265358979;
const float GROUND = 6360.0, TOP = 6460.0;
vec3 densities(float h) {
    return vec3(min(exp(-h * 0.125 * rayleighScattering.w), 1e20), min(exp(-h / 1.2 * mieScattering.w), 1e20),
                max(0.0, 1.0 - abs(h - 25.0) / 15.0 * ozoneScattering.w));
}
vec3 reduced(float way, vec3 d) {
    return exp(-way * (rayleighExtinction.xyz * d.x + mieExtinction.xyz * d.y + ozoneExtinction.xyz * d.z));
}
float hit(vec3 o, vec3 d, float radius) {
    float b = dot(o, d), c = dot(o, o) - radius * radius;
    if (c > 0.0 && b > 0.0)
        return -1.0;
    float q = b * b - c;
    return q < 0.0 ? -1.0 : (q > b * b ? -b + sqrt(q) : -b - sqrt(q));
}
float rayleighPhase(float c) { return 3.0 * (1.0 + c * c) / (16.0 * PI); }
float miePhase(float c) {
    float k = 1.55 * mieAbsorb.w - 0.55 * mieAbsorb.w * mieAbsorb.w * mieAbsorb.w;
    float q = 1.0 - k * c;
    return (1.0 - k * k) / (4.0 * PI * q * q);
}
vec3 look(sampler2D table, float h, float c) { return textureLod(table, vec2(0.5 + 0.5 * c, h / (TOP - GROUND)), 0.0).xyz; }
)glsl";

const std::string SUN_TABLE = HEADER + R"glsl(
void main() {
    float c = 2.0 * uvs.x - 1.0;
    vec3 o = vec3(0.0, GROUND + 100.0 * uvs.y, 0.0), d = vec3(0.0, c, -sin(acos(c)));
    colour = vec4(0.0, 0.0, 0.0, 1.0);
    if (hit(o, d, GROUND) > 0.0)
        return;
    float end = hit(o, d, TOP), before = 0.0;
    vec3 left = vec3(1.0);
    for (uint i = 0u; i < 40u; ++i) {
        float t = (float(i) + 0.3) / 40.0 * end;
        left *= reduced(t - before, densities(length(o + d * t) - GROUND));
        before = t;
    }
    colour.xyz = left;
}
)glsl";

const std::string MULTI_TABLE = HEADER + R"glsl(
void main() {
    float cosine = 2.0 * uvs.x - 1.0;
    vec3 o = vec3(0.0, GROUND + 100.0 * uvs.y, 0.0), s = vec3(0.0, cosine, -sin(acos(cosine)));
    vec3 light = vec3(0.0), share = vec3(0.0);
    for (uint x = 0u; x < 8u; ++x) for (uint y = 0u; y < 8u; ++y) {
        float theta = PI * (float(x) + 0.5) / 8.0, phi = acos(1.0 - 2.0 * (float(y) + 0.5) / 8.0);
        vec3 d = vec3(sin(phi) * sin(theta), cos(phi), sin(phi) * cos(theta));
        float ground = hit(o, d, GROUND), end = ground > 0.0 ? ground : hit(o, d, TOP);
        float c = dot(d, s), phaseR = rayleighPhase(c), phaseM = miePhase(c), before = 0.0;
        vec3 left = vec3(1.0), once = vec3(0.0), all = vec3(0.0);
        for (uint i = 0u; i < 20u; ++i) {
            float t = (float(i) + 0.3) / 20.0 * end;
            vec3 place = o + d * t;
            float h = length(place) - GROUND;
            vec3 n = densities(h);
            vec3 r = rayleighScattering.xyz * n.x, m = mieScattering.xyz * n.y, z = ozoneScattering.xyz * n.z;
            vec3 e = max(r + rayleighAbsorb.xyz * n.x + m + mieAbsorb.xyz * n.y + z + ozoneAbsorb.xyz * n.z, vec3(1e-20));
            vec3 step = reduced(t - before, n), a = r + m + z;
            vec3 first = (r * phaseR + m * phaseM) * look(sunTable, h, dot(normalize(place), s));
            all += (a - a * step) / e * left;
            once += (first - first * step) / e * left;
            left *= step;
            before = t;
        }
        vec3 place = o + d * ground;
        float c0 = dot(normalize(place), s);
        if (ground > 0.0 && c0 > 0.0)
            once += left * albedo.xyz * look(sunTable, length(place) - GROUND, c0);
        share += all / 64.0;
        light += once / 64.0;
    }
    colour = vec4(light / max(1.0 - share, vec3(1e-6)), 1.0);
}
)glsl";

// What is behind is black: of a scene only the depth counts here.
const std::string SKY = R"glsl(
void main() {
    vec3 s = normalize(toSun.xyz);
    vec3 d = normalize(mix(mix(corners[0], corners[1], uvs.x), mix(corners[2], corners[3], uvs.x), uvs.y).xyz);
    vec3 o = vec3(0.0, max(1.0, eye.y) * 0.001 + GROUND, 0.0);
    float top = hit(o, d, TOP), ground = hit(o, d, GROUND), end = top;
    float depth = DEPTH;
    if (depth < 0.9999999)
        end = (planes.z + planes.y / (depth - planes.x) * planes.w) * 0.001 * albedo.w;
    else if (ground >= 0.0)
        end = ground * albedo.w;
    end = min(end, top);
    float c = dot(d, s), phaseR = rayleighPhase(c), phaseM = miePhase(c), before = 0.0;
    vec3 left = vec3(1.0), light = vec3(0.0);
    for (uint i = 0u; i < 32u; ++i) {
        float t = (float(i) + 0.3) / 32.0 * end;
        vec3 place = o + d * t;
        float h = length(place) - GROUND, sunCosine = dot(normalize(place), s);
        vec3 n = densities(h);
        vec3 direct = look(sunTable, h, sunCosine), around = look(multiTable, h, sunCosine);
        vec3 r = rayleighScattering.xyz * n.x, m = mieScattering.xyz * n.y;
        vec3 first = r * (phaseR * direct + around) + m * (phaseM * direct + around);
        vec3 e = r + rayleighAbsorb.xyz * n.x + m + mieAbsorb.xyz * n.y + ozoneAbsorb.xyz * n.z;
        vec3 step = exp(-(t - before) * e);
        light += (first - first * step) / max(e, vec3(1e-20)) * left;
        left *= step;
        before = t;
    }
    light *= sun.x;
    float rim = cos(sun.y * PI / 180.0);
    if (ground < 0.0 && depth > 0.99999) {
        float shine = c < rim ? exp(-(rim - c) * 50000.0) * 0.5 + 0.01 / (0.02 + (rim - c) * 300.0) : 1.0;
        shine = smoothstep(0.002, 1.0, shine);
        if (shine > 0.0)
            light += shine * look(sunTable, length(o) - GROUND, dot(normalize(o), s)) * sun.x;
    }
    colour = vec4(light, 1.0);
}
)glsl";

const std::string BARE_SKY = HEADER + "\n#define DEPTH 1.0\n" + SKY;
const std::string BARE_AIR = HEADER + "\n#define DEPTH textureLod(depthMap, uvs, 0.0).x\n" + SKY;

std::vector<float> makeConstants(const ovVeldris::AtmosphereEffectInfo& info, ovGraphics::Camera& camera) {
    std::vector<float> constants;
    const auto add = [&](const ovMaths::Vector& v, float scale, float beside) {
        for (const float number : {v.x * scale, v.y * scale, v.z * scale, beside})
            constants.push_back(number);
    };
    constexpr float PER_KM = 0.001f;
    add(info.planetAlbedo, 1.0f, info.distanceFactor);
    for (const auto* particles : {&info.rayleigh, &info.mie, &info.ozone}) {
        add(particles->scattering, PER_KM, particles->heightDensityFactor);
        add(particles->extinction, PER_KM, 0.0f);
        add(particles->absorb, PER_KM, particles == &info.mie ? info.mieG : 0.0f);
    }
    add({info.sunIlluminanceFactor, info.sunAngularRadius, 0.0f}, 1.0f, 0.0f);
    add(TO_SUN, 1.0f, 0.0f);
    const ovMaths::Vector planes = camera.getProjectionParameters();
    add(planes, 1.0f, planes.w);
    add({0.0f, EYE_HEIGHT, 0.0f}, 1.0f, 0.0f);
    for (const ovMaths::Vector& corner : camera.getCornersWorld())
        add(corner, 1.0f, 0.0f);
    return constants;
}

/// Hills up to the horizon, as a depth buffer.
std::vector<float> makeHills() {
    std::vector<float> depth;
    for (int row = 0; row < HEIGHT; ++row) {
        for (int column = 0; column < WIDTH; ++column) {
            const double ridge = 330.0 + 40.0 * std::sin(0.01 * column) + 15.0 * std::sin(0.043 * column);
            const double z = 20.0 + 15000.0 * std::exp(-(row - ridge) / 60.0);
            const double nonLinear =
                (FAR_PLANE - NEAR_PLANE * double{FAR_PLANE} / z) / (FAR_PLANE - NEAR_PLANE);
            depth.push_back(row < ridge ? 1.0f : static_cast<float>(nonLinear));
        }
    }
    return depth;
}

/// A hand-written sky with the tables that it reads.
struct BareAtmosphere {
    BareAtmosphere(const std::string& skyText, const std::vector<float>& constants)
        : sunTable(SUN_TABLE, GL_RGBA32F, 256, 64, constants)
        , multiTable(MULTI_TABLE, GL_RGBA32F, 64, 64, constants)
        , sky(skyText, GL_RGBA16F, WIDTH, HEIGHT, constants) {
        for (BareOpenGlPass* pass : {&sunTable, &multiTable, &sky})
            pass->setLinear();
        multiTable.readTargetOf(sunTable, 1);
        sky.readTargetOf(sunTable, 1);
        sky.readTargetOf(multiTable, 2);
    }
    void drawTables() const {
        sunTable.draw();
        multiTable.draw();
    }

    BareOpenGlPass sunTable;
    BareOpenGlPass multiTable;
    BareOpenGlPass sky;
};

bool open(LibraryEffect& library, const std::vector<float>& depth) {
    const auto makeEffect = [&](ovVeldris::System& system, ovGraphics::Texture*) {
        auto effect = ovVeldris::AtmosphereEffect::create(&system);
        effect->setSunPosition(TO_SUN);
        if (!depth.empty())
            effect->setSourceDepthTexture(library.addTexture(ovGraphics::FORMAT::R32_FLOAT, depth.data(),
                                                             depth.size() * sizeof(float)));
        return effect;
    };
    if (!library.open(WIDTH, HEIGHT))
        return false;
    library.camera().setPosition({0.0f, EYE_HEIGHT, 0.0f});
    library.camera().lookAt({0.0f, 0.1f, 1.0f}, {});
    library.camera().setPerspective(1.1f, float(WIDTH) / float(HEIGHT), NEAR_PLANE, FAR_PLANE);
    return library.load(makeEffect);
}

void runSky(benchmark::State& state, const std::string& bareText, const std::vector<float>& depth) {
    LibraryEffect library;
    if (!open(library, depth)) {
        state.SkipWithError("the sky could not be loaded");
        return;
    }
    BareAtmosphere bare(bareText, makeConstants({}, library.camera()));
    if (!depth.empty())
        bare.sky.addTexture(3, GL_R32F, WIDTH, HEIGHT, 1, GL_FLOAT, depth.data());
    BareOpenGlPass::bindSharedState();
    bare.drawTables();
    measureEffect(state, library, bare.sky, ROUNDS, RATIO_AIM);
}

void runTables(benchmark::State& state) {
    LibraryEffect library;
    if (!open(library, {})) {
        state.SkipWithError("the sky could not be loaded");
        return;
    }
    auto& effect = static_cast<ovVeldris::AtmosphereEffect&>(library.effect());
    const BareAtmosphere bare(BARE_SKY, makeConstants({}, library.camera()));
    const Side baseline{BareOpenGlPass::bindSharedState, [&] {
                            bare.drawTables();
                            finish();
                        }};
    const Side ours{[&] { library.graphics().getDevice()->invalidateState(); },
                    [&] {
                        effect.refreshLuts();
                        finish();
                    }};
    // The rasteriser draws targets of 64 x 64 on one core and larger ones on all.
    runPair(state, baseline, ours, ROUNDS, LOAD::CPU_TIME);
    aimAtRatio(state, TABLES_RATIO_AIM);
}

} // namespace

namespace ovBenchmarks {

void registerAtmosphere() {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->Iterations(1)->UseManualTime()->Unit(
            benchmark::kMillisecond);
    };
    add("effect/atmosphere_sky", [](benchmark::State& state) { runSky(state, BARE_SKY, {}); });
    add("effect/atmosphere_hills", [](benchmark::State& state) { runSky(state, BARE_AIR, makeHills()); });
    add("effect/atmosphere_tables", runTables);
}

} // namespace ovBenchmarks

// What FXAA costs at 1280 x 720 beside a hand-written OpenGL program of the same formula, and beside a
// bilinear copy.
//
// In the picture a pixel in seven lies on an edge, as in photographs (one in six to one in nine of four that
// were counted). The hand-written program searches both ends of an edge at once, as FXAA was published, in a
// loop that the driver does not unroll, as the library's. EffectPass.h tells what makes the comparison fair.
#include "ovVeldris/effects/FxaaBenchmark.h"

#include "ovVeldris/effects/EffectPass.h"

#include <cmath>
#include <ovImages/Half.h>
#include <ovVeldris/effects/FxaaEffect.h>

namespace {

using namespace ovBenchmarks;

constexpr double RATIO_AIM = 1.1;
constexpr double RATIO_TO_COPY_AIM = 6.0;
constexpr PictureSize SIZE{1280, 720};

const std::string COPY = BARE_HEADER + "void main() { colour = texture(sourceTexture, uvs); }";

// Constants: contrast, luminance, strength; the size of the picture and of a texel.
const std::string FXAA = R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 limits; vec4 size; };
float luma(vec4 c) { return dot(c.rgb, vec3(0.299, 0.587, 0.114)); }
float at(vec2 uv) { return luma(textureLod(sourceTexture, uv, 0.0)); }
void main() {
    ivec2 p = ivec2(uvs * size.xy);
    colour = texelFetch(sourceTexture, p, 0);
    float m = luma(colour);
    float n = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(0, -1)));
    float s = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(0, 1)));
    float w = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(-1, 0)));
    float e = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(1, 0)));
    float most = max(max(max(n, s), max(w, e)), m);
    float range = most - min(min(min(n, s), min(w, e)), m);
    if (range < max(limits.y, most * limits.x))
        return;
    float nw = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(-1, -1)));
    float ne = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(1, -1)));
    float sw = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(-1, 1)));
    float se = luma(texelFetchOffset(sourceTexture, p, 0, ivec2(1, 1)));
    bool horizontal = abs(-2.0 * w + nw + sw) + 2.0 * abs(-2.0 * m + n + s) + abs(-2.0 * e + ne + se) >=
                      abs(-2.0 * n + nw + ne) + 2.0 * abs(-2.0 * m + w + e) + abs(-2.0 * s + sw + se);
    float c = clamp(abs((2.0 * (n + s + w + e) + nw + ne + sw + se) / 12.0 - m) / range, 0.0, 1.0);
    float subpixel = (-2.0 * c + 3.0) * c * c;
    subpixel = subpixel * subpixel * limits.z;
    if (!horizontal) { n = w; s = e; }
    float stepN = abs(n - m), stepS = abs(s - m);
    bool first = stepN >= stepS;
    float towards = (horizontal ? size.w : size.z) * (first ? -1.0 : 1.0);
    float middle = 0.5 * ((first ? n : s) + m);
    float threshold = 0.25 * max(stepN, stepS);
    vec2 along = horizontal ? vec2(size.z, 0.0) : vec2(0.0, size.w);
    vec2 across = horizontal ? vec2(0.0, towards) : vec2(towards, 0.0);
    vec2 start = uvs + 0.5 * across;
    float distN = 0.0, distP = 0.0, endN = 0.0, endP = 0.0;
    bool doneN = false, doneP = false;
    int count = size.x > 0.0 ? COUNT : 0;
    for (int i = 0; i < count; ++i) {
        if (!doneN) distN += STEPS[i];
        if (!doneP) distP += STEPS[i];
        if (i == COUNT - 1)
            break;
        if (!doneN) endN = at(start - along * distN) - middle;
        if (!doneP) endP = at(start + along * distP) - middle;
        doneN = abs(endN) >= threshold;
        doneP = abs(endP) >= threshold;
        if (doneN && doneP)
            break;
    }
    bool good = ((distN < distP ? endN : endP) < 0.0) != (m - middle < 0.0);
    float offset = good ? 0.5 - min(distN, distP) / (distN + distP) : 0.0;
    colour = textureLod(sourceTexture, uvs + max(offset, subpixel) * across, 0.0);
}
)glsl";

struct Preset {
    ovVeldris::FXAA_PRESET preset;
    const char* name;
    const char* steps; ///< as GLSL
};

constexpr Preset PRESETS[] = {
    {ovVeldris::FXAA_PRESET::QUALITY_10, "effect/fxaa_10",
     "const int COUNT = 3; const float STEPS[3] = float[](1.5, 3.0, 12.0);"},
    {ovVeldris::FXAA_PRESET::QUALITY_12, "effect/fxaa_12",
     "const int COUNT = 5; const float STEPS[5] = float[](1.0, 1.5, 2.0, 4.0, 12.0);"},
    {ovVeldris::FXAA_PRESET::QUALITY_39, "effect/fxaa_39",
     "const int COUNT = 12; const float STEPS[12] = "
     "float[](1.0, 1.0, 1.0, 1.0, 1.0, 1.5, 2.0, 2.0, 2.0, 2.0, 4.0, 8.0);"},
};

// Rows of the sky, which has no edges.
constexpr int SKY_LEFT_OUT = 270;

/// A sky over hills with houses: soft shades, edges around what stands in front, and leaves.
HalfTexels makePhotograph(PictureSize size) {
    HalfTexels texels;
    texels.reserve(4ull * size.width * size.height);
    for (int y = SKY_LEFT_OUT; y < SKY_LEFT_OUT + size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const double horizon = 500.0 + 90.0 * std::sin(0.004 * x) + 25.0 * std::sin(0.031 * x);
            const bool isWall = x % 310 < 140 && y > 420 + x % 97 && y < 830;
            const bool isWindow = isWall && x % 310 % 35 > 18 && y % 52 > 30;
            const double leaves = 0.13 * std::sin(0.41 * x + 3.0 * std::sin(0.05 * y)) *
                                  std::sin(0.37 * y + 2.0 * std::sin(0.03 * x));
            const double light = isWindow      ? 0.15
                                 : isWall      ? 0.75 - 0.0002 * y
                                 : y < horizon ? 0.6 + 0.0004 * y
                                               : 0.3 + leaves;
            for (const double share : {0.9, 1.0, 1.1})
                texels.push_back(ovImages::floatToHalf(static_cast<float>(light * share)));
            texels.push_back(ovImages::floatToHalf(1.0f));
        }
    }
    return texels;
}

MakeEffect fxaa(ovVeldris::FXAA_PRESET preset) {
    return [=](ovVeldris::System& system, ovGraphics::Texture* source) {
        auto effect = ovVeldris::FxaaEffect::create(&system);
        effect->setSourceTexture(source);
        effect->setPreset(preset);
        return effect;
    };
}

} // namespace

namespace ovBenchmarks {

void registerFxaa() {
    constexpr auto WIDTH = static_cast<float>(SIZE.width);
    constexpr auto HEIGHT = static_cast<float>(SIZE.height);
    const std::vector<float> constants = {0.25f, 0.0625f, 0.75f,        0.0f,
                                          WIDTH, HEIGHT,  1.0f / WIDTH, 1.0f / HEIGHT};
    for (const Preset& preset : PRESETS) {
        const std::string text = BARE_HEADER + preset.steps + FXAA;
        const auto makeBare = [=] { return makeBarePass(text, SIZE, constants, true); };
        registerEffectPair(preset.name, {fxaa(preset.preset), makeBare, makePhotograph, SIZE, RATIO_AIM});
    }
    const auto makeCopy = [] { return makeBarePass(COPY, SIZE, {}, true); };
    registerEffectPair("effect/fxaa_12_over_copy", {fxaa(ovVeldris::FXAA_PRESET::QUALITY_12), makeCopy,
                                                    makePhotograph, SIZE, RATIO_TO_COPY_AIM});
}

} // namespace ovBenchmarks

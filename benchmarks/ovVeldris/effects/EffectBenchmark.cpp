// What an effect costs at 1920 x 1080 beside a hand-written OpenGL program of the same formula.
//
// EffectPass.h tells what makes the comparison fair.
#include "ovVeldris/effects/EffectBenchmark.h"

#include "ovVeldris/effects/EffectPass.h"

#include <cmath>
#include <ovImages/Half.h>
#include <ovVeldris/effects/FilmGrainEffect.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/effects/ToneMappingHablesCurve.h>

namespace {

using namespace ovBenchmarks;

constexpr double RATIO_AIM = 1.1;
constexpr PictureSize SIZE{1920, 1080};

const std::string HEADER = BARE_HEADER + R"glsl(
float luminance(vec3 rgb) { return dot(rgb, vec3(0.2126, 0.7152, 0.0722)); }
)glsl";

const std::string COPY = HEADER + "void main() { colour = texture(sourceTexture, uvs); }";

const std::string REINHARD = HEADER + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 white; };
void main() {
    colour = texture(sourceTexture, uvs);
    float l = luminance(colour.rgb);
    float w = luminance(white.rgb);
    colour.rgb *= (1.0 + l / (w * w)) / (1.0 + l);
}
)glsl";

const std::string REINHARD_CHANNELS = HEADER + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 white; };
void main() {
    colour = texture(sourceTexture, uvs);
    colour.rgb = (colour.rgb * (1.0 + colour.rgb / (white.rgb * white.rgb))) / (1.0 + colour.rgb);
}
)glsl";

const std::string HABLES_CURVE = HEADER + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 curve; vec4 segments[6]; };
float eval(float x) {
    x *= curve.x;
    int i = x < curve.y ? 0 : (x < curve.z ? 1 : 2);
    vec4 offsetScale = segments[2 * i];
    vec4 power = segments[2 * i + 1];
    float t = (x - offsetScale.x) * offsetScale.z;
    float y = t > 0.0 ? exp(power.x + power.y * log(t)) : 0.0;
    return offsetScale.y + y * offsetScale.w;
}
)glsl";

const std::string HABLES = HABLES_CURVE + R"glsl(
void main() {
    colour = texture(sourceTexture, uvs);
    float l = luminance(colour.rgb);
    colour.rgb = l == 0.0 ? vec3(0.0) : colour.rgb * (eval(l) / l);
}
)glsl";

const std::string HABLES_CHANNELS = HABLES_CURVE + R"glsl(
void main() {
    colour = texture(sourceTexture, uvs);
    colour.rgb = vec3(eval(colour.r), eval(colour.g), eval(colour.b));
}
)glsl";

const std::string ACES = HEADER + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 look[4]; };
void main() {
    colour = texture(sourceTexture, uvs);
    vec3 c = vec3(dot(vec3(0.6131178129, 0.3411819959, 0.0457873443), colour.rgb),
                  dot(vec3(0.0699340823, 0.9181030375, 0.0119327755), colour.rgb),
                  dot(vec3(0.0204629926, 0.1067686634, 0.8727159106), colour.rgb));
    c = vec3(dot(look[0].xyz, c), dot(look[1].xyz, c), dot(look[2].xyz, c));
    colour.rgb = (c * (c + 1.2813760808003791) + 0.015375055634866651)
               / (c * (0.003872079214147382 * c + 0.011423370250741206) + 0.01664753890994588) * (1.0 / 255.0);
}
)glsl";

// Constants as the library has them: in one register instead of two the colours take a sixth less time here.
const std::string GRAIN_HASH = BARE_HEADER + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 time; vec4 parameters; };
float random(vec2 v) { return fract(sin(dot(v, vec2(23.14069263277926, 2.665144142690225))) * 67890.1234); }
)glsl";

const std::string GRAIN = GRAIN_HASH + R"glsl(
void main() {
    float t = time.y / time.x;
    colour = texture(sourceTexture, uvs);
    colour.rgb += random(uvs + random(vec2(t))) * parameters.x * colour.rgb;
}
)glsl";

const std::string GRAIN_RGB = GRAIN_HASH + R"glsl(
void main() {
    float t = time.y / time.x;
    float x = random(uvs + random(vec2(t)));
    float y = random(vec2(x, uvs.x + t));
    float z = random(vec2(y, uvs.y + t));
    colour = texture(sourceTexture, uvs);
    colour.rgb += vec3(x, y, z) * parameters.x * colour.rgb;
}
)glsl";

/// Light over twelve stops in half floats.
HalfTexels makeLight(PictureSize size) {
    HalfTexels texels;
    texels.reserve(4ull * size.width * size.height);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const float stops = std::exp2(12.0f * static_cast<float>(x) / size.width - 8.0f);
            for (const float share : {0.3f + 0.7f * static_cast<float>(y) / size.height, 0.8f, 0.5f})
                texels.push_back(ovImages::floatToHalf(stops * share));
            texels.push_back(ovImages::floatToHalf(1.0f));
        }
    }
    return texels;
}

MakeEffect toneMapping(bool useLuminance,
                       const std::function<void(ovVeldris::ToneMappingEffect&)>& setOperator) {
    return [=](ovVeldris::System& system, ovGraphics::Texture* source) {
        auto effect = ovVeldris::ToneMappingEffect::create(&system);
        effect->setSourceTexture(source);
        effect->setUseLuminance(useLuminance);
        setOperator(*effect);
        return effect;
    };
}

void setReinhard(ovVeldris::ToneMappingEffect& effect) {
    effect.setAsReinhard({4.0f, 4.0f, 4.0f});
}
void setHables(ovVeldris::ToneMappingEffect& effect) {
    effect.setAsHables({});
}
void setAces(ovVeldris::ToneMappingEffect& effect) {
    effect.setAsAces({});
}

std::vector<float> hablesConstants() {
    std::vector<float> constants;
    for (const ovMaths::Vector& vector : ovVeldris::computeToneMappingHablesCurve({}))
        constants.insert(constants.end(), {vector.x, vector.y, vector.z, vector.w});
    return constants;
}

MakeEffect filmGrain(bool rgb) {
    return [=](ovVeldris::System& system, ovGraphics::Texture* source) {
        auto effect = ovVeldris::FilmGrainEffect::create(&system);
        effect->setSourceTexture(source);
        effect->setRgbNoise(rgb);
        return effect;
    };
}

} // namespace

namespace ovBenchmarks {

void registerEffects() {
    const MakeEffect copy = [](ovVeldris::System& system, ovGraphics::Texture* source) {
        auto effect = ovVeldris::TextureCopyEffect::create(&system);
        effect->setSourceTexture(source);
        return effect;
    };
    const std::vector<float> white = {4.0f, 4.0f, 4.0f, 0.0f};
    const std::vector<float> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const auto registerEffect = [](const char* name, const MakeEffect& make, const std::string& text,
                                   const std::vector<float>& constants) {
        const auto makeBare = [=] { return makeBarePass(text, SIZE, constants); };
        registerEffectPair(name, {make, makeBare, makeLight, SIZE, RATIO_AIM});
    };
    registerEffect("effect/texture_copy", copy, COPY, {});
    registerEffect("effect/reinhard_luminance", toneMapping(true, setReinhard), REINHARD, white);
    registerEffect("effect/reinhard_channels", toneMapping(false, setReinhard), REINHARD_CHANNELS, white);
    registerEffect("effect/hables_luminance", toneMapping(true, setHables), HABLES, hablesConstants());
    registerEffect("effect/hables_channels", toneMapping(false, setHables), HABLES_CHANNELS,
                   hablesConstants());
    registerEffect("effect/aces", toneMapping(true, setAces), ACES, identity);
    const std::vector<float> grain = {500.0f, EFFECT_SECONDS, 0.0f, 0.0f, 0.15f, 0.0f, 0.0f, 0.0f};
    registerEffect("effect/film_grain", filmGrain(false), GRAIN, grain);
    registerEffect("effect/film_grain_rgb", filmGrain(true), GRAIN_RGB, grain);
}

} // namespace ovBenchmarks

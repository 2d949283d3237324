// What an effect costs at 1920 x 1080 beside a hand-written OpenGL program of the same formula.
//
// Both sides read and write four half floats a texel, with the same texels, and wait for the device after
// each draw. difference is the largest difference of the two pictures: a faster wrong picture would show.
#include "ovVeldris/effects/EffectBenchmark.h"

#include "support/Aims.h"
#include "support/BareOpenGl.h"
#include "support/Pairs.h"

#include <algorithm>
#include <cmath>
#include <epoxy/gl.h>
#include <functional>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Half.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/effects/ToneMappingHablesCurve.h>

namespace {

constexpr int WIDTH = 1920;
constexpr int HEIGHT = 1080;
constexpr int ROUNDS = 25;

const std::string HEADER = R"glsl(#version 450 core
layout(binding = 0) uniform sampler2D sourceTexture;
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 colour;
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

/// Light over twelve stops in half floats.
std::vector<std::uint16_t> makeLight() {
    std::vector<std::uint16_t> texels;
    texels.reserve(4ull * WIDTH * HEIGHT);
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            const float stops = std::exp2(12.0f * static_cast<float>(x) / WIDTH - 8.0f);
            for (const float share : {0.3f + 0.7f * static_cast<float>(y) / HEIGHT, 0.8f, 0.5f})
                texels.push_back(ovImages::floatToHalf(stops * share));
            texels.push_back(ovImages::floatToHalf(1.0f));
        }
    }
    return texels;
}

/// One effect of the library, drawn by a compositor.
class LibraryEffect {
public:
    bool load(const std::function<ovMemory::UniquePtr<ovVeldris::Effect>(ovVeldris::System&,
                                                                         ovGraphics::Texture*)>& make,
              const std::vector<std::uint16_t>& texels) {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration.software = true;
        if (!_system.initialize(configuration))
            return false;
        _source = _makeTexture();
        const auto* bytes = reinterpret_cast<const unsigned char*>(texels.data());
        _source->setCpuData(0, 0, {bytes, texels.size() * sizeof(std::uint16_t)});
        _target = _makeTexture();
        _target->setUsableAsRenderTarget(true);
        _effect = make(_system, _source.get());
        if (!_source->load() || !_target->load() || !_effect->load())
            return false;
        _compositor = ovGraphics::Compositor::create(&graphics());
        auto* block = _compositor->appendNode()->appendOperationsBlock();
        block->setTarget(0, _target.get());
        block->appendPostProcessPass()->setShader(_effect->getShader());
        _context = ovGraphics::RenderContext::create(&graphics());
        _context->setCompositor(_compositor.get());
        return true;
    }

    ovGraphics::System& graphics() { return *_system.getGraphicsEngine()->getGraphicsSystem(); }
    void draw() { graphics().frame(_context.get()); }
    ovMemory::UniquePtr<ovImages::Image> read() { return _target->convertToImage(); }

private:
    ovMemory::UniquePtr<ovGraphics::Texture> _makeTexture() {
        auto texture = ovGraphics::Texture::create(&graphics());
        texture->setWidth(WIDTH);
        texture->setHeight(HEIGHT);
        texture->setFormat(ovGraphics::FORMAT::R16G16B16A16_FLOAT);
        return texture;
    }

    ovVeldris::System _system;
    ovMemory::UniquePtr<ovGraphics::Texture> _source;
    ovMemory::UniquePtr<ovGraphics::Texture> _target;
    ovMemory::UniquePtr<ovVeldris::Effect> _effect;
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovGraphics::RenderContext> _context;
};

double largestDifference(const ovImages::Image& ours, const std::vector<float>& bare) {
    double largest = 0.0;
    const auto* halves = reinterpret_cast<const std::uint16_t*>(ours.getBytes().data());
    for (std::size_t i = 0; i < bare.size(); ++i)
        largest =
            std::max(largest, std::abs(static_cast<double>(ovImages::halfToFloat(halves[i])) - bare[i]));
    return largest;
}

using MakeEffect =
    std::function<ovMemory::UniquePtr<ovVeldris::Effect>(ovVeldris::System&, ovGraphics::Texture*)>;

void effectOverBareOpenGl(benchmark::State& state, const MakeEffect& make, const std::string& pixelText,
                          const std::vector<float>& constants) {
    const std::vector<std::uint16_t> texels = makeLight();
    LibraryEffect library;
    if (!library.load(make, texels)) {
        state.SkipWithError("the effect could not be loaded");
        return;
    }
    ovBenchmarks::BareOpenGlPass bare(pixelText, GL_RGBA16F, WIDTH, HEIGHT, constants);
    bare.setSource(GL_HALF_FLOAT, texels.data());

    const ovBenchmarks::Side baseline{ovBenchmarks::BareOpenGlPass::bindSharedState, [&] {
                                          bare.draw();
                                          ovBenchmarks::finish();
                                      }};
    const ovBenchmarks::Side ours{[&] { library.graphics().getDevice()->invalidateState(); },
                                  [&] {
                                      library.draw();
                                      ovBenchmarks::finish();
                                  }};
    ovBenchmarks::runPair(state, baseline, ours, ROUNDS, ovBenchmarks::LOAD::TWO_CORES);
    ovBenchmarks::aimAtRatio(state, 1.1);
    state.counters["difference"] = largestDifference(*library.read(), bare.read());
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

void registerEffect(const char* name, const MakeEffect& make, const std::string& text,
                    const std::vector<float>& constants) {
    benchmark::RegisterBenchmark(name, effectOverBareOpenGl, make, text, constants)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
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
    registerEffect("effect/texture_copy", copy, COPY, {});
    registerEffect("effect/reinhard_luminance", toneMapping(true, setReinhard), REINHARD, white);
    registerEffect("effect/reinhard_channels", toneMapping(false, setReinhard), REINHARD_CHANNELS, white);
    registerEffect("effect/hables_luminance", toneMapping(true, setHables), HABLES, hablesConstants());
    registerEffect("effect/hables_channels", toneMapping(false, setHables), HABLES_CHANNELS,
                   hablesConstants());
    registerEffect("effect/aces", toneMapping(true, setAces), ACES, identity);
}

} // namespace ovBenchmarks

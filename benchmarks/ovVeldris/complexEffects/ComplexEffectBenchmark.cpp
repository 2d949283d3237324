// What blur and depth of field cost at 1280 x 720 beside hand-written OpenGL of the same passes.
//
// Both sides read the same half floats, draw the same passes into the same formats, and wait for the device.
// The hand-written blur has the same taps, one after another in its text, without a loop and without arrays;
// the baseline of depth of field is the sum of its eight passes, each written by hand. CPU seconds of all
// threads are compared: the rasteriser works on all cores, and rounds in which it has them to itself are
// rare. The counter `difference` is the largest difference of the two pictures: a faster wrong picture would
// show.
#include "ovVeldris/complexEffects/ComplexEffectBenchmark.h"

#include "ovVeldris/effects/EffectPass.h"
#include "support/Aims.h"
#include "support/Pairs.h"

#include <algorithm>
#include <cmath>
#include <epoxy/gl.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovImages/Half.h>
#include <ovVeldris/complexEffects/BlurKernel.h>
#include <ovVeldris/complexEffects/DofComplexEffect.h>
#include <ovVeldris/core/GraphicsEngine.h>

namespace {

using namespace ovBenchmarks;
using ovMemory::UniquePtr;

constexpr int WIDTH = 1280;
constexpr int HEIGHT = 720;
constexpr int ROUNDS = 15;
constexpr double BLUR_RATIO_AIM = 1.1;
constexpr double DOF_RATIO_AIM = 1.15;

constexpr unsigned int STRENGTH = 3;
constexpr float CAMERA_NEAR = 0.5f;
constexpr float CAMERA_FAR = 200.0f;
const std::string DISTANCES =
    "const float NEAR = 12.0, FAR = 90.0, START = 40.0, FOCUS = 45.0, END = 50.0;\n";

HalfTexels makePicture() {
    HalfTexels texels;
    texels.reserve(4ull * WIDTH * HEIGHT);
    for (int i = 0; i < WIDTH * HEIGHT; ++i) {
        for (const double pace : {0.37, 0.011, 0.0007})
            texels.push_back(ovImages::floatToHalf(static_cast<float>(0.5 + 0.5 * std::sin(pace * i))));
        texels.push_back(ovImages::floatToHalf(1.0f));
    }
    return texels;
}

/// Depth as a perspective camera writes it, from before the near plane to beyond the far one.
std::vector<float> makeDepth() {
    std::vector<float> depth;
    depth.reserve(1ull * WIDTH * HEIGHT);
    const double a = CAMERA_FAR / (CAMERA_FAR - CAMERA_NEAR);
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x) {
            const double z = 5.0 + 110.0 * x / WIDTH + 5.0 * std::sin(0.02 * y);
            depth.push_back(static_cast<float>(a - a * CAMERA_NEAR / z));
        }
    return depth;
}

/// Complex effects over one picture, drawn by compositors as an application would.
class Library {
public:
    bool open(const HalfTexels& texels, const std::vector<float>& depth) {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration.software = true;
        if (!_system.initialize(configuration))
            return false;
        _picture = _makeTexture(ovGraphics::FORMAT::R16G16B16A16_FLOAT);
        _picture->setCpuData(0, 0, bytesOf(texels));
        _depth = _makeTexture(ovGraphics::FORMAT::R32_FLOAT);
        _depth->setCpuData(0, 0, bytesOf(depth));
        _camera = ovGraphics::Camera::create(&graphics());
        _camera->setPerspective(1.0f, static_cast<float>(WIDTH) / HEIGHT, CAMERA_NEAR, CAMERA_FAR);
        return _picture->load() && _depth->load();
    }

    /// An effect in a compositor of its own; null when it cannot be loaded.
    struct Drawn {
        UniquePtr<ovGraphics::Compositor> compositor;
        UniquePtr<ovGraphics::RenderContext> context;
        UniquePtr<ovVeldris::ComplexEffect> effect;
        ovGraphics::Texture* output = nullptr;
    };

    UniquePtr<Drawn> makeBlur(unsigned int radius) {
        auto blur = ovVeldris::BlurComplexEffect::create(&_system);
        blur->setSourceTexture(_picture.get());
        blur->setKernelRadius(radius);
        blur->setPreserveAlpha(true);
        ovGraphics::Texture* output = blur->getOutputTexture();
        return _load(std::move(blur), output);
    }

    UniquePtr<Drawn> makeDof() {
        auto dof = ovVeldris::DofComplexEffect::create(&_system);
        dof->setSourceTexture(_picture.get());
        dof->setSourceDepth(_depth.get());
        dof->setCamera(_camera.get());
        dof->setNearPlaneDistance(12.0f);
        dof->setFocalPlaneDistance(45.0f);
        dof->setFocalPlaneThickness(10.0f);
        dof->setFarPlaneDistance(90.0f);
        dof->setBlurStrength(STRENGTH);
        ovGraphics::Texture* output = dof->getOutputTexture();
        return _load(std::move(dof), output);
    }

    Side sideOf(Drawn& drawn) {
        return {[this] { graphics().getDevice()->invalidateState(); },
                [this, &drawn] {
                    graphics().frame(drawn.context.get());
                    finish();
                }};
    }

private:
    template <typename T>
    static ovMemory::BufferView<const unsigned char> bytesOf(const std::vector<T>& texels) {
        return {reinterpret_cast<const unsigned char*>(texels.data()), texels.size() * sizeof(T)};
    }

    ovGraphics::System& graphics() { return *_system.getGraphicsEngine()->getGraphicsSystem(); }

    UniquePtr<ovGraphics::Texture> _makeTexture(ovGraphics::FORMAT format) {
        auto texture = ovGraphics::Texture::create(&graphics());
        texture->setWidth(WIDTH);
        texture->setHeight(HEIGHT);
        texture->setFormat(format);
        return texture;
    }

    UniquePtr<Drawn> _load(UniquePtr<ovVeldris::ComplexEffect> effect, ovGraphics::Texture* output) {
        auto drawn = std::make_unique<Drawn>();
        drawn->compositor = ovGraphics::Compositor::create(&graphics());
        drawn->context = ovGraphics::RenderContext::create(&graphics());
        drawn->context->setCompositor(drawn->compositor.get());
        effect->setCompositorNode(drawn->compositor->appendNode());
        drawn->effect = std::move(effect);
        drawn->output = output;
        return drawn->effect->load() ? std::move(drawn) : nullptr;
    }

    ovVeldris::System _system;
    UniquePtr<ovGraphics::Texture> _picture;
    UniquePtr<ovGraphics::Texture> _depth;
    UniquePtr<ovGraphics::Camera> _camera;
};

using BarePasses = std::vector<UniquePtr<BareOpenGlPass>>;

Side sideOf(const BarePasses& passes) {
    return {BareOpenGlPass::bindSharedState, [&passes] {
                for (const auto& pass : passes)
                    pass->draw();
                finish();
            }};
}

std::string bareBlur(unsigned int radius, bool isHorizontal) {
    const ovVeldris::BlurTaps taps = ovVeldris::mergeBlurTaps(ovVeldris::computeBlurWeights(radius));
    const bool isEven = radius % 2 == 0;
    std::string text = BARE_HEADER + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 texel; };
vec4 at(vec2 uv) { return textureLod(sourceTexture, uv, 0.0); }
void main() {
    vec2 s = )glsl" + (isHorizontal ? "vec2(texel.x, 0.0);\n" : "vec2(0.0, texel.y);\n");
    text += isEven ? "    colour = at(uvs) * " + std::to_string(taps.weights[0]) + ";\n"
                   : "    colour = vec4(0.0);\n";
    for (std::size_t i = isEven ? 1 : 0; i < taps.weights.size(); ++i) {
        const std::string offset =
            std::to_string(2.0 * static_cast<double>(i) + taps.offsets[i] - (isEven ? 1.0 : 0.0));
        text.append("    colour += (at(uvs + s * ").append(offset).append(") + at(uvs - s * ").append(offset);
        text.append(")) * ").append(std::to_string(taps.weights[i])).append(";\n");
    }
    return text + "}\n";
}

UniquePtr<BareOpenGlPass> makeBareBlur(unsigned int radius, bool isHorizontal, int width, int height) {
    const std::vector<float> texel = {1.0f / static_cast<float>(width), 1.0f / static_cast<float>(height),
                                      0.0f, 0.0f};
    auto pass =
        std::make_unique<BareOpenGlPass>(bareBlur(radius, isHorizontal), GL_RGBA16F, width, height, texel);
    pass->setLinear();
    return pass;
}

const std::string DEPTHS = DISTANCES + R"glsl(
layout(binding = 0, std140) uniform Constants { vec4 projection; };
float distanceOf(float depth) {
    return projection.z + projection.y / (depth - projection.x) * (projection.w - projection.z);
}
)glsl";

const std::string DOWN = R"glsl(#version 450 core
layout(binding = 0) uniform sampler2D sourceTexture;
layout(binding = 1) uniform sampler2D depthTexture;
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 nearField;
layout(location = 1) out vec4 farField;
layout(location = 2) out vec4 fade;
)glsl" + DEPTHS + R"glsl(
vec4 texel(ivec2 p, out float close) {
    close = distanceOf(texelFetch(depthTexture, p, 0).x) < FAR ? 1.0 : 0.0;
    return vec4(texelFetch(sourceTexture, p, 0).rgb, 1.0);
}
void main() {
    float z = distanceOf(textureLod(depthTexture, uvs, 0.0).x);
    bool focused = START < z && z < END;
    float behind = clamp((z - END) / (FAR - END), 0.0, 1.0);
    float before = 1.0 - clamp((z - NEAR) / (START - NEAR), 0.0, 1.0);
    vec2 p = uvs * vec2(textureSize(sourceTexture, 0));
    vec2 f = fract(p);
    ivec2 base = ivec2(floor(p - 0.5));
    float c00, c10, c01, c11;
    vec4 t00 = texel(base, c00), t10 = texel(base + ivec2(1, 0), c10);
    vec4 t01 = texel(base + ivec2(0, 1), c01), t11 = texel(base + ivec2(1, 1), c11);
    nearField = focused ? vec4(0.0) : mix(mix(t00 * c00, t10 * c10, f.x), mix(t01 * c01, t11 * c11, f.x), f.y);
    farField = mix(mix(t00 * (1.0 - c00), t10 * (1.0 - c10), f.x),
                   mix(t01 * (1.0 - c01), t11 * (1.0 - c11), f.x), f.y);
    fade = vec4(focused ? 0.0 : before, focused ? 0.0 : behind, z < FAR ? behind : 0.0, 1.0);
}
)glsl";

const std::string BLEND = BARE_HEADER + R"glsl(
layout(binding = 1) uniform sampler2D nearTexture;
layout(binding = 2) uniform sampler2D farTexture;
layout(binding = 3) uniform sampler2D fadeTexture;
layout(binding = 4) uniform sampler2D depthTexture;
)glsl" + DEPTHS + R"glsl(
void main() {
    float z = distanceOf(textureLod(depthTexture, uvs, 0.0).x);
    vec4 sharp = vec4(textureLod(sourceTexture, uvs, 0.0).rgb, 1.0);
    vec4 n = textureLod(nearTexture, uvs, 0.0);
    vec4 f = textureLod(farTexture, uvs, 0.0);
    vec4 fade = textureLod(fadeTexture, uvs, 0.0);
    if (z <= NEAR)
        colour = fade.x * (n + f) + (1.0 - fade.x) * n;
    else if (z >= FAR)
        colour = fade.z * (n + f) + (1.0 - fade.z) * (f / f.w);
    else if (START < z && z < END)
        colour = sharp;
    else
        colour = mix(sharp, n + f, z < FOCUS ? fade.x : fade.y);
}
)glsl";

BarePasses makeBareDof(const HalfTexels& texels, const std::vector<float>& depth) {
    const float range = CAMERA_FAR - CAMERA_NEAR;
    const std::vector<float> projection = {CAMERA_FAR / range, -CAMERA_NEAR / range, CAMERA_NEAR, CAMERA_FAR};
    BarePasses passes;
    passes.push_back(std::make_unique<BareOpenGlPass>(DOWN, GL_RGBA16F, WIDTH / 4, HEIGHT / 4, projection));
    BareOpenGlPass& down = *passes.front();
    down.addTarget(GL_RGBA16F);
    down.addTarget(GL_RGBA16F);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        for (const bool isHorizontal : {true, false}) {
            const BareOpenGlPass& source = *passes.back();
            passes.push_back(makeBareBlur(STRENGTH, isHorizontal, WIDTH / 4, HEIGHT / 4));
            if (isHorizontal)
                passes.back()->readTargetOf(down, 0, plane);
            else
                passes.back()->readTargetOf(source, 0);
        }
    }
    passes.push_back(std::make_unique<BareOpenGlPass>(BLEND, GL_RGBA16F, WIDTH, HEIGHT, projection));
    BareOpenGlPass& blend = *passes.back();
    blend.setLinear();
    for (const unsigned int plane : {0u, 1u, 2u})
        blend.readTargetOf(*passes[2 + 2 * plane], 1 + plane);
    for (BareOpenGlPass* pass : {&down, &blend}) {
        pass->addTexture(0, GL_RGBA16F, WIDTH, HEIGHT, 4, GL_HALF_FLOAT, texels.data());
        pass->addTexture(pass == &down ? 1 : 4, GL_R32F, WIDTH, HEIGHT, 1, GL_FLOAT, depth.data());
    }
    return passes;
}

void measure(benchmark::State& state, Library& library, Library::Drawn& drawn, const BarePasses& bare,
             double ratioAim) {
    runPair(state, sideOf(bare), library.sideOf(drawn), ROUNDS, LOAD::CPU_TIME);
    aimAtRatio(state, ratioAim);
    const auto image = drawn.output->convertToImage();
    const auto* halves = reinterpret_cast<const std::uint16_t*>(image->getBytes().data());
    const std::vector<float> expected = bare.back()->read();
    double largest = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        largest =
            std::max(largest, std::abs(static_cast<double>(ovImages::halfToFloat(halves[i])) - expected[i]));
    state.counters["difference"] = largest;
}

void runBlur(benchmark::State& state, unsigned int radius) {
    const HalfTexels texels = makePicture();
    Library library;
    const auto drawn = library.open(texels, makeDepth()) ? library.makeBlur(radius) : nullptr;
    if (!drawn) {
        state.SkipWithError("the blur could not be loaded");
        return;
    }
    BarePasses bare;
    bare.push_back(makeBareBlur(radius, true, WIDTH, HEIGHT));
    bare.front()->setSource(GL_HALF_FLOAT, texels.data());
    bare.push_back(makeBareBlur(radius, false, WIDTH, HEIGHT));
    bare.back()->readTargetOf(*bare.front(), 0);
    measure(state, library, *drawn, bare, BLUR_RATIO_AIM);
}

/// The time of a radius over that of radius 5, which must not be above the ratio of their fetches.
void runGrowth(benchmark::State& state, unsigned int radius) {
    constexpr unsigned int SMALL_RADIUS = 5;
    Library library;
    const bool isOpen = library.open(makePicture(), makeDepth());
    const auto small = isOpen ? library.makeBlur(SMALL_RADIUS) : nullptr;
    const auto large = isOpen ? library.makeBlur(radius) : nullptr;
    if (!small || !large) {
        state.SkipWithError("the blurs could not be loaded");
        return;
    }
    runPair(state, library.sideOf(*small), library.sideOf(*large), ROUNDS, LOAD::CPU_TIME);
    aimAtRatio(state, (radius + 1.0) / (SMALL_RADIUS + 1.0)); // fetches of a pass
}

void runDof(benchmark::State& state) {
    const HalfTexels texels = makePicture();
    const std::vector<float> depth = makeDepth();
    Library library;
    const auto drawn = library.open(texels, depth) ? library.makeDof() : nullptr;
    if (!drawn) {
        state.SkipWithError("depth of field could not be loaded");
        return;
    }
    measure(state, library, *drawn, makeBareDof(texels, depth), DOF_RATIO_AIM);
}

void registerOne(const std::string& name, const std::function<void(benchmark::State&)>& run) {
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

namespace ovBenchmarks {

void registerComplexEffects() {
    for (const unsigned int radius : {5u, 16u, 32u})
        registerOne("complex_effect/blur_" + std::to_string(radius),
                    [=](benchmark::State& state) { runBlur(state, radius); });
    for (const unsigned int radius : {16u, 32u})
        registerOne("complex_effect/blur_" + std::to_string(radius) + "_over_5",
                    [=](benchmark::State& state) { runGrowth(state, radius); });
    registerOne("complex_effect/depth_of_field", runDof);
}

} // namespace ovBenchmarks

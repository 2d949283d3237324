// What a frame costs the CPU beside the OpenGL calls that it makes.
//
// Both sides draw the same twenty full-screen passes into 1 x 1 targets, each with its own target, texture
// and constants; nothing changes from frame to frame. A measurement is FRAMES frames and one wait for the
// device.
#include "support/Aims.h"
#include "support/BareOpenGl.h"
#include "support/Pairs.h"

#include <epoxy/gl.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>

namespace {

constexpr int PASSES = 20;
constexpr int FRAMES = 50;
constexpr int ROUNDS = 41;

constexpr const char* VERTEX_TEXT = R"glsl(
in vec4 POSITION;
in vec2 TEXCOORD;
out vec2 PIX_TEXCOORD;
void main() {
    gl_Position = POSITION;
    PIX_TEXCOORD = TEXCOORD;
}
)glsl";

constexpr const char* PIXEL_TEXT = R"glsl(
ovConstantBufferDecl(constants, 0) { ovFloat4 factor; };
ovTexture2dDecl(sourceTexture, 0);
ovSamplerDecl(sourceSampler, 0);
in vec2 PIX_TEXCOORD;
out vec4 OUT_COLOR;
void main() {
    OUT_COLOR = ovSample(sourceTexture, sourceSampler, PIX_TEXCOORD) * factor;
}
)glsl";

constexpr const char* BARE_PIXEL_TEXT = R"glsl(#version 450 core
layout(binding = 0, std140) uniform Constants { vec4 factor; };
layout(binding = 0) uniform sampler2D sourceTexture;
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 colour;
void main() { colour = texture(sourceTexture, uvs) * factor; }
)glsl";

/// Twenty passes of the library.
class LibraryFrame {
public:
    LibraryFrame() {
        ovGraphics::Configuration configuration;
        configuration.software = true;
        _ready = _system.initialize(configuration) && _build();
    }

    bool isReady() const { return _ready; }
    ovGraphics::System& getSystem() { return _system; }
    void draw() { _system.frame(_context.get()); }

private:
    bool _build() {
        ovGraphics::ProgramSourcesHolder sources;
        sources.setVertexMemory(VERTEX_TEXT);
        sources.setPixelMemory(PIXEL_TEXT);
        _program = ovGraphics::Program::create(&_system);
        _program->setSources(sources);
        _program->setActivateCrossCompilerDefines(true);
        _sampler = ovGraphics::Sampler::create(&_system);
        _sampler->setFilter(ovGraphics::FILTER::MIN_MAG_MIP_POINT);
        _compositor = ovGraphics::Compositor::create(&_system);
        _context = ovGraphics::RenderContext::create(&_system);
        _context->setCompositor(_compositor.get());
        bool loaded = _program->load() && _sampler->load();
        ovGraphics::CompositorNode* node = _compositor->appendNode();
        for (int i = 0; i < PASSES; ++i)
            loaded = loaded && _appendPass(*node, i);
        return loaded;
    }

    ovGraphics::Texture* _makeTexture() {
        auto texture = ovGraphics::Texture::create(&_system);
        texture->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
        texture->setUsableAsRenderTarget(true);
        return texture->load() ? _textures.emplace_back(std::move(texture)).get() : nullptr;
    }

    bool _appendPass(ovGraphics::CompositorNode& node, int index) {
        auto shader = ovGraphics::Shader::create(&_system);
        shader->setProgram(_program.get());
        shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setFromVector(
            {static_cast<float>(index), 1.0f, 1.0f, 1.0f});
        shader->setTexture(_makeTexture(), 0, 0);
        shader->setSampler(_sampler.get(), 0, 0);
        ovGraphics::CompositorOperationsBlock* block = node.appendOperationsBlock();
        block->setTarget(0, _makeTexture());
        block->appendPostProcessPass()->setShader(shader.get());
        return _shaders.emplace_back(std::move(shader))->load();
    }

    ovGraphics::System _system;
    ovMemory::UniquePtr<ovGraphics::Program> _program;
    ovMemory::UniquePtr<ovGraphics::Sampler> _sampler;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> _textures;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Shader>> _shaders;
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovGraphics::RenderContext> _context;
    bool _ready = false;
};

void twentyPasses(benchmark::State& state) {
    LibraryFrame library;
    if (!library.isReady()) {
        state.SkipWithError("the library's passes could not be loaded");
        return;
    }
    std::vector<std::unique_ptr<ovBenchmarks::BareOpenGlPass>> passes;
    for (int i = 0; i < PASSES; ++i)
        passes.push_back(std::make_unique<ovBenchmarks::BareOpenGlPass>(
            BARE_PIXEL_TEXT, GL_RGBA32F, 1, 1, std::vector<float>{static_cast<float>(i), 1.0f, 1.0f, 1.0f}));

    const ovBenchmarks::Side bare{ovBenchmarks::BareOpenGlPass::bindSharedState, [&] {
                                      for (int frame = 0; frame < FRAMES; ++frame) {
                                          for (const auto& pass : passes)
                                              pass->draw();
                                      }
                                      ovBenchmarks::finish();
                                  }};
    const ovBenchmarks::Side ours{[&] {
                                      library.getSystem().getDevice()->invalidateState();
                                      library.draw();
                                      ovBenchmarks::finish();
                                  },
                                  [&] {
                                      for (int frame = 0; frame < FRAMES; ++frame)
                                          library.draw();
                                      ovBenchmarks::finish();
                                  }};
    ovBenchmarks::runPair(state, bare, ours, ROUNDS, ovBenchmarks::LOAD::WAITS);
    ovBenchmarks::aimAtRatio(state, 1.5);
}

BENCHMARK(twentyPasses)
    ->Name("frame/twenty_1x1_passes_over_bare_opengl")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

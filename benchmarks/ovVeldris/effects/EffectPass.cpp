#include "ovVeldris/effects/EffectPass.h"

#include "support/Aims.h"
#include "support/Pairs.h"

#include <algorithm>
#include <cmath>
#include <epoxy/gl.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Half.h>
#include <ovImages/Image.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>

namespace ovBenchmarks {

namespace {

constexpr int ROUNDS = 25;

/// One effect of the library, drawn by a compositor.
class LibraryEffect {
public:
    bool load(const MakeEffect& make, const HalfTexels& texels) {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration.software = true;
        if (!_system.initialize(configuration))
            return false;
        graphics().setFixedTime(EFFECT_SECONDS, 0.0);
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
        texture->setWidth(EFFECT_WIDTH);
        texture->setHeight(EFFECT_HEIGHT);
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

} // namespace

ovMemory::UniquePtr<BareOpenGlPass> makeBarePass(const std::string& pixelText,
                                                 const std::vector<float>& constants, bool isLinear) {
    auto pass =
        std::make_unique<BareOpenGlPass>(pixelText, GL_RGBA16F, EFFECT_WIDTH, EFFECT_HEIGHT, constants);
    if (isLinear)
        pass->setLinear();
    return pass;
}

void runEffectPair(benchmark::State& state, const MakeEffect& makeEffect, const MakeBarePass& makeBare,
                   const HalfTexels& texels, double ratioAim) {
    LibraryEffect library;
    if (!library.load(makeEffect, texels)) {
        state.SkipWithError("the effect could not be loaded");
        return;
    }
    const auto bare = makeBare();
    bare->setSource(GL_HALF_FLOAT, texels.data());
    const Side baseline{BareOpenGlPass::bindSharedState, [&] {
                            bare->draw();
                            finish();
                        }};
    const Side ours{[&] { library.graphics().getDevice()->invalidateState(); },
                    [&] {
                        library.draw();
                        finish();
                    }};
    runPair(state, baseline, ours, ROUNDS, LOAD::TWO_CORES);
    aimAtRatio(state, ratioAim);
    state.counters["difference"] = largestDifference(*library.read(), bare->read());
}

void registerEffectPair(const char* name, const MakeEffect& makeEffect, const MakeBarePass& makeBare,
                        HalfTexels (*makeTexels)(), double ratioAim) {
    const auto run = [=](benchmark::State& state) {
        runEffectPair(state, makeEffect, makeBare, makeTexels(), ratioAim);
    };
    benchmark::RegisterBenchmark(name, run)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace ovBenchmarks

#include "ovVeldris/effects/EffectPass.h"

#include "support/Aims.h"
#include "support/Pairs.h"

#include <algorithm>
#include <cmath>
#include <epoxy/gl.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovImages/Half.h>
#include <ovImages/Image.h>

namespace ovBenchmarks {

namespace {

constexpr int ROUNDS = 25;

double largestDifference(const ovImages::Image& ours, const std::vector<float>& bare) {
    double largest = 0.0;
    const auto* halves = reinterpret_cast<const std::uint16_t*>(ours.getBytes().data());
    for (std::size_t i = 0; i < bare.size(); ++i)
        largest =
            std::max(largest, std::abs(static_cast<double>(ovImages::halfToFloat(halves[i])) - bare[i]));
    return largest;
}

void runEffectPair(benchmark::State& state, const EffectPair& pair) {
    const HalfTexels texels = pair.makeTexels(pair.size);
    LibraryEffect library;
    if (!library.open(pair.size.width, pair.size.height) || !library.setSource(texels) ||
        !library.load(pair.makeEffect)) {
        state.SkipWithError("the effect could not be loaded");
        return;
    }
    const auto bare = pair.makeBare();
    bare->setSource(GL_HALF_FLOAT, texels.data());
    measureEffect(state, library, *bare, ROUNDS, pair.ratioAim);
}

} // namespace

ovMemory::UniquePtr<BareOpenGlPass> makeBarePass(const std::string& pixelText, PictureSize size,
                                                 const std::vector<float>& constants, bool isLinear) {
    auto pass = std::make_unique<BareOpenGlPass>(pixelText, GL_RGBA16F, size.width, size.height, constants);
    if (isLinear)
        pass->setLinear();
    return pass;
}

void measureEffect(benchmark::State& state, LibraryEffect& library, const BareOpenGlPass& bare, int rounds,
                   double ratioAim) {
    const Side baseline{BareOpenGlPass::bindSharedState, [&] {
                            bare.draw();
                            finish();
                        }};
    const Side ours{[&] { library.graphics().getDevice()->invalidateState(); },
                    [&] {
                        library.draw();
                        finish();
                    }};
    runPair(state, baseline, ours, rounds, LOAD::TWO_CORES);
    aimAtRatio(state, ratioAim);
    state.counters["difference"] = largestDifference(*library.read(), bare.read());
}

void registerEffectPair(const char* name, const EffectPair& pair) {
    const auto run = [=](benchmark::State& state) { runEffectPair(state, pair); };
    benchmark::RegisterBenchmark(name, run)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace ovBenchmarks

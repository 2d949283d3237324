#include "ovVeldris/content/ContentLoaderBenchmark.h"

#include "support/Aims.h"
#include "support/Pairs.h"

#include <chrono>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <string>

namespace ovBenchmarks {

namespace {

constexpr unsigned int DECLARATIONS = 10000;
constexpr unsigned int KINDS = 20;
constexpr unsigned int TEXTURES_OF_A_KIND = 10;
constexpr int ROUNDS = 15;

// Bit i of a kind's number says whether its materials have this texture: each kind needs a program of its
// own.
constexpr const char* TEXTURES[] = {"albedoTexture", "specularTexture", "emissiveTexture", "normalMap",
                                    "irradianceTexture"};

/// Declarations as the library writes them, the kinds in turns.
ovMemory::String makeDeclarations(ovVeldris::System& system, const std::string& prefix, unsigned int count) {
    const auto root = ovExport::Node::create(ovExport::NODE_NATURE::ARRAY);
    ovVeldris::PbsMaterial material(&system);
    for (unsigned int i = 0; i < count; ++i) {
        ovExport::Node* const entry = root->addElement();
        material.setName(prefix + std::to_string(i));
        material.setRoughnessGlossiness(static_cast<float>(i % 100) / 100.0f);
        material.exportClassToTree(entry);
        for (unsigned int bit = 0; bit < std::size(TEXTURES); ++bit) {
            if (((i % KINDS) >> bit & 1u) == 0)
                continue;
            ovExport::Node* const texture = entry->addMember(TEXTURES[bit]);
            texture->addMember("name")->setAsString("texture " +
                                                    std::to_string(i % (KINDS * TEXTURES_OF_A_KIND)));
            texture->addMember("packing")->setAsString("rgb");
        }
    }
    return ovExport::JsonExporter().exportTreeIntoString(root.get());
}

/// A system without a cache on disk, so that every program is compiled once.
bool initialize(ovVeldris::System& system) {
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.software = true;
    return system.initialize(configuration);
}

uint64_t getCompiled(const ovVeldris::System& system) {
    return system.getGraphicsEngine()->getGraphicsSystem()->getProgramLibrary().getStatistics().compiled;
}

bool load(const ovVeldris::System& system, const ovMemory::String& text, unsigned int count) {
    const auto result = system.getContentLoader()->processMaterialSources(text, true);
    if (result._status != 0 || result._results.size() != count)
        return false;
    for (const ovVeldris::Material* material : result._results)
        if (!material->getShader())
            return false;
    return true;
}

void eraseAll(ovVeldris::System& system, const std::string& prefix, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i)
        system.getMaterialManager()->erase(prefix + std::to_string(i));
}

/// Everything at once, compilations included.
void loadFirst(benchmark::State& state) {
    for (auto _ : state) {
        ovVeldris::System system;
        if (!initialize(system))
            return state.SkipWithError("no device");
        const ovMemory::String text = makeDeclarations(system, "material ", DECLARATIONS);
        const auto start = std::chrono::steady_clock::now();
        if (!load(system, text, DECLARATIONS))
            return state.SkipWithError("a declaration was not loaded");
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(elapsed.count());
        state.counters["compiled"] = static_cast<double>(getCompiled(system));
    }
}

/// Beside another set of materials that holds the programs, against parsing alone.
void loadBesideOthersOverParsing(benchmark::State& state) {
    ovVeldris::System system;
    if (!initialize(system))
        return state.SkipWithError("no device");
    if (!load(system, makeDeclarations(system, "holder ", KINDS), KINDS))
        return state.SkipWithError("a declaration was not loaded");
    const uint64_t compiled = getCompiled(system);
    const ovMemory::String text = makeDeclarations(system, "material ", DECLARATIONS);
    bool isLoaded = true;
    const Side parsing = {{},
                          [&] { benchmark::DoNotOptimize(ovExport::JsonExporter().importIntoTree(text)); }};
    const Side loading = {[&] { eraseAll(system, "material ", DECLARATIONS); },
                          [&] { isLoaded = load(system, text, DECLARATIONS) && isLoaded; }};
    runPair(state, parsing, loading, ROUNDS);
    aimAtRatio(state, 100.0);
    if (!isLoaded)
        return state.SkipWithError("a declaration was not loaded");
    state.counters["compiled"] = static_cast<double>(getCompiled(system) - compiled);
    state.counters["megabytes"] = static_cast<double>(text.size()) / 1e6;
}

} // namespace

void registerContentLoader() {
    benchmark::RegisterBenchmark("content_loader/first_load", loadFirst)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("content_loader/beside_others_over_parsing", loadBesideOthersOverParsing)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace ovBenchmarks

#include "ovVeldris/effects/ProgramCacheBenchmark.h"

#include "support/Aims.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace ovBenchmarks {

namespace {

constexpr int ROUNDS = 9;

/// Every effect whose programs the demo uses, one for each program.
ovMemory::Buffer<ovMemory::UniquePtr<ovVeldris::Effect>> makeEffects(ovVeldris::System& system) {
    ovMemory::Buffer<ovMemory::UniquePtr<ovVeldris::Effect>> effects;
    effects.push_back(ovVeldris::TextureCopyEffect::create(&system));
    for (const bool useLuminance : {true, false}) {
        for (int choice = 0; choice < 3; ++choice) {
            auto effect = ovVeldris::ToneMappingEffect::create(&system);
            effect->setUseLuminance(useLuminance);
            if (choice == 1)
                effect->setAsHables({});
            if (choice == 2)
                effect->setAsAces({});
            effects.push_back(std::move(effect));
        }
    }
    return effects;
}

struct Start {
    double milliseconds = 0.0;
    long compiled = -1; ///< -1: the child failed
};

/// Starts this program as a child with its own cache folders.
Start startChild(const std::string& program, const std::filesystem::path& folder) {
    const std::string command = "MESA_SHADER_CACHE_DIR='" + (folder / "driver").string() + "' '" + program +
                                "' " + LOAD_PROGRAMS_ARGUMENT + " '" + (folder / "programs").string() + "'";
    Start start;
    FILE* output = popen(command.c_str(), "r");
    if (!output || std::fscanf(output, "%lf %ld", &start.milliseconds, &start.compiled) != 2)
        start.compiled = -1;
    if (output)
        pclose(output);
    return start;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

void warmStartOverCold(benchmark::State& state, const std::string& program) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("veldris-cache-benchmark-" + std::to_string(getpid()));
    for (auto _ : state) {
        std::vector<double> cold;
        std::vector<double> warm;
        long compiledWarm = 0;
        for (int round = 0; round < ROUNDS; ++round) {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directories(folder / "driver"); // Mesa makes only the last folder
            const Start coldStart = startChild(program, folder);
            const Start warmStart = startChild(program, folder);
            if (coldStart.compiled < 1 || warmStart.compiled < 0) {
                state.SkipWithError("a child process could not load the programs");
                break;
            }
            cold.push_back(coldStart.milliseconds);
            warm.push_back(warmStart.milliseconds);
            compiledWarm += warmStart.compiled;
        }
        std::filesystem::remove_all(folder);
        if (warm.size() < ROUNDS)
            break;
        state.counters["cold_ms"] = median(cold);
        state.counters["warm_ms"] = median(warm);
        state.counters["ratio"] = median(warm) / median(cold);
        aimAtRatio(state, 0.2);
        state.counters["compiled_when_warm"] = static_cast<double>(compiledWarm);
        state.SetIterationTime(median(warm) / 1e3);
    }
}

} // namespace

int loadPrograms(const char* cacheFolder) {
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.software = true;
    configuration.graphicsConfiguration.cacheFolder = cacheFolder;
    ovVeldris::System system;
    if (!system.initialize(configuration))
        return 1;
    const auto effects = makeEffects(system);
    const auto start = std::chrono::steady_clock::now();
    for (const auto& effect : effects) {
        if (!effect->load())
            return 1;
    }
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    const auto& statistics =
        system.getGraphicsEngine()->getGraphicsSystem()->getProgramLibrary().getStatistics();
    std::printf("%f %ld\n", elapsed.count(), static_cast<long>(statistics.compiled));
    return 0;
}

void registerProgramCache(const char* program) {
    benchmark::RegisterBenchmark("program_cache/warm_start_over_cold", warmStartOverCold,
                                 std::string(program))
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace ovBenchmarks

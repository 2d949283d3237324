// What the second start of the program saves by the disk cache of compiled programs.
//
// `veldris demo` in small pictures, once with an empty cache folder and once more with what the first run
// left there, each in a process of its own: the milliseconds that every program of the demo took to be
// compiled or read, as the command itself reports them. The driver's own cache is as new as ours.
#include "apps/CommandRun.h"
#include "support/Aims.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int ROUNDS = 3;         // a run draws the whole demo
constexpr double RATIO_AIM = 0.2; // five times faster

/// What a run of the demo reports of its programs.
struct Start {
    double milliseconds = -1.0; ///< below 0: the run failed
    double compiled = 0.0;
    double fromCache = 0.0;
};

double numberOf(const std::string& report, const char* name) {
    const std::string key = "\"" + std::string(name) + "\":";
    const std::size_t place = report.find(key);
    return place == std::string::npos ? -1.0 : std::strtod(report.c_str() + place + key.size(), nullptr);
}

Start startDemo(const std::filesystem::path& folder) {
    const auto quoted = [&](const char* name) { return "'" + (folder / name).string() + "'"; };
    const std::string command = "MESA_SHADER_CACHE_DIR=" + quoted("driver") +
                                " '" VELDRIS_PROGRAM
                                "' demo --width 32 --height 18 --json --device software --cache " +
                                quoted("programs") + " --out " + quoted("pictures");
    FILE* output = popen(command.c_str(), "r");
    if (!output)
        return {};
    std::string report;
    for (int c = std::fgetc(output); c != EOF; c = std::fgetc(output))
        report += static_cast<char>(c);
    if (pclose(output) != 0)
        return {};
    return {numberOf(report, "programsMilliseconds"), numberOf(report, "programsCompiled"),
            numberOf(report, "programsFromCache")};
}

void warmStartOverCold(benchmark::State& state) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("veldris-warm-start-" + std::to_string(getpid()));
    std::vector<double> cold;
    std::vector<double> warm;
    for (auto _ : state) {
        for (int round = 0; round < ROUNDS; ++round) {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directories(folder / "driver"); // Mesa makes only the last folder
            const Start first = startDemo(folder);
            const Start second = startDemo(folder);
            if (first.milliseconds < 0.0 || first.compiled < 1.0 || second.compiled != 0.0 ||
                second.fromCache < first.compiled) {
                state.SkipWithError("a run of the demo failed, or compiled what the one before had compiled");
                break;
            }
            state.counters["programs"] = second.fromCache;
            cold.push_back(first.milliseconds);
            warm.push_back(second.milliseconds);
        }
    }
    std::filesystem::remove_all(folder);
    if (warm.size() < ROUNDS)
        return;
    state.counters["cold_ms"] = ovBenchmarks::medianOf(cold);
    state.counters["warm_ms"] = ovBenchmarks::medianOf(warm);
    state.counters["ratio"] = ovBenchmarks::medianOf(warm) / ovBenchmarks::medianOf(cold);
    ovBenchmarks::aimAtRatio(state, RATIO_AIM);
}

BENCHMARK(warmStartOverCold)
    ->Name("program_cache/warm_start_over_cold")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace

#include "support/Pairs.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace ovBenchmarks {

namespace {

double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double measure(const Side& side) {
    if (side.prepare)
        side.prepare();
    const double start = wallSeconds();
    side.work();
    return wallSeconds() - start;
}

double quantile(std::vector<double> values, double share) {
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

} // namespace

void runPair(benchmark::State& state, const Side& baseline, const Side& ours, int rounds) {
    constexpr int WARM_UP_ROUNDS = 3;
    constexpr double TO_MILLISECONDS = 1e3;
    for (auto _ : state) {
        for (int round = 0; round < WARM_UP_ROUNDS; ++round) {
            measure(baseline);
            measure(ours);
        }
        std::vector<double> baselineTimes;
        std::vector<double> ourTimes;
        const double cpuStart = cpuSeconds();
        const double wallStart = wallSeconds();
        for (int round = 0; round < rounds; ++round) {
            if (round % 2 == 0)
                baselineTimes.push_back(measure(baseline));
            ourTimes.push_back(measure(ours));
            if (round % 2 != 0)
                baselineTimes.push_back(measure(baseline));
        }
        const double ourMedian = quantile(ourTimes, 0.5);
        const double baselineMedian = quantile(baselineTimes, 0.5);
        state.counters["cpu_per_wall"] = (cpuSeconds() - cpuStart) / (wallSeconds() - wallStart);
        state.counters["ours_ms"] = ourMedian * TO_MILLISECONDS;
        state.counters["baseline_ms"] = baselineMedian * TO_MILLISECONDS;
        state.counters["ratio"] = ourMedian / baselineMedian;
        state.counters["spread"] = (quantile(ourTimes, 0.75) - quantile(ourTimes, 0.25)) / ourMedian;
        state.SetIterationTime(ourMedian);
    }
}

} // namespace ovBenchmarks

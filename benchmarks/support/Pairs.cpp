#include "support/Pairs.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <sys/resource.h>
#include <vector>

namespace ovBenchmarks {

namespace {

double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Of this process and of the children it waited for: a baseline may be a program.
double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    rusage children{};
    getrusage(RUSAGE_CHILDREN, &children);
    return static_cast<double>(time.tv_sec + children.ru_utime.tv_sec + children.ru_stime.tv_sec) +
           1e-9 * static_cast<double>(time.tv_nsec) +
           1e-6 * static_cast<double>(children.ru_utime.tv_usec + children.ru_stime.tv_usec);
}

/// What one or more measurements took.
struct Cost {
    double wall = 0.0;
    double cpu = 0.0;

    void operator+=(const Cost& other) {
        wall += other.wall;
        cpu += other.cpu;
    }
};

Cost measure(const Side& side) {
    if (side.prepare)
        side.prepare();
    const double wallStart = wallSeconds();
    const double cpuStart = cpuSeconds();
    side.work();
    const double cpu = cpuSeconds() - cpuStart;
    return {wallSeconds() - wallStart, cpu};
}

double quantile(std::vector<double> values, double share) {
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

/// The distance between the quartiles over the median.
double spreadOf(const std::vector<double>& times) {
    return (quantile(times, 0.75) - quantile(times, 0.25)) / quantile(times, 0.5);
}

double leastCpuPerWall(LOAD load) {
    switch (load) {
    case LOAD::ONE_CORE:
        return 0.93;
    case LOAD::TWO_CORES:
        return 1.85;
    case LOAD::CPU_TIME:
    case LOAD::WAITS:
        break;
    }
    return 0.0;
}

/// The rounds that count.
struct Rounds {
    std::vector<double> baselineTimes;
    std::vector<double> ourTimes;
    Cost cost;
    int dropped = 0;
};

constexpr int WARM_UP_ROUNDS = 3;
constexpr double TO_MILLISECONDS = 1e3;

/// A process that takes a core is often gone after half a minute.
constexpr double PATIENCE_SECONDS = 40.0;

Rounds runRounds(const Side& baseline, const Side& ours, int count, LOAD load) {
    const double least = leastCpuPerWall(load);
    const auto timeOf = [load](const Cost& cost) { return load == LOAD::CPU_TIME ? cost.cpu : cost.wall; };
    const double start = wallSeconds();
    Rounds rounds;
    for (int round = 0; static_cast<int>(rounds.ourTimes.size()) < count; ++round) {
        if (round >= count && wallSeconds() - start > PATIENCE_SECONDS)
            break;
        const bool baselineFirst = round % 2 == 0;
        const Cost first = measure(baselineFirst ? baseline : ours);
        const Cost second = measure(baselineFirst ? ours : baseline);
        Cost both = first;
        both += second;
        if (both.cpu < least * both.wall) {
            ++rounds.dropped;
            continue;
        }
        rounds.baselineTimes.push_back(timeOf(baselineFirst ? first : second));
        rounds.ourTimes.push_back(timeOf(baselineFirst ? second : first));
        rounds.cost += both;
    }
    return rounds;
}

} // namespace

void runPair(benchmark::State& state, const Side& baseline, const Side& ours, int rounds, LOAD load) {
    for (auto _ : state) {
        for (int round = 0; round < WARM_UP_ROUNDS; ++round) {
            measure(baseline);
            measure(ours);
        }
        const Rounds fair = runRounds(baseline, ours, rounds, load);
        if (static_cast<int>(fair.ourTimes.size()) < rounds) {
            state.SkipWithError("another process takes a core: too few fair rounds in 40 s");
            return;
        }
        const double ourMedian = quantile(fair.ourTimes, 0.5);
        const double baselineMedian = quantile(fair.baselineTimes, 0.5);
        state.counters["cpu_per_wall"] = fair.cost.cpu / fair.cost.wall;
        state.counters["dropped"] = fair.dropped;
        state.counters["ours_ms"] = ourMedian * TO_MILLISECONDS;
        state.counters["baseline_ms"] = baselineMedian * TO_MILLISECONDS;
        state.counters["ratio"] = ourMedian / baselineMedian;
        state.counters["spread"] = spreadOf(fair.ourTimes);
        state.SetIterationTime(ourMedian);
    }
}

double runAlone(benchmark::State& state, const Side& ours, int rounds) {
    double median = 0.0;
    for (auto _ : state) {
        for (int round = 0; round < WARM_UP_ROUNDS; ++round)
            measure(ours);
        std::vector<double> times;
        for (int round = 0; round < rounds; ++round)
            times.push_back(measure(ours).cpu);
        median = quantile(times, 0.5);
        state.counters["ours_ms"] = median * TO_MILLISECONDS;
        state.counters["spread"] = spreadOf(times);
        state.SetIterationTime(median);
    }
    return median * TO_MILLISECONDS;
}

} // namespace ovBenchmarks

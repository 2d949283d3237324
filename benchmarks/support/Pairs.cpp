#include "support/Pairs.h"

#include "support/Neighbours.h"

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

struct Round {
    Cost baseline;
    Cost ours;
    double crowding = 0.0; ///< the larger one of before and after
};

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

/// For a quiet moment of a neighbour on the same core, which works for seconds and rests for as long.
constexpr double PATIENCE_WITH_NEIGHBOURS_SECONDS = 15.0;

/// Rounds may be so much more crowded than the quietest one.
constexpr double CROWDED = 1.1;

/// Of one thread. What works on two cores crowds them itself.
double crowdingOf(LOAD load) {
    return load == LOAD::ONE_CORE || load == LOAD::CPU_TIME ? measureCrowding() : 0.0;
}

Round runRound(const Side& baseline, const Side& ours, bool baselineFirst, LOAD load) {
    Round round;
    round.crowding = crowdingOf(load);
    if (baselineFirst)
        round.baseline = measure(baseline);
    round.ours = measure(ours);
    if (!baselineFirst)
        round.baseline = measure(baseline);
    round.crowding = std::max(round.crowding, crowdingOf(load));
    return round;
}

/// Whether so many rounds are hardly more crowded than the first. @param rounds the quietest first
bool areQuiet(const std::vector<Round>& rounds, std::size_t count) {
    return rounds.size() >= count && rounds[count - 1].crowding <= CROWDED * rounds[0].crowding;
}

// Rounds are chosen by what was measured beside them and never by their own times, so that the choice favours
// neither side.
Rounds runRounds(const Side& baseline, const Side& ours, std::size_t count, LOAD load) {
    const double least = leastCpuPerWall(load);
    const double start = wallSeconds();
    std::vector<Round> fair; // the quietest first
    std::size_t tried = 0;
    while (!areQuiet(fair, count)) {
        const double patience = fair.size() < count ? PATIENCE_SECONDS : PATIENCE_WITH_NEIGHBOURS_SECONDS;
        if (tried >= count && wallSeconds() - start > patience)
            break;
        const Round round = runRound(baseline, ours, tried % 2 == 0, load);
        ++tried;
        if (round.baseline.cpu + round.ours.cpu < least * (round.baseline.wall + round.ours.wall))
            continue;
        const auto isQuieter = [](const Round& a, const Round& b) { return a.crowding < b.crowding; };
        fair.insert(std::upper_bound(fair.begin(), fair.end(), round, isQuieter), round);
    }
    fair.resize(std::min(fair.size(), count));
    const auto timeOf = [load](const Cost& cost) { return load == LOAD::CPU_TIME ? cost.cpu : cost.wall; };
    Rounds rounds;
    for (const Round& round : fair) {
        rounds.baselineTimes.push_back(timeOf(round.baseline));
        rounds.ourTimes.push_back(timeOf(round.ours));
        rounds.cost += round.baseline;
        rounds.cost += round.ours;
    }
    rounds.dropped = static_cast<int>(tried - fair.size());
    return rounds;
}

} // namespace

void runPair(benchmark::State& state, const Side& baseline, const Side& ours, int rounds, LOAD load) {
    for (auto _ : state) {
        for (int round = 0; round < WARM_UP_ROUNDS; ++round) {
            measure(baseline);
            measure(ours);
        }
        const auto count = static_cast<std::size_t>(rounds);
        const Rounds fair = runRounds(baseline, ours, count, load);
        if (fair.ourTimes.size() < count) {
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

// Ratios of two ways to do the same work, measured in turns.
#pragma once

#include <benchmark/benchmark.h>
#include <functional>

namespace ovBenchmarks {

/// One side of a pair: prepare is not measured, work is.
struct Side {
    std::function<void()> prepare;
    std::function<void()> work;
};

/// Runs a pair as one benchmark. The rules of fairness: both sides are warmed up before the first
/// measurement; they take turns, and change who goes first, so that whatever else the machine does hits both;
/// medians are compared, not means. The benchmark's own time is the median of ours. Counters: ours_ms,
/// baseline_ms, ratio (ours over baseline), spread (the distance between the quartiles of ours over its
/// median), cpu_per_wall (CPU seconds of this process over wall seconds, which tells when another process
/// took a core).
/// @param rounds measurements of each side
void runPair(benchmark::State& state, const Side& baseline, const Side& ours, int rounds);

} // namespace ovBenchmarks

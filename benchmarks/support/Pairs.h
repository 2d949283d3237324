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

/// What the work of both sides keeps busy, which tells when another process took a core from it.
enum class LOAD {
    ONE_CORE,  ///< CPU seconds over wall seconds of a fair round are at least 0.93
    TWO_CORES, ///< at least 1.85
    CPU_TIME,  ///< one core, and CPU seconds are measured, which other processes do not touch
    WAITS      ///< the work waits for threads or the disk by itself: no round is unfair
};

/// Runs a pair as one benchmark. The rules of fairness: both sides are warmed up before the first
/// measurement; they take turns, and change who goes first, so that whatever else the machine does hits both;
/// rounds in which another process took a core are dropped and repeated; of work on one core, the rounds
/// count in which a neighbour that we do not see took least of it (measureCrowding()); medians are compared,
/// not means.
///
/// The benchmark's own time is the median of ours. Counters: ours_ms, baseline_ms, ratio (ours over
/// baseline), spread (the distance between the quartiles of ours over its median), cpu_per_wall (CPU seconds
/// of this process over wall seconds, of the rounds that count), dropped (rounds). The benchmark fails when
/// there were too few fair rounds for 40 s: the machine is too busy.
/// @param rounds measurements of each side that count
void runPair(benchmark::State& state, const Side& baseline, const Side& ours, int rounds,
             LOAD load = LOAD::ONE_CORE);

/// Measures one side alone, in CPU seconds of this process, after a warm-up. Sets the benchmark's own time
/// and the counters ours_ms and spread as runPair() does.
/// @return the median, milliseconds
double runAlone(benchmark::State& state, const Side& ours, int rounds);

} // namespace ovBenchmarks

// What figures must reach, and the table that says whether they do.
#pragma once

#include <benchmark/benchmark.h>

namespace ovBenchmarks {

/// Declares that the ratio of this benchmark (the counter of that name, which runPair() sets) must not be
/// above a limit. Called at the end of the benchmark; a row of the table is the result.
void aimAtRatio(benchmark::State& state, double atMost);

/// The same for milliseconds. Other units would be another function like this.
void aimAtMilliseconds(benchmark::State& state, double milliseconds, double atMost);
/// The same for megabytes.
void aimAtMegabytes(benchmark::State& state, double megabytes, double atMost);

/// The same for percent of something, of which a benchmark may have several. @param what names it in the
/// table
void aimAtPercent(benchmark::State& state, const char* what, double percent, double atMost);

/// Runs the benchmarks of a program as the arguments of Google Benchmark tell, and gives its exit status: 1
/// when an aim was missed or a benchmark failed, which is a row of its own, 0 otherwise.
///
/// The table of aims is printed at the end. When the environment variable OV_BENCH_TABLE names a file, the
/// rows are appended to it instead, a row a line: figure, value, aim, and "held" or why not, with tabs
/// between them.
int runBenchmarks(int& argumentCount, char** arguments);

} // namespace ovBenchmarks

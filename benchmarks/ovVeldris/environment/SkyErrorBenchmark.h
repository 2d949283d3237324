// How far prefiltered skies are from the truth.
#pragma once

namespace ovBenchmarks {

/// Registers a benchmark for each sky: the panoramas (.exr, .hdr) below the folder that the environment
/// variable OV_BENCH_SKIES names, or without it the procedural hard sun of the tests.
void registerSkyErrors();

/// Prints a table of those that ran, in Markdown.
void printSkyErrors();

} // namespace ovBenchmarks

// What filtering an environment map costs beside a baker on the CPU.
#pragma once

namespace ovBenchmarks {

/// Registers the benchmark.
void registerEnvironmentFilter();

} // namespace ovBenchmarks

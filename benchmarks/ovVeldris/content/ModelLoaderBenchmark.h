// What loading a model with large pictures costs.
#pragma once

namespace ovBenchmarks {

/// Registers the benchmarks.
void registerModelLoader();

} // namespace ovBenchmarks

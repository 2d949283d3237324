// What loading many material declarations costs beside parsing their text.
#pragma once

namespace ovBenchmarks {

/// Registers the benchmarks.
void registerContentLoader();

} // namespace ovBenchmarks

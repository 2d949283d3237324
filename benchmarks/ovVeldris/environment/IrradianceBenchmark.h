// What the irradiance computation costs beside reading and writing the texels.
#pragma once

namespace ovBenchmarks {

/// Registers the benchmarks.
void registerIrradiance();

} // namespace ovBenchmarks

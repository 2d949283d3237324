// What the sky and its tables cost beside hand-written OpenGL of the same formulas.
#pragma once

namespace ovBenchmarks {

/// Registers a benchmark of the sky, one of the air over a scene, and one of both tables.
void registerAtmosphere();

} // namespace ovBenchmarks

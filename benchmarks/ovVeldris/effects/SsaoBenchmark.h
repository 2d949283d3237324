// What ambient occlusion costs beside hand-written OpenGL of the same formula.
#pragma once

namespace ovBenchmarks {

/// Registers a benchmark over a depth buffer and one over positions and normals.
void registerSsao();

} // namespace ovBenchmarks

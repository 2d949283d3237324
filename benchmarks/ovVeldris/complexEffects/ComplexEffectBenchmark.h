// What blur and depth of field cost beside hand-written OpenGL.
#pragma once

namespace ovBenchmarks {

/// Registers a benchmark for three radii, one for their growth, and one for depth of field.
void registerComplexEffects();

} // namespace ovBenchmarks

// What effects cost beside hand-written OpenGL of the same formulas.
#pragma once

namespace ovBenchmarks {

/// Registers one benchmark for each effect and operator.
void registerEffects();

} // namespace ovBenchmarks

// What FXAA costs beside hand-written OpenGL of the same formula, and beside a copy.
#pragma once

namespace ovBenchmarks {

/// Registers a benchmark for some presets, and one against a bilinear copy.
void registerFxaa();

} // namespace ovBenchmarks

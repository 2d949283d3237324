// One effect of the library beside a hand-written OpenGL program.
#pragma once

#include "support/BareOpenGl.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <functional>
#include <ovMemory/Memory.h>
#include <ovVeldris/effects/Effect.h>
#include <string>
#include <vector>

namespace ovVeldris {
class System;
}

namespace ovBenchmarks {

constexpr int EFFECT_WIDTH = 1920;
constexpr int EFFECT_HEIGHT = 1080;
constexpr float EFFECT_SECONDS = 1.5f; // the time at which effects that change with it are drawn

/// An unloaded effect over a source.
using MakeEffect =
    std::function<ovMemory::UniquePtr<ovVeldris::Effect>(ovVeldris::System&, ovGraphics::Texture*)>;
/// A hand-written pass; called when an OpenGL context is current.
using MakeBarePass = std::function<ovMemory::UniquePtr<BareOpenGlPass>()>;

/// Half floats, four a texel.
using HalfTexels = std::vector<std::uint16_t>;

/// The start of hand-written pixel texts.
inline const std::string BARE_HEADER = R"glsl(#version 450 core
layout(binding = 0) uniform sampler2D sourceTexture;
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 colour;
)glsl";

/// A hand-written pass of EFFECT_WIDTH x EFFECT_HEIGHT half floats.
ovMemory::UniquePtr<BareOpenGlPass>
makeBarePass(const std::string& pixelText, const std::vector<float>& constants = {}, bool isLinear = false);

/// Measures the effect, drawn by a compositor, over the hand-written pass: both read these texels, write half
/// floats, and wait for the device after each draw. Declares the aim and sets the counter difference, the
/// largest difference of the two pictures: a faster wrong picture would show.
void runEffectPair(benchmark::State& state, const MakeEffect& makeEffect, const MakeBarePass& makeBare,
                   const HalfTexels& texels, double ratioAim);

/// Registers such a pair.
void registerEffectPair(const char* name, const MakeEffect& makeEffect, const MakeBarePass& makeBare,
                        HalfTexels (*makeTexels)(), double ratioAim);

} // namespace ovBenchmarks

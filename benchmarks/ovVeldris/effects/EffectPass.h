// One effect of the library beside a hand-written OpenGL program.
#pragma once

#include "ovVeldris/effects/LibraryEffect.h"
#include "support/BareOpenGl.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace ovBenchmarks {

constexpr int EFFECT_WIDTH = 1920;
constexpr int EFFECT_HEIGHT = 1080;

/// A hand-written pass; called when an OpenGL context is current.
using MakeBarePass = std::function<ovMemory::UniquePtr<BareOpenGlPass>()>;

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

/// The same of an effect and a pass that have their sources already. @param rounds measurements of each
void measureEffect(benchmark::State& state, LibraryEffect& library, const BareOpenGlPass& bare, int rounds,
                   double ratioAim);

/// Registers a pair of which both read the same picture.
void registerEffectPair(const char* name, const MakeEffect& makeEffect, const MakeBarePass& makeBare,
                        HalfTexels (*makeTexels)(), double ratioAim);

} // namespace ovBenchmarks

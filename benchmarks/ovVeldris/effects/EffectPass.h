// One effect of the library beside a hand-written OpenGL program.
#pragma once

#include "ovVeldris/effects/LibraryEffect.h"
#include "support/BareOpenGl.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace ovBenchmarks {

/// In pixels.
struct PictureSize {
    int width;
    int height;
};

/// A hand-written pass; called when an OpenGL context is current.
using MakeBarePass = std::function<ovMemory::UniquePtr<BareOpenGlPass>()>;

/// The start of hand-written pixel texts.
inline const std::string BARE_HEADER = R"glsl(#version 450 core
layout(binding = 0) uniform sampler2D sourceTexture;
layout(location = 0) in vec2 uvs;
layout(location = 0) out vec4 colour;
)glsl";

/// A hand-written pass over half floats.
ovMemory::UniquePtr<BareOpenGlPass> makeBarePass(const std::string& pixelText, PictureSize size,
                                                 const std::vector<float>& constants = {},
                                                 bool isLinear = false);

/// Measures the effect, drawn by a compositor, over the hand-written pass; both wait for the device after
/// each draw. Declares the aim and sets the counter difference, the largest difference of the two pictures: a
/// faster wrong picture would show. @param rounds measurements of each
void measureEffect(benchmark::State& state, LibraryEffect& library, const BareOpenGlPass& bare, int rounds,
                   double ratioAim);

/// An effect and a hand-written pass that read the same picture, and write half floats of its size.
struct EffectPair {
    MakeEffect makeEffect;
    MakeBarePass makeBare;
    HalfTexels (*makeTexels)(PictureSize);
    PictureSize size;
    double ratioAim;
};

void registerEffectPair(const char* name, const EffectPair& pair);

} // namespace ovBenchmarks

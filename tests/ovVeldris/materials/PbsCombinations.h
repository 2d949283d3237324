// Material settings that together hold every combination of a few of their options.
#pragma once

#include <functional>
#include <ovMemory/Memory.h>
#include <ovVeldris/materials/PbsMaterialParameters.h>

/// One setting of a material that selects shader text, and its values.
struct PbsOption {
    const char* name;
    unsigned int valueCount;
    std::function<void(ovVeldris::PbsMaterialParameters& parameters, unsigned int value)> apply;
};

/// Every option of a material. Textures are taken from those given, which are never loaded.
ovMemory::Buffer<PbsOption> makePbsOptions(ovMemory::BufferView<ovGraphics::Texture* const> textures);

/// Textures that makePbsOptions() wants.
constexpr unsigned int PBS_OPTION_TEXTURE_COUNT = 12;

/// Takes units for the textures as a material does.
void packPbsTextures(ovVeldris::PbsMaterialParameters& parameters);

/// A value for each option.
using PbsChoice = ovMemory::Buffer<unsigned int>;

/// Choices such that for any `strength` of the options each combination of their values is in one of them.
/// Greedy and deterministic (Bryce, Colbourn: "The density algorithm for pairwise interaction testing", 2007,
/// in its simplest form).
ovMemory::Buffer<PbsChoice> makeCover(const ovMemory::Buffer<PbsOption>& options, unsigned int strength);

/// The choice in words, for messages.
ovMemory::String describe(const ovMemory::Buffer<PbsOption>& options, const PbsChoice& choice);

// What one compiled stage reads and writes, as reflection finds it.
#pragma once

#include <cstdint>
#include <ovGraphics/shading/CompiledProgram.h>

namespace ovGraphics::shading::detail {

/// An input or output of a stage.
struct StageVariable {
    std::uint32_t id = 0;
    ovMemory::String name;       ///< GLSL name or HLSL semantic
    ovMemory::String type;       ///< scalar type, such as "float", the same in both languages
    unsigned int components = 1; ///< of a vector, or of one column
    unsigned int columns = 1;    ///< more than 1 for a matrix
    unsigned int locations = 1;  ///< how many locations it takes
    unsigned int location = 0;   ///< where it starts
};

/// A constant buffer of a stage.
struct StageBlock {
    std::uint32_t id = 0;
    std::uint32_t typeId = 0;
    ConstantBufferInfo info; ///< stages is the mask of this stage alone
    ovMemory::String
        signature; ///< names, types and offsets of all members: equal signatures hold equal contents
};

/// A texture with the sampler that it is read through.
struct StageTexturePair {
    std::uint32_t id = 0; ///< of the combined variable
    TextureUnitInfo info; ///< stages is the mask of this stage alone
    unsigned int unit = 0;
};

/// The interface of a stage: only what its text really uses.
struct StageInterface {
    ovMemory::Buffer<StageVariable> inputs;
    ovMemory::Buffer<StageVariable> outputs;
    ovMemory::Buffer<StageBlock> blocks;
    ovMemory::Buffer<StageTexturePair> pairs;
};

} // namespace ovGraphics::shading::detail

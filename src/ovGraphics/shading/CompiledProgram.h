// What the cross compiler makes of a program's text: the device's text and the interface of both stages.
#pragma once

#include <ovGraphics/formats/Enums.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::shading {

/// Stages of a program. Masks of stages are sums of 1 << stage.
enum class STAGE : unsigned int { VERTEX = 0, PIXEL = 1 };

inline constexpr ovMemory::EnumEntry<STAGE> STAGE_ENTRIES[] = {
    {STAGE::VERTEX, "VERTEX"},
    {STAGE::PIXEL, "PIXEL"},
};
constexpr ovMemory::EnumTable<STAGE> enumTable(STAGE) {
    return {"STAGE", STAGE_ENTRIES};
}

/// A preprocessor define put before the author's text: `#define name value`.
struct Define {
    ovMemory::String name;
    ovMemory::String value;
    bool operator==(const Define&) const = default;
};

/// One stage as its author wrote it, with the defines that select its options.
struct StageText {
    ovMemory::String text;
    ovMemory::Buffer<Define> defines;
};

/// Everything that decides what a program compiles to, and the name that messages give it.
struct ProgramText {
    ovMemory::String name;                            ///< for messages only; two names may share one text
    SHADER_LANGUAGE language = SHADER_LANGUAGE::GLSL; ///< language of both texts
    bool crossCompilerDefines = false; ///< put the dual-dialect macros of the language before the texts
    StageText vertex;
    StageText pixel;
};

/// A vertex attribute that the vertex stage reads.
struct AttributeInfo {
    ovMemory::String name;       ///< GLSL input name or HLSL semantic, such as "POSITION"
    unsigned int location = 0;   ///< device location, assigned by the compiler
    unsigned int components = 4; ///< 1 to 4
    bool operator==(const AttributeInfo&) const = default;
};

/// A member of a constant buffer.
struct ConstantBufferMember {
    ovMemory::String name;
    unsigned int offset = 0; ///< bytes from the buffer's start
    unsigned int size = 0;   ///< bytes, all elements of an array included
    bool operator==(const ConstantBufferMember&) const = default;
};

/// A constant buffer, one for all stages that declare its slot.
struct ConstantBufferInfo {
    ovMemory::String name;
    unsigned int slot = 0;   ///< the author's slot and the device's uniform buffer binding
    unsigned int stages = 0; ///< mask of STAGE
    unsigned int size = 0;   ///< bytes, a multiple of 16
    ovMemory::Buffer<ConstantBufferMember> members;
    bool operator==(const ConstantBufferInfo&) const = default;
};

/// A device texture unit: a pair of texture and sampler that the text really uses together. Its index in
/// CompiledProgram::textureUnits is the unit's number. A texture read through two samplers makes two units.
struct TextureUnitInfo {
    static constexpr unsigned int NO_SAMPLER = ~0u;

    ovMemory::String textureName;
    unsigned int textureSlot = 0;
    ovMemory::String samplerName;          ///< empty when the texture is only read by texel fetch
    unsigned int samplerSlot = NO_SAMPLER; ///< NO_SAMPLER when the texture is only read by texel fetch
    TEXTURE_TYPE type = TEXTURE_TYPE::TEXTURE_2D;
    bool array = false;
    bool comparison = false; ///< the sampler compares with a reference
    unsigned int stages = 0; ///< mask of STAGE
    bool integer = false;    ///< reads whole numbers, as textures of UINT and SINT formats hold
    bool operator==(const TextureUnitInfo&) const = default;
};

/// A program in the device's language (GLSL 4.50 core for OpenGL) with its interface. Locations, blocks and
/// units are written into the texts.
struct CompiledProgram {
    ovMemory::String vertexText;
    ovMemory::String pixelText;
    ovMemory::Buffer<AttributeInfo> attributes;
    ovMemory::Buffer<ConstantBufferInfo> constantBuffers;
    ovMemory::Buffer<TextureUnitInfo> textureUnits;
    unsigned int colorOutputs = 0; ///< number of colour targets that the pixel stage writes
    bool operator==(const CompiledProgram&) const = default;
};

} // namespace ovGraphics::shading

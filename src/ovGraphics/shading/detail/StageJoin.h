// Joins the two stages of a program by the names of what they exchange.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/shading/detail/StageInterface.h>

namespace ovGraphics::shading::detail {

/// Why two stages cannot be joined.
struct JoinError {
    STAGE stage = STAGE::PIXEL; ///< the stage that the message is about
    ovMemory::String words;     ///< empty on success
};

/// Chooses the locations of attributes and varyings and the units of textures, writes them into both
/// interfaces and fills the program's tables (not its texts).
///
/// Attributes: POSITION 0, NORMAL 1, TEXCOORD 2, TANGENT 3, BINORMAL 4; other names from 5 on in alphabetical
/// order. Units: by texture slot, then sampler slot.
OV_API JoinError joinStages(StageInterface& vertex, StageInterface& pixel, CompiledProgram& program);

} // namespace ovGraphics::shading::detail

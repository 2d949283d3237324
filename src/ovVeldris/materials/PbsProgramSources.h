// The program of a PBS material as text.
#pragma once

#include <ovCommon/Api.h>

namespace ovGraphics {
class ProgramSourcesHolder;
}

namespace ovVeldris {

struct PbsMaterialParameters;

/// Gives the texts of both stages and the defines that select what a material needs.
/// @param parameters with packedTextures filled; whether maps are cubes is asked of the textures
OV_API void fillPbsProgramSources(const PbsMaterialParameters& parameters,
                                  ovGraphics::ProgramSourcesHolder& sources);

} // namespace ovVeldris

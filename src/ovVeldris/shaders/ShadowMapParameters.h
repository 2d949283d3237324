// Settings of reading a shadow map, as a program's defines.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Enumeration.h>

namespace ovGraphics {
class ProgramSourcesHolder;
}

namespace ovVeldris {

/// Kernel of a shadow map's percentage-closer filtering. The numbers are part of the interface of scripts and
/// files.
enum class SHADOW_MAP_PCF : uint32_t { NONE = 0, PCF_4_TAP = 1, PCF_9_TAP = 2, PCF_16_TAP = 3 };

inline constexpr ovMemory::EnumEntry<SHADOW_MAP_PCF> SHADOW_MAP_PCF_ENTRIES[] = {
    {SHADOW_MAP_PCF::NONE, "NONE"},
    {SHADOW_MAP_PCF::PCF_4_TAP, "PCF_4_TAP"},
    {SHADOW_MAP_PCF::PCF_9_TAP, "PCF_9_TAP"},
    {SHADOW_MAP_PCF::PCF_16_TAP, "PCF_16_TAP"},
};
constexpr ovMemory::EnumTable<SHADOW_MAP_PCF> enumTable(SHADOW_MAP_PCF) {
    return {"SHADOW_MAP_PCF", SHADOW_MAP_PCF_ENTRIES};
}

/// How a shadow map is read.
struct ShadowMapParameters {
    SHADOW_MAP_PCF pcfMethod = SHADOW_MAP_PCF::PCF_9_TAP;
    /// Subtracted from the depth of the point that is looked up, in the map's depths of 0 to 1. Negative (and
    /// NaN): the shader's own, 0.0001.
    float bias = -1.0f;
    /// Points outside the map are shadowed instead of lit, to make its extent visible.
    bool debugOutOfBounds = false;
};

/// How the defines of a shadow map are written. Programs are known by their text, so each user keeps its own.
enum class SHADOW_MAP_DEFINES : unsigned int {
    EXACT,       ///< the bias as it reads back; NONE has no define
    SIX_DECIMALS ///< the bias with six decimals; NONE is OV_SHADOW_MAP_METHOD_PCF_NONE, which nothing reads
};

inline constexpr ovMemory::EnumEntry<SHADOW_MAP_DEFINES> SHADOW_MAP_DEFINES_ENTRIES[] = {
    {SHADOW_MAP_DEFINES::EXACT, "EXACT"},
    {SHADOW_MAP_DEFINES::SIX_DECIMALS, "SIX_DECIMALS"},
};
constexpr ovMemory::EnumTable<SHADOW_MAP_DEFINES> enumTable(SHADOW_MAP_DEFINES) {
    return {"SHADOW_MAP_DEFINES", SHADOW_MAP_DEFINES_ENTRIES};
}

/// Adds the pixel defines that ShadowMappingLib::ovShadowMap() reads.
OV_API void addShadowMapDefines(ovGraphics::ProgramSourcesHolder& sources,
                                const ShadowMapParameters& parameters,
                                SHADOW_MAP_DEFINES form = SHADOW_MAP_DEFINES::EXACT);

} // namespace ovVeldris

// Shader snippets of shadow mapping.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Constant texts in the shader dialect, to be put before the code that calls them. docs/shader-snippets.md
/// tells more; so does the head of each text.
class OV_API ShadowMappingLib {
public:
    /// `float ovShadowMap(ovTexture2dShadow lightDepthMap, ovSamplerComparison s, ovFloat4 worldPosition,
    /// ovFloat4x4 lightViewProjectionMatrix, ovInt2 lightDepthMapDimensions)`: 0 shadowed to 1 lit, and 1
    /// outside the map. Options by define: OV_SHADOW_MAP_METHOD_BIAS, OV_SHADOW_MAP_METHOD_PCF_4_TAP (_9_TAP,
    /// _16_TAP), OV_SHADOW_MAP_METHOD_DEBUG_OOB.
    static ovMemory::StringView ovShadowMap();
};

} // namespace ovVeldris

// Shader text of full-screen passes.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Constant texts in the shader dialect.
class OV_API PostProcessingLib {
public:
    /// The whole vertex program: POSITION unchanged, TEXCOORD handed on as PIX_TEXCOORD unless
    /// OV_POST_PROCESS_DEFAULT_VERTEX_DISABLE_UV is defined.
    static ovMemory::StringView ovPostProcessDefaultVertex();
};

} // namespace ovVeldris

// Repairs what the HLSL front end makes of textures and samplers that are passed to functions.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::shading::detail {

/// The HLSL front end copies a texture or sampler argument into a local variable before each call, which the
/// translator cannot trace back to the declared resource. This takes the copies out, so that calls pass the
/// declared resource itself, as the GLSL front end does. Text without such calls is left as it is.
/// @return false when a local texture or sampler is assigned more than once: it stands for no single resource
OV_API bool passOpaqueParametersDirectly(ovMemory::Buffer<std::uint32_t>& spirv);

} // namespace ovGraphics::shading::detail

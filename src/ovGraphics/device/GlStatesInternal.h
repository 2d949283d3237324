// The enumerations of states in OpenGL's words.
#pragma once

#include <epoxy/gl.h>
#include <optional>
#include <ovGraphics/formats/Enums.h>

namespace ovGraphics::device {

GLenum glBlendFactorOf(BLEND factor);
GLenum glBlendOperationOf(BLEND_OPERATION operation);
GLenum glComparisonOf(COMPARISON comparison);
GLenum glStencilOperationOf(STENCIL_OPERATION operation);
GLenum glAddressOf(TEXTURE_ADDRESS address);
/// Nothing for what needs other stages than vertex and pixel.
std::optional<GLenum> glTopologyOf(PRIMITIVE_TOPOLOGY topology);

/// A FILTER taken apart.
struct GlFilter {
    GLenum minification = GL_NEAREST_MIPMAP_NEAREST;
    GLenum magnification = GL_NEAREST;
    bool anisotropic = false;
    bool comparison = false;
};
GlFilter glFilterOf(FILTER filter);

} // namespace ovGraphics::device

#include <ovGraphics/device/GlStatesInternal.h>

#include <array>
#include <cstddef>

namespace ovGraphics::device {

namespace {

// Numbers may come from files and scripts. One outside the table becomes the state that does nothing special,
// because a draw has no way to fail.
template <std::size_t COUNT, typename ENUM>
GLenum lookUp(const std::array<GLenum, COUNT>& table, ENUM value) {
    const std::size_t index = static_cast<std::size_t>(value);
    return table[index < COUNT ? index : 0];
}

// Each table stands in the order of its enumeration; entry 0 serves numbers outside it.
constexpr std::array<GLenum, 20> BLEND_FACTORS = {GL_ONE,
                                                  GL_ZERO,
                                                  GL_ONE,
                                                  GL_SRC_COLOR,
                                                  GL_ONE_MINUS_SRC_COLOR,
                                                  GL_SRC_ALPHA,
                                                  GL_ONE_MINUS_SRC_ALPHA,
                                                  GL_DST_ALPHA,
                                                  GL_ONE_MINUS_DST_ALPHA,
                                                  GL_DST_COLOR,
                                                  GL_ONE_MINUS_DST_COLOR,
                                                  GL_SRC_ALPHA_SATURATE,
                                                  GL_ONE,
                                                  GL_ONE,
                                                  GL_CONSTANT_COLOR,
                                                  GL_ONE_MINUS_CONSTANT_COLOR,
                                                  GL_SRC1_COLOR,
                                                  GL_ONE_MINUS_SRC1_COLOR,
                                                  GL_SRC1_ALPHA,
                                                  GL_ONE_MINUS_SRC1_ALPHA};

constexpr std::array<GLenum, 6> BLEND_OPERATIONS = {
    GL_FUNC_ADD, GL_FUNC_ADD, GL_FUNC_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT, GL_MIN, GL_MAX};

constexpr std::array<GLenum, 9> COMPARISONS = {GL_ALWAYS,  GL_NEVER,    GL_LESS,   GL_EQUAL, GL_LEQUAL,
                                               GL_GREATER, GL_NOTEQUAL, GL_GEQUAL, GL_ALWAYS};

constexpr std::array<GLenum, 9> STENCIL_OPERATIONS = {GL_KEEP, GL_KEEP,   GL_ZERO,      GL_REPLACE,  GL_INCR,
                                                      GL_DECR, GL_INVERT, GL_INCR_WRAP, GL_DECR_WRAP};

constexpr std::array<GLenum, 6> ADDRESSES = {GL_CLAMP_TO_EDGE, GL_REPEAT,          GL_MIRRORED_REPEAT,
                                             GL_CLAMP_TO_EDGE, GL_CLAMP_TO_BORDER, GL_MIRROR_CLAMP_TO_EDGE};

} // namespace

GLenum glBlendFactorOf(BLEND factor) {
    return lookUp(BLEND_FACTORS, factor);
}

GLenum glBlendOperationOf(BLEND_OPERATION operation) {
    return lookUp(BLEND_OPERATIONS, operation);
}

GLenum glComparisonOf(COMPARISON comparison) {
    return lookUp(COMPARISONS, comparison);
}

GLenum glStencilOperationOf(STENCIL_OPERATION operation) {
    return lookUp(STENCIL_OPERATIONS, operation);
}

GLenum glAddressOf(TEXTURE_ADDRESS address) {
    return lookUp(ADDRESSES, address);
}

std::optional<GLenum> glTopologyOf(PRIMITIVE_TOPOLOGY topology) {
    switch (topology) {
    case PRIMITIVE_TOPOLOGY::POINTLIST:
        return GL_POINTS;
    case PRIMITIVE_TOPOLOGY::LINELIST:
        return GL_LINES;
    case PRIMITIVE_TOPOLOGY::LINESTRIP:
        return GL_LINE_STRIP;
    case PRIMITIVE_TOPOLOGY::TRIANGLELIST:
        return GL_TRIANGLES;
    case PRIMITIVE_TOPOLOGY::TRIANGLESTRIP:
        return GL_TRIANGLE_STRIP;
    case PRIMITIVE_TOPOLOGY::LINELIST_ADJ:
        return GL_LINES_ADJACENCY;
    case PRIMITIVE_TOPOLOGY::LINESTRIP_ADJ:
        return GL_LINE_STRIP_ADJACENCY;
    case PRIMITIVE_TOPOLOGY::TRIANGLELIST_ADJ:
        return GL_TRIANGLES_ADJACENCY;
    case PRIMITIVE_TOPOLOGY::TRIANGLESTRIP_ADJ:
        return GL_TRIANGLE_STRIP_ADJACENCY;
    default: // patches need a tessellation stage
        return std::nullopt;
    }
}

GlFilter glFilterOf(FILTER filter) {
    // The bits are those of D3D11_FILTER, so that all combinations need no table.
    constexpr unsigned int MIP_LINEAR = 0x01;
    constexpr unsigned int MAG_LINEAR = 0x04;
    constexpr unsigned int MIN_LINEAR = 0x10;
    constexpr unsigned int ANISOTROPIC = 0x40;
    constexpr unsigned int COMPARISON = 0x80;
    const unsigned int bits = static_cast<unsigned int>(filter);
    GlFilter result;
    if (bits & MIN_LINEAR)
        result.minification = bits & MIP_LINEAR ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST;
    else
        result.minification = bits & MIP_LINEAR ? GL_NEAREST_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_NEAREST;
    result.magnification = bits & MAG_LINEAR ? GL_LINEAR : GL_NEAREST;
    result.anisotropic = (bits & ANISOTROPIC) != 0;
    result.comparison = (bits & COMPARISON) != 0;
    return result;
}

} // namespace ovGraphics::device

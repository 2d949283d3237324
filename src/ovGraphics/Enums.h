// The enumerations that callers see, numbered as Direct3D 11 and DXGI number them.
#pragma once

namespace ovGraphics {

/// The language branch of the dual-dialect shader text that the cross compiler takes.
enum class SHADER_LANGUAGE : unsigned int { GLSL = 0, HLSL = 1 };

/// Shape of a texture. A 2D texture of several slices is an array.
enum class TEXTURE_TYPE : unsigned int { TEXTURE_2D = 0, CUBE = 1 };

/// Life of a resource: unloaded, being loaded, usable by the device, fully loaded.
enum class RESOURCE_LOAD_STATE : unsigned int {
    UNLOADED = 0,
    LOADING = 1,
    READY_FOR_RENDERING = 2,
    LOADED = 3
};

/// Minification, magnification and mip filters in one value (D3D11_FILTER). The COMPARISON values return the
/// filtered outcome of comparisons with a reference value.
enum class FILTER : unsigned int {
    MIN_MAG_MIP_POINT = 0x00,
    MIN_MAG_POINT_MIP_LINEAR = 0x01,
    MIN_POINT_MAG_LINEAR_MIP_POINT = 0x04,
    MIN_POINT_MAG_MIP_LINEAR = 0x05,
    MIN_LINEAR_MAG_MIP_POINT = 0x10,
    MIN_LINEAR_MAG_POINT_MIP_LINEAR = 0x11,
    MIN_MAG_LINEAR_MIP_POINT = 0x14,
    MIN_MAG_MIP_LINEAR = 0x15,
    ANISOTROPIC = 0x55,
    COMPARISON_MIN_MAG_MIP_POINT = 0x80,
    COMPARISON_MIN_MAG_POINT_MIP_LINEAR = 0x81,
    COMPARISON_MIN_POINT_MAG_LINEAR_MIP_POINT = 0x84,
    COMPARISON_MIN_POINT_MAG_MIP_LINEAR = 0x85,
    COMPARISON_MIN_LINEAR_MAG_MIP_POINT = 0x90,
    COMPARISON_MIN_LINEAR_MAG_POINT_MIP_LINEAR = 0x91,
    COMPARISON_MIN_MAG_LINEAR_MIP_POINT = 0x94,
    COMPARISON_MIN_MAG_MIP_LINEAR = 0x95,
    COMPARISON_ANISOTROPIC = 0xd5
};

/// What a texture coordinate outside [0, 1] reads (D3D11_TEXTURE_ADDRESS_MODE).
enum class TEXTURE_ADDRESS : unsigned int { WRAP = 1, MIRROR = 2, CLAMP = 3, BORDER = 4, MIRROR_ONCE = 5 };

/// Comparison of a new value with a stored one (D3D11_COMPARISON_FUNC).
enum class COMPARISON : unsigned int {
    NEVER = 1,
    LESS = 2,
    EQUAL = 3,
    LESS_EQUAL = 4,
    GREATER = 5,
    NOT_EQUAL = 6,
    GREATER_EQUAL = 7,
    ALWAYS = 8
};

/// Blend factors (D3D11_BLEND).
enum class BLEND : unsigned int {
    ZERO = 1,
    ONE = 2,
    SRC_COLOR = 3,
    INV_SRC_COLOR = 4,
    SRC_ALPHA = 5,
    INV_SRC_ALPHA = 6,
    DEST_ALPHA = 7,
    INV_DEST_ALPHA = 8,
    DEST_COLOR = 9,
    INV_DEST_COLOR = 10,
    SRC_ALPHA_SAT = 11,
    BLEND_FACTOR = 14,
    INV_BLEND_FACTOR = 15,
    SRC1_COLOR = 16,
    INV_SRC1_COLOR = 17,
    SRC1_ALPHA = 18,
    INV_SRC1_ALPHA = 19
};

/// Blend operations (D3D11_BLEND_OP).
enum class BLEND_OPERATION : unsigned int { ADD = 1, SUBTRACT = 2, REV_SUBTRACT = 3, MIN = 4, MAX = 5 };

/// Bits of a colour write mask (D3D11_COLOR_WRITE_ENABLE).
enum COLOR_WRITE_MASK : unsigned int {
    COLOR_WRITE_RED = 1,
    COLOR_WRITE_GREEN = 2,
    COLOR_WRITE_BLUE = 4,
    COLOR_WRITE_ALPHA = 8,
    COLOR_WRITE_ALL = 15
};

/// Which faces are not drawn (D3D11_CULL_MODE). Front faces are clockwise on the target.
enum class CULL_MODE : unsigned int { NONE = 1, FRONT = 2, BACK = 3 };

/// How triangles are filled (D3D11_FILL_MODE).
enum class FILL_MODE : unsigned int { WIREFRAME = 2, SOLID = 3 };

/// Stencil operations (D3D11_STENCIL_OP).
enum class STENCIL_OPERATION : unsigned int {
    KEEP = 1,
    ZERO = 2,
    REPLACE = 3,
    INCR_SAT = 4,
    DECR_SAT = 5,
    INVERT = 6,
    INCR = 7,
    DECR = 8
};

/// How vertices make primitives (D3D_PRIMITIVE_TOPOLOGY). Patch lists of N control points are 32 + N.
enum class PRIMITIVE_TOPOLOGY : unsigned int {
    UNDEFINED = 0,
    POINTLIST = 1,
    LINELIST = 2,
    LINESTRIP = 3,
    TRIANGLELIST = 4,
    TRIANGLESTRIP = 5,
    LINELIST_ADJ = 10,
    LINESTRIP_ADJ = 11,
    TRIANGLELIST_ADJ = 12,
    TRIANGLESTRIP_ADJ = 13,
    PATCHLIST_1_CONTROL_POINT = 33,
    PATCHLIST_32_CONTROL_POINT = 64
};

} // namespace ovGraphics

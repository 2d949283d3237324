// Shader snippets of mathematics.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {

/// Constant texts in the shader dialect, to be put before the code that calls them. docs/shader-snippets.md
/// tells more; so does the head of each text.
class OV_API MathsLib {
public:
    /// `#define OV_PI 3.1415926535`, without a line end.
    static ovMemory::StringView ovMathsConstants();
    /// `float ovSafeAcos(float x)`: arc cosine with x clamped to [-1, 1]; radians.
    static ovMemory::StringView ovSafeAcos();
    /// `bool ovIsNan(float x)`: whether x is a NaN, by its bits.
    static ovMemory::StringView ovIsNan();
    /// `float ovComputeLinearDepth(float nonLinearDepth, float projectionA, float projectionB)`: view depth /
    /// far of a depth buffer's value, B / (d - A).
    static ovMemory::StringView ovComputeLinearDepth();
};

} // namespace ovVeldris

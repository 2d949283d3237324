// The fixed-function states of a draw, as plain records that the device translates.
#pragma once

#include <array>
#include <ovGraphics/formats/Enums.h>

namespace ovGraphics::device {

inline constexpr unsigned int MAX_COLOR_TARGETS = 8;

/// Blending into one colour target: operation(source * sourceFactor, destination * destinationFactor).
struct TargetBlendDesc {
    bool enabled = false;
    BLEND_OPERATION operation = BLEND_OPERATION::ADD;
    BLEND_OPERATION alphaOperation = BLEND_OPERATION::ADD;
    BLEND destinationFactor = BLEND::ZERO;
    BLEND alphaDestinationFactor = BLEND::ZERO;
    BLEND sourceFactor = BLEND::ONE;
    BLEND alphaSourceFactor = BLEND::ONE;
    unsigned int writeMask = COLOR_WRITE_ALL;
    bool operator==(const TargetBlendDesc&) const = default;
};

struct BlendStateDesc {
    bool alphaToCoverage = false;
    bool independentBlend = false; ///< false: every target blends as the first
    std::array<float, 4> blendFactor = {1.0f, 1.0f, 1.0f, 1.0f};
    std::array<TargetBlendDesc, MAX_COLOR_TARGETS> targets;
    bool operator==(const BlendStateDesc&) const = default;
};

struct RasterStateDesc {
    FILL_MODE fill = FILL_MODE::SOLID;
    CULL_MODE cull = CULL_MODE::BACK;
    bool frontCounterClockwise = false;
    float depthBias = 0.0f; ///< in units of the depth buffer's resolution
    float slopeScaledDepthBias = 0.0f;
    bool depthClip = true;
    bool operator==(const RasterStateDesc&) const = default;
};

struct StencilFaceDesc {
    STENCIL_OPERATION stencilFail = STENCIL_OPERATION::KEEP;
    STENCIL_OPERATION depthFail = STENCIL_OPERATION::KEEP;
    STENCIL_OPERATION pass = STENCIL_OPERATION::KEEP;
    COMPARISON comparison = COMPARISON::ALWAYS;
    bool operator==(const StencilFaceDesc&) const = default;
};

struct DepthStencilStateDesc {
    bool depthTest = true;
    bool depthWrite = true;
    COMPARISON depthComparison = COMPARISON::LESS;
    bool stencilTest = false;
    unsigned int stencilReadMask = 0xff;
    unsigned int stencilWriteMask = 0xff;
    unsigned int stencilReference = 0;
    StencilFaceDesc front;
    StencilFaceDesc back;
    bool operator==(const DepthStencilStateDesc&) const = default;
};

} // namespace ovGraphics::device

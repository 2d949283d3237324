// How triangles become pixels.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/device/PipelineState.h>

namespace ovGraphics {

/// A raster state. New: solid, back faces culled, front faces clockwise on the target, no bias, depth
/// clipped.
class OV_API RasterState {
public:
    void setFillMode(FILL_MODE fill) { _desc.fill = fill; }
    void setCullMode(CULL_MODE cull) { _desc.cull = cull; }
    void setFrontCounterClockwise(bool counterClockwise) { _desc.frontCounterClockwise = counterClockwise; }
    /// @param bias in units of the depth buffer's resolution @param slopeScaled times the slope of the
    /// triangle
    void setDepthBias(float bias, float slopeScaled) {
        _desc.depthBias = bias;
        _desc.slopeScaledDepthBias = slopeScaled;
    }
    /// False: depths beyond near and far are clamped instead of clipped.
    void setDepthClipEnabled(bool enabled) { _desc.depthClip = enabled; }

    const device::RasterStateDesc& getDesc() const { return _desc; }

private:
    device::RasterStateDesc _desc;
};

} // namespace ovGraphics

// How depth and stencil decide whether a pixel is drawn.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/device/PipelineState.h>

namespace ovGraphics {

/// A depth and stencil state. New: depth tested with LESS and written, no stencil.
class OV_API DepthStencilState {
public:
    void setDepthTestEnabled(bool enabled) { _desc.depthTest = enabled; }
    void setDepthWriteEnabled(bool enabled) { _desc.depthWrite = enabled; }
    void setDepthComparison(COMPARISON comparison) { _desc.depthComparison = comparison; }
    void setStencilTestEnabled(bool enabled) { _desc.stencilTest = enabled; }
    void setStencilMasks(unsigned int read, unsigned int write) {
        _desc.stencilReadMask = read;
        _desc.stencilWriteMask = write;
    }
    void setStencilReference(unsigned int reference) { _desc.stencilReference = reference; }
    void setStencilFaces(const device::StencilFaceDesc& front, const device::StencilFaceDesc& back) {
        _desc.front = front;
        _desc.back = back;
    }

    const device::DepthStencilStateDesc& getDesc() const { return _desc; }

private:
    device::DepthStencilStateDesc _desc;
};

} // namespace ovGraphics

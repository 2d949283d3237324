// How the outputs of a pass are combined with what the target holds.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/device/PipelineState.h>

namespace ovGraphics {

/// A blend state. New: every target written without blending. Values first, target index (0 to 7) second; an
/// index out of range is ignored. Changes take effect at the next pass that uses the state.
class OV_API BlendState {
public:
    void setAlphaToCoverageEnabled(bool enabled) { _desc.alphaToCoverage = enabled; }
    /// False (the default): every target blends as target 0 does.
    void setIndependentBlendEnabled(bool enabled) { _desc.independentBlend = enabled; }

    void setBlendEnabled(bool enabled, unsigned int target);
    void setOperation(BLEND_OPERATION operation, unsigned int target);
    void setAlphaOperation(BLEND_OPERATION operation, unsigned int target);
    void setDestinationFactor(BLEND factor, unsigned int target);
    void setAlphaDestinationFactor(BLEND factor, unsigned int target);
    void setSourceFactor(BLEND factor, unsigned int target);
    void setAlphaSourceFactor(BLEND factor, unsigned int target);
    /// Sum of COLOR_WRITE_MASK bits. Default all.
    void setWriteMask(unsigned int mask, unsigned int target);
    /// What the BLEND_FACTOR factors mean. Default (1, 1, 1, 1).
    void setBlendFactor(float red, float green, float blue, float alpha);

    const device::BlendStateDesc& getDesc() const { return _desc; }

private:
    device::BlendStateDesc _desc;
};

} // namespace ovGraphics

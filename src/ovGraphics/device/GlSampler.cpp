#include <ovGraphics/device/GlSamplerInternal.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovGraphics/device/GlCoreInternal.h>
#include <ovGraphics/device/GlStatesInternal.h>

namespace ovGraphics::device {

ovMemory::UniquePtr<GlSampler> GlSampler::create(GlCore& core, const SamplerDesc& desc,
                                                 ovMemory::String& error) {
    error.clear();
    // OpenGL takes such numbers without an error and leaves the result undefined.
    if (std::isnan(desc.minLod) || std::isnan(desc.maxLod) || desc.minLod > desc.maxLod) {
        error = fmt::format(
            "Sampler with levels from {} to {} cannot be made: the first must not be above the second",
            desc.minLod, desc.maxLod);
        return nullptr;
    }
    ovMemory::UniquePtr<GlSampler> sampler(new GlSampler(core));
    sampler->_apply(desc);
    return sampler;
}

void GlSampler::_apply(const SamplerDesc& desc) {
    const GlFilter filter = glFilterOf(desc.filter);
    const auto setInt = [this](GLenum name, GLenum value) {
        glSamplerParameteri(_name, name, static_cast<GLint>(value));
    };
    // Where level 0 is all that may be read, nothing is ever minified (OpenGL 4.6, 8.14.3: a level of 0 or
    // less takes the magnification filter). Telling so saves the software rasteriser the choice at each
    // fetch, a quarter of the time of a blur.
    const bool readsLevelZeroAlone = desc.minLod == 0.0f && desc.maxLod == 0.0f && !filter.anisotropic;
    glCreateSamplers(1, &_name);
    setInt(GL_TEXTURE_MIN_FILTER, readsLevelZeroAlone ? filter.magnification : filter.minification);
    setInt(GL_TEXTURE_MAG_FILTER, filter.magnification);
    setInt(GL_TEXTURE_WRAP_S, glAddressOf(desc.addressU));
    setInt(GL_TEXTURE_WRAP_T, glAddressOf(desc.addressV));
    setInt(GL_TEXTURE_WRAP_R, glAddressOf(desc.addressW));
    glSamplerParameterfv(_name, GL_TEXTURE_BORDER_COLOR, desc.borderColor.data());
    glSamplerParameterf(_name, GL_TEXTURE_MIN_LOD, desc.minLod);
    glSamplerParameterf(_name, GL_TEXTURE_MAX_LOD, desc.maxLod);
    glSamplerParameterf(_name, GL_TEXTURE_LOD_BIAS, desc.lodBias);
    // OpenGL takes a number below 1 for an error, and the interface promises that the device's limit caps it.
    if (filter.anisotropic && _core.info.maxAnisotropy > 1.0f)
        glSamplerParameterf(
            _name, GL_TEXTURE_MAX_ANISOTROPY_EXT,
            std::clamp(static_cast<float>(desc.maxAnisotropy), 1.0f, _core.info.maxAnisotropy));
    _compares = filter.comparison;
    if (!_compares)
        return;
    setInt(GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    setInt(GL_TEXTURE_COMPARE_FUNC, glComparisonOf(desc.comparison));
}

GlSampler::~GlSampler() {
    _core.makeCurrent();
    _core.pipeline.forgetSampler(_name);
    glDeleteSamplers(1, &_name);
}

} // namespace ovGraphics::device

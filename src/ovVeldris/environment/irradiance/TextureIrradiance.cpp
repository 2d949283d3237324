#include <ovVeldris/environment/irradiance/TextureIrradiance.h>

#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>

namespace ovVeldris {

IrradianceMapLayout irradianceLayoutOf(ovGraphics::Texture& texture) {
    const ovGraphics::device::GpuTexture* held = texture.getGpuTexture();
    if (!held)
        return {.slices = 0};
    const ovGraphics::device::TextureDesc& desc = held->getDesc();
    return {desc.type == ovGraphics::TEXTURE_TYPE::CUBE, desc.format, desc.width, desc.height, desc.slices};
}

IRRADIANCE_FAILURE computeIrradianceCoefficients(ovGraphics::Texture& texture,
                                                 IrradianceCoefficients& coefficients) {
    IrradianceTransform transform(irradianceLayoutOf(texture));
    const IrradianceMapLayout& layout = transform.getLayout();
    if (layout.slices == 0)
        return IRRADIANCE_FAILURE::UNLOADED;
    if (ovGraphics::TextureUtils::isFormatCompressed(layout.format))
        return IRRADIANCE_FAILURE::COMPRESSED;
    // Apart from the result, which stays as it was when a slice cannot be read.
    IrradianceCoefficients sums;
    for (unsigned int slice = 0; slice < layout.slices; ++slice) {
        const auto bytes = texture.readBack(slice);
        if (!bytes || !transform.project(slice, *bytes, 0, sums))
            return IRRADIANCE_FAILURE::UNREADABLE;
    }
    coefficients = sums;
    return IRRADIANCE_FAILURE::NONE;
}

} // namespace ovVeldris

#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/environment/irradiance/TextureIrradiance.h>

namespace ovVeldris {

namespace {

using ovGraphics::TextureUtils;

/// An empty texture of the input's layout, with what was in it lost.
void prepareOutput(ovGraphics::Texture& output, ovGraphics::Texture& input,
                   const IrradianceMapLayout& layout) {
    // What the device holds decides, since the settings may have changed after the load.
    const bool isGammaCorrected = input.getGpuTexture()->getDesc().gammaCorrected;
    const bool hasSrgbSibling = TextureUtils::getFormatSrgbEquivalent(layout.format) != layout.format;
    output.reset();
    output.setTexType(layout.isCube ? ovGraphics::TEXTURE_TYPE::CUBE : ovGraphics::TEXTURE_TYPE::TEXTURE_2D);
    output.setFormat(layout.format);
    output.setGammaCorrected(isGammaCorrected && hasSrgbSibling);
    output.setWidth(layout.width);
    output.setHeight(layout.height);
    output.setSliceCount(layout.slices);
    output.setUsableAsRenderTarget(input.getUsableAsRenderTarget());
    // A format that shaders cannot read has no mips to be averaged into.
    const bool canHaveMips =
        TextureUtils::isFormatCompatibleForRenderFlag(layout.format, 1, TextureUtils::BIND_SHADER_RESOURCE);
    output.setMightManuallyGenerateMip(canHaveMips);
    output.setMipCount(canHaveMips ? 0 : 1);
}

void drawSlices(ovGraphics::Texture& output, const IrradianceCoefficients& coefficients,
                const IrradianceMapLayout& layout) {
    IrradianceTransform transform(layout);
    const std::size_t rowPitch = transform.getTightPitch();
    ovMemory::Buffer<unsigned char> bytes(rowPitch * layout.height);
    for (unsigned int slice = 0; slice < layout.slices; ++slice) {
        transform.evaluate(coefficients, slice, bytes, rowPitch);
        // The length of the bytes says it too, and it has 32 bits only.
        output.addCpuDataSliceForward(bytes, static_cast<unsigned int>(rowPitch), 0);
    }
}

} // namespace

void PbsEnvironmentMapFilter::requestIrradianceComputing(ovGraphics::Texture* input,
                                                         ovGraphics::Texture* output) {
    if (!input || !output)
        return _log("Requested irradiance SH computing, but one of the textures is null. Aborting.");
    const ovMemory::String of =
        "Requested irradiance SH computing of texture '" + ovMemory::String(input->getName()) + "'";
    if (input->isUnloaded())
        return _log(of +
                    " using CPU data only, but this is not supported currently. Please load the texture. "
                    "Aborting.");
    const IrradianceMapLayout layout = irradianceLayoutOf(*input);
    if (TextureUtils::isFormatCompressed(layout.format))
        return _log(of + " but texture is from a compressed format. This is not supported, aborting.");
    if (input == output)
        return _log(of + " into itself, compute it into another one. Aborting.");
    // The checks end here: from now on the output is changed.
    prepareOutput(*output, *input, layout);
    IrradianceCoefficients coefficients;
    if (computeIrradianceCoefficients(*input, coefficients) != IRRADIANCE_FAILURE::NONE)
        return logMessage(_system.get(),
                          "Could not map texture '" + ovMemory::String(input->getName()) +
                              "' for SH irradiance computing. Aborting.",
                          "TextureUtils");
    if (!IrradianceTransform(layout).isFormatListed())
        _log("Computing SH for irradiance for texture '" + ovMemory::String(input->getName()) +
             "', but format is not fully implemented in switch. Defaulting to uchar as CPU data, but that "
             "might "
             "be erroneous.");
    drawSlices(*output, coefficients, layout);
    if (!output->load())
        _log("Irradiance texture '" + ovMemory::String(output->getName()) +
             "' cannot be loaded, the graphics system's log says why.");
}

} // namespace ovVeldris

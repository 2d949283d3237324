#include <ovVeldris/environment/irradiance/detail/IrradianceComponents.h>

#include <algorithm>
#include <ovGraphics/formats/TextureUtils.h>

namespace ovVeldris {

namespace {

using ovGraphics::FORMAT;
using ovGraphics::TextureUtils;

std::size_t sizeOf(IRRADIANCE_COMPONENT component) {
    const bool isByte = component == IRRADIANCE_COMPONENT::UINT8 || component == IRRADIANCE_COMPONENT::SINT8;
    return isByte ? 1 : 4;
}

void chooseComponent(FORMAT format, IrradianceComponents& components) {
    components.isListed = true;
    switch (format) {
    case FORMAT::R32G32B32A32_TYPELESS:
    case FORMAT::R32G32B32A32_FLOAT:
    case FORMAT::R32G32B32_TYPELESS:
    case FORMAT::R32G32B32_FLOAT:
        components.component = IRRADIANCE_COMPONENT::FLOAT32;
        break;
    case FORMAT::R32G32B32A32_UINT:
    case FORMAT::R32G32B32_UINT:
        components.component = IRRADIANCE_COMPONENT::UINT32;
        break;
    case FORMAT::R32G32B32A32_SINT:
    case FORMAT::R32G32B32_SINT:
        components.component = IRRADIANCE_COMPONENT::SINT32;
        break;
    case FORMAT::R8G8B8A8_TYPELESS:
    case FORMAT::R8G8B8A8_UNORM:
    case FORMAT::R8G8B8A8_UNORM_SRGB:
    case FORMAT::R8G8B8A8_UINT:
        components.component = IRRADIANCE_COMPONENT::UINT8;
        break;
    case FORMAT::R8G8B8A8_SNORM:
    case FORMAT::R8G8B8A8_SINT:
        components.component = IRRADIANCE_COMPONENT::SINT8;
        break;
    // An unlisted format is read as bytes, because the interface promises that every uncompressed format
    // gives something.
    default:
        components.component = IRRADIANCE_COMPONENT::UINT8;
        components.isListed = false;
    }
}

} // namespace

IrradianceComponents irradianceComponentsOf(FORMAT format) {
    IrradianceComponents components;
    chooseComponent(format, components);
    // Formats of several texels a block have no bytes of a single texel.
    if (TextureUtils::getFormatBlockWidth(format) != 1 || TextureUtils::getFormatBlockHeight(format) != 1)
        return components;
    components.texelSize = TextureUtils::getFormatBlockSize(format);
    const std::size_t room = components.texelSize / sizeOf(components.component);
    components.channels =
        static_cast<unsigned int>(std::min<std::size_t>(TextureUtils::getFormatChannelCount(format), room));
    components.scale = TextureUtils::isFormatOver255(format) ? 255.0 : 1.0;
    return components;
}

} // namespace ovVeldris

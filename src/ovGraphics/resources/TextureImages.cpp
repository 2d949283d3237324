#include <ovGraphics/resources/TextureImages.h>

#include <algorithm>
#include <array>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovImages/Conversion.h>
#include <utility>

namespace ovGraphics {

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;

struct ImageFormat {
    FORMAT format;
    COMPONENT_TYPE type;
    unsigned int channels;
    bool swapRedAndBlue = false;
};

// The first entry of a component type and channel count is the format that images of that kind become.
constexpr std::array IMAGE_FORMATS = {
    ImageFormat{FORMAT::R8_UNORM, COMPONENT_TYPE::UINT8, 1},
    ImageFormat{FORMAT::R8G8_UNORM, COMPONENT_TYPE::UINT8, 2},
    ImageFormat{FORMAT::R8G8B8A8_UNORM, COMPONENT_TYPE::UINT8, 4},
    ImageFormat{FORMAT::R8G8B8A8_UNORM_SRGB, COMPONENT_TYPE::UINT8, 4},
    ImageFormat{FORMAT::B8G8R8A8_UNORM, COMPONENT_TYPE::UINT8, 4, true},
    ImageFormat{FORMAT::B8G8R8A8_UNORM_SRGB, COMPONENT_TYPE::UINT8, 4, true},
    ImageFormat{FORMAT::A8_UNORM, COMPONENT_TYPE::UINT8, 1},
    ImageFormat{FORMAT::R16_UNORM, COMPONENT_TYPE::UINT16, 1},
    ImageFormat{FORMAT::R16G16_UNORM, COMPONENT_TYPE::UINT16, 2},
    ImageFormat{FORMAT::R16G16B16A16_UNORM, COMPONENT_TYPE::UINT16, 4},
    ImageFormat{FORMAT::D16_UNORM, COMPONENT_TYPE::UINT16, 1},
    ImageFormat{FORMAT::R16_FLOAT, COMPONENT_TYPE::HALF, 1},
    ImageFormat{FORMAT::R16G16_FLOAT, COMPONENT_TYPE::HALF, 2},
    ImageFormat{FORMAT::R16G16B16A16_FLOAT, COMPONENT_TYPE::HALF, 4},
    ImageFormat{FORMAT::R32_FLOAT, COMPONENT_TYPE::FLOAT, 1},
    ImageFormat{FORMAT::R32G32_FLOAT, COMPONENT_TYPE::FLOAT, 2},
    ImageFormat{FORMAT::R32G32B32_FLOAT, COMPONENT_TYPE::FLOAT, 3},
    ImageFormat{FORMAT::R32G32B32A32_FLOAT, COMPONENT_TYPE::FLOAT, 4},
    ImageFormat{FORMAT::D32_FLOAT, COMPONENT_TYPE::FLOAT, 1},
};

FORMAT formatOf(COMPONENT_TYPE type, unsigned int channels) {
    const auto entry =
        std::find_if(IMAGE_FORMATS.begin(), IMAGE_FORMATS.end(), [&](const ImageFormat& candidate) {
            return candidate.type == type && candidate.channels == channels;
        });
    return entry != IMAGE_FORMATS.end() ? entry->format : FORMAT::UNKNOWN;
}

TextureContent convertedContent(const ovImages::ImageView& image, COMPONENT_TYPE type, unsigned int channels,
                                COLOR_ENCODING encoding) {
    TextureContent content;
    content.format = formatOf(type, channels);
    if (image.componentType == type && image.channels == channels && image.encoding == encoding)
        return content;
    content.converted = ovImages::convertImage(image, type, channels, encoding);
    if (content.converted.isEmpty()) // a broken image: no texture will load
        content.format = FORMAT::UNKNOWN;
    return content;
}

// Images know one order only. Textures of windows and old files have blue first.
void swapRedAndBlue(ovMemory::BufferView<unsigned char> bytes) {
    for (std::size_t pixel = 0; pixel + 4 <= bytes.size(); pixel += 4)
        std::swap(bytes[pixel], bytes[pixel + 2]);
}

} // namespace

TextureContent textureContentOf(const ovImages::ImageView& image, bool raw) {
    const bool encoded = image.encoding == COLOR_ENCODING::SRGB && !raw;
    const bool isFloat = image.componentType == COMPONENT_TYPE::FLOAT;
    if (encoded && image.componentType == COMPONENT_TYPE::UINT8) {
        TextureContent content = convertedContent(image, COMPONENT_TYPE::UINT8, 4, COLOR_ENCODING::SRGB);
        content.gammaCorrected = true;
        return content;
    }
    if (encoded)
        return convertedContent(image, COMPONENT_TYPE::FLOAT,
                                image.channels == 2 || image.channels == 4 ? 4 : 3, COLOR_ENCODING::LINEAR);
    // Of three channels the device has 32-bit formats only.
    const unsigned int channels = image.channels == 3 && !isFloat ? 4 : image.channels;
    return convertedContent(image, image.componentType, channels, image.encoding);
}

ovMemory::UniquePtr<ovImages::Image> imageOf(ovMemory::Buffer<unsigned char> texels, FORMAT format,
                                             bool gammaCorrected, unsigned int width, unsigned int height) {
    const auto entry = std::find_if(IMAGE_FORMATS.begin(), IMAGE_FORMATS.end(),
                                    [&](const ImageFormat& candidate) { return candidate.format == format; });
    if (entry == IMAGE_FORMATS.end())
        return nullptr;
    const bool encoded = gammaCorrected || TextureUtils::isFormatSrgb(format);
    auto image = std::make_unique<ovImages::Image>(width, height, entry->channels, entry->type,
                                                   encoded ? COLOR_ENCODING::SRGB : COLOR_ENCODING::LINEAR,
                                                   std::move(texels));
    if (image->isEmpty())
        return nullptr;
    if (entry->swapRedAndBlue)
        swapRedAndBlue(image->getBytes());
    return image;
}

} // namespace ovGraphics

#include <ovImages/PictureFile.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fmt/format.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>

namespace ovImages {

namespace {

constexpr std::uint16_t HALF_ONE = 0x3c00;

/// Whether the last component of every pixel is exactly a number.
template <typename Component>
bool endsEverywhereWith(const ImageView& picture, Component one) {
    const std::size_t pixelSize = picture.channels * sizeof(Component);
    for (std::size_t end = pixelSize; end <= picture.bytes.size(); end += pixelSize) {
        Component last;
        std::memcpy(&last, picture.bytes.data() + end - sizeof(Component), sizeof(Component));
        if (last != one)
            return false;
    }
    return true;
}

// What a format takes beyond its form is kept, as rounding it would be a loss.
COMPONENT_TYPE componentsFor(const Encoder& format, COMPONENT_TYPE present) {
    const bool isKept = (format.getName() == "PNG" && present == COMPONENT_TYPE::UINT16) ||
                        (format.getName() == "EXR" && present == COMPONENT_TYPE::HALF);
    return isKept ? present : formOf(format).components;
}

} // namespace

FileForm formOf(const Encoder& format) {
    if (format.getName() == "EXR" || format.getName() == "HDR")
        return {};
    return {COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB};
}

bool isOpaque(const ImageView& picture) {
    if (picture.channels == 1 || picture.channels == 3)
        return true;
    switch (picture.componentType) {
    case COMPONENT_TYPE::UINT8:
        return endsEverywhereWith(picture, std::uint8_t(0xff));
    case COMPONENT_TYPE::UINT16:
        return endsEverywhereWith(picture, std::uint16_t(0xffff));
    case COMPONENT_TYPE::HALF:
        return endsEverywhereWith(picture, HALF_ONE);
    default:
        return endsEverywhereWith(picture, 1.0f);
    }
}

void dropOpaqueAlpha(Image& picture) {
    if (picture.getChannels() != 4 || !isOpaque(picture.view()))
        return;
    const unsigned int width = picture.getWidth();
    const unsigned int height = picture.getHeight();
    const COMPONENT_TYPE type = picture.getComponentType();
    const COLOR_ENCODING encoding = picture.getEncoding();
    const std::size_t size = getComponentSize(type);
    ovMemory::Buffer<unsigned char> bytes = picture.takeBytes();
    unsigned char* to = bytes.data();
    for (std::size_t at = 0; at < bytes.size(); at += 4 * size)
        to = std::copy_n(bytes.data() + at, 3 * size, to); // forwards, so that nothing is overwritten unread
    bytes.resize(bytes.size() / 4 * 3);
    picture = Image(width, height, 3, type, encoding, std::move(bytes));
}

ImageView convertForFile(const Encoder& format, const ImageView& picture, bool raw, Image& converted,
                         ovMemory::String& warning) {
    const COLOR_ENCODING encoding = formOf(format).encoding;
    ImageView source = picture;
    // Only the label changes, so that the conversion below leaves the numbers as they are.
    if (raw)
        source.encoding = encoding;
    const COMPONENT_TYPE components = componentsFor(format, source.componentType);
    const bool dropsAlpha = source.channels % 2 == 0 && isOpaque(source);
    const unsigned int channels = source.channels - (dropsAlpha ? 1 : 0);
    warning.clear();
    if (source.componentType == components && source.encoding == encoding && source.channels == channels)
        return source;
    converted = convertImage(source, components, channels, encoding, &warning);
    return converted.view();
}

ovMemory::Result savePicture(ovMemory::StringView path, const ImageView& picture, bool raw) {
    const CompositeEncoder encoders;
    ovMemory::String problem;
    if (!isValid(picture, &problem))
        return ovMemory::failed(fmt::format("Encoding file '{}' failed: {}", path, problem),
                                ovMemory::String(path));
    const Encoder* format = encoders.findByExtension(path);
    if (!format)
        return encoders.encodeFile(path, picture); // which tells the extensions
    Image converted;
    ovMemory::String loss;
    ovMemory::Result written =
        encoders.encodeFile(path, convertForFile(*format, picture, raw, converted, loss));
    if (written && !loss.empty())
        written.warning = fmt::format("Encoding file '{}': {}{}{}", path, loss,
                                      written.warning.empty() ? "" : "; ", written.warning);
    return written;
}

} // namespace ovImages

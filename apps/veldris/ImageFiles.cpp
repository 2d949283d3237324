#include <veldris/ImageFiles.h>

#include <algorithm>
#include <fmt/format.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <veldris/console/OutputFile.h>

namespace veldris {

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::ImageView;
using ovMemory::String;
using ovMemory::StringView;

bool holdsFloats(const ovImages::Encoder& format) {
    return format.getName() == "EXR" || format.getName() == "HDR";
}

// A picture without holes is written without alpha, which would only make the file larger.
bool isOpaque(const ImageView& picture) {
    if (picture.channels == 3)
        return true;
    const std::size_t pixels = std::size_t(picture.width) * picture.height;
    if (picture.componentType == COMPONENT_TYPE::UINT8) {
        for (std::size_t i = 0; i < pixels; ++i)
            if (picture.bytes[4 * i + 3] != 255)
                return false;
        return true;
    }
    const auto* floats = reinterpret_cast<const float*>(picture.bytes.data());
    for (std::size_t i = 0; i < pixels; ++i)
        if (floats[4 * i + 3] != 1.0f)
            return false;
    return true;
}

FileForm formOf(const ovImages::Encoder& format) {
    return holdsFloats(format) ? FileForm() : FileForm{COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB};
}

const ovImages::Encoder* findFormat(const ovImages::CompositeEncoder& encoders, const String& path,
                                    String& error) {
    const ovImages::Encoder* format = encoders.findByExtension(nameWithFormat(path));
    if (!format)
        error = fmt::format(
            "'{}' names no image format by its extension; write .{}, or png:- for standard output.", path,
            fmt::join(encoders.getExtensions(), ", ."));
    return format;
}

} // namespace

ovMemory::Result encodePicture(const ovImages::Encoder& format, StringView output, const ImageView& picture) {
    const ovImages::EncodeResult encoded = format.encode(picture);
    if (!encoded)
        return ovMemory::failed(fmt::format("encoding '{}' failed: {}", output, encoded.error));
    ovMemory::Result written = writeOutput(output, ovMemory::BufferView<const unsigned char>(encoded.bytes));
    if (written && !encoded.warning.empty())
        written.warning = fmt::format("encoding '{}': {}", output, encoded.warning);
    return written;
}

PICTURE_CONTENT contentOf(const ImageView& image) {
    return image.encoding == COLOR_ENCODING::SRGB ? PICTURE_CONTENT::SRGB_ENCODED
                                                  : PICTURE_CONTENT::SCENE_LINEAR;
}

bool contentOfFormat(const String& path, std::optional<PICTURE_CONTENT>& content, String& error) {
    const ovImages::CompositeEncoder encoders;
    const ovImages::Encoder* format = findFormat(encoders, path, error);
    if (!format)
        return false;
    content = holdsFloats(*format) ? std::nullopt : std::optional(PICTURE_CONTENT::SRGB_ENCODED);
    return true;
}

void dropOpaqueAlpha(ovImages::Image& picture) {
    if (picture.getChannels() != 4 || !isOpaque(picture.view()))
        return;
    const unsigned int width = picture.getWidth();
    const unsigned int height = picture.getHeight();
    const COMPONENT_TYPE type = picture.getComponentType();
    const COLOR_ENCODING encoding = picture.getEncoding();
    const std::size_t size = ovImages::getComponentSize(type);
    ovMemory::Buffer<unsigned char> bytes = picture.takeBytes();
    unsigned char* to = bytes.data();
    for (std::size_t at = 0; at < bytes.size(); at += 4 * size)
        to = std::copy_n(bytes.data() + at, 3 * size, to); // forwards, so that nothing is overwritten unread
    bytes.resize(bytes.size() / 4 * 3);
    picture = ovImages::Image(width, height, 3, type, encoding, std::move(bytes));
}

FileForm formOfFile(const String& path) {
    const ovImages::CompositeEncoder encoders;
    const ovImages::Encoder* format = encoders.findByExtension(nameWithFormat(path));
    return format ? formOf(*format) : FileForm();
}

void layBehind(ovImages::Image& picture, const ovMaths::Vector& color, PICTURE_CONTENT content) {
    const bool isEncoded = content == PICTURE_CONTENT::SRGB_ENCODED;
    const float background[] = {color.x, color.y, color.z};
    auto* pixel = reinterpret_cast<float*>(picture.getBytes().data());
    const float* end = pixel + picture.getBytes().size() / sizeof(float);
    for (; pixel != end; pixel += 4) {
        const float alpha = pixel[3];
        for (unsigned int i = 0; i < 3 && alpha < 1.0f; ++i) {
            const float light = isEncoded ? ovImages::srgbToLinear(pixel[i]) : pixel[i];
            const float mixed = alpha * light + (1.0f - alpha) * background[i];
            pixel[i] = isEncoded ? ovImages::linearToSrgb(mixed) : mixed;
        }
        pixel[3] = 1.0f;
    }
}

bool writePicture(const String& path, const ImageView& picture, bool raw, String& warning, String& error) {
    const ovImages::CompositeEncoder encoders;
    const ovImages::Encoder* format = findFormat(encoders, path, error);
    if (!format)
        return false;
    const FileForm form = formOf(*format);
    ImageView source = picture;
    // Only the label changes, so that the conversion below leaves the numbers as they are.
    if (raw)
        source.encoding = form.encoding;
    const unsigned int channels = isOpaque(picture) ? 3 : 4;
    warning.clear();
    ovImages::Image converted;
    if (source.componentType != form.components || source.encoding != form.encoding ||
        source.channels != channels) {
        converted = ovImages::convertImage(source, form.components, channels, form.encoding, &warning);
        source = converted.view();
    }
    const ovMemory::Result written = encodePicture(*format, path, source);
    error = written.error;
    if (!written.warning.empty())
        warning += (warning.empty() ? "" : "; ") + written.warning;
    return error.empty();
}

} // namespace veldris

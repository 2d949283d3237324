#include <veldris/ImageFiles.h>

#include <fmt/format.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovImages/PictureFile.h>
#include <veldris/console/OutputFile.h>

namespace veldris {

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::ImageView;
using ovMemory::String;
using ovMemory::StringView;

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
    content = ovImages::formOf(*format).encoding == COLOR_ENCODING::LINEAR
                  ? std::nullopt
                  : std::optional(PICTURE_CONTENT::SRGB_ENCODED);
    return true;
}

ovImages::FileForm formOfFile(const String& path) {
    const ovImages::CompositeEncoder encoders;
    const ovImages::Encoder* format = encoders.findByExtension(nameWithFormat(path));
    return format ? ovImages::formOf(*format) : ovImages::FileForm();
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
    ovImages::Image converted;
    const ImageView source = ovImages::convertForFile(*format, picture, raw, converted, warning);
    const ovMemory::Result written = encodePicture(*format, path, source);
    error = written.error;
    if (!written.warning.empty())
        warning += (warning.empty() ? "" : "; ") + written.warning;
    return error.empty();
}

} // namespace veldris

#include <ovImages/detail/Results.h>

#include <ovImages/detail/Components.h>

#include <fmt/format.h>

#include <algorithm>

namespace ovImages::detail {

ovMemory::String describeExcessiveSize(std::uint64_t width, std::uint64_t height, std::uint64_t bytesPerPixel,
                                       const DecodeOptions& options) {
    if (width == 0 || height == 0)
        return fmt::format("the picture is {} x {} pixels: it has none", width, height);
    if (width > MAX_IMAGE_SIDE || height > MAX_IMAGE_SIDE)
        return fmt::format("the picture is {} x {} pixels: a side has at most {}", width, height,
                           MAX_IMAGE_SIDE);
    // No overflow: both sides are below 2^20 here.
    const std::uint64_t bytes = width * height * bytesPerPixel;
    const std::uint64_t limit = std::min(options.maxBytes, MAX_IMAGE_BYTES);
    if (bytes > limit)
        return fmt::format("the picture of {} x {} pixels takes {} bytes: at most {} are allowed", width,
                           height, bytes, limit);
    return {};
}

bool allocateImage(DecodeResult& result, ovMemory::StringView format, unsigned width, unsigned height,
                   unsigned channels, COMPONENT_TYPE type, COLOR_ENCODING encoding) {
    result.image = std::make_unique<Image>(width, height, channels, type, encoding);
    if (!result.image->isEmpty())
        return true;
    result.image.reset();
    result.error = fmt::format("{}: no memory for {} x {} pixels", format, width, height);
    return false;
}

void appendWarning(ovMemory::String& warning, ovMemory::StringView text) {
    // Warnings are collected in one line: a picture may lose its alpha and its encoding at once.
    if (!warning.empty())
        warning += "; ";
    warning += text;
}

void warnOfEncoding(ovMemory::String& warning, const ImageView& view, ovMemory::StringView format,
                    COLOR_ENCODING expected) {
    if (view.encoding == expected)
        return;
    const bool isLinear = view.encoding == COLOR_ENCODING::LINEAR;
    appendWarning(warning,
                  fmt::format("{}: the numbers are {} and stored as they are, but readers take them for {}",
                              format, isLinear ? "linear" : "sRGB-encoded", isLinear ? "sRGB" : "linear"));
}

bool hasTransparency(const ImageView& view) {
    if (view.channels % 2 != 0)
        return false;
    // Alpha that is 1 everywhere is no loss, and most pictures with four channels have it; a warning for each
    // would be noise.
    const std::size_t componentSize = getComponentSize(view.componentType);
    const std::size_t pixelSize = componentSize * view.channels;
    for (std::size_t i = pixelSize - componentSize; i < view.bytes.size(); i += pixelSize) {
        float alpha = 0.0f;
        loadComponents(view.bytes.data() + i, view.componentType, {&alpha, 1});
        if (alpha != 1.0f)
            return true;
    }
    return false;
}

void warnOfDroppedAlpha(ovMemory::String& warning, const ImageView& view, ovMemory::StringView format) {
    if (hasTransparency(view))
        appendWarning(warning, fmt::format("{}: the format has no alpha, which was dropped", format));
}

} // namespace ovImages::detail

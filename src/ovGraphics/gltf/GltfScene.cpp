#include <ovGraphics/gltf/GltfScene.h>

#include <fmt/format.h>
#include <ovGraphics/gltf/detail/GltfReport.h>
#include <ovImages/CompositeEncoder.h>

namespace ovGraphics {

ovImages::DecodeResult GltfImage::decode(ovImages::COLOR_ENCODING encoding, std::size_t maxBytes) const {
    ovImages::DecodeResult result;
    if (isMissing()) {
        result.error = fmt::format("image {} is missing", detail::quoteGltf(name));
        return result;
    }
    ovImages::DecodeOptions options;
    options.applyOrientation = false;
    options.maxBytes = maxBytes;
    result = ovImages::CompositeEncoder().decode(bytes, options);
    if (result.image)
        result.image->setEncoding(encoding);
    else
        result.error = fmt::format("image {}: {}", detail::quoteGltf(name), result.error);
    return result;
}

} // namespace ovGraphics

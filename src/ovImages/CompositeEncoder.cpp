#include <ovImages/CompositeEncoder.h>

#include <ovImages/ExrEncoder.h>
#include <ovImages/HdrEncoder.h>
#include <ovImages/JpgEncoder.h>
#include <ovImages/PngEncoder.h>
#include <ovImages/detail/Results.h>
#include <ovResources/Files.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>

namespace ovImages {

namespace {

constexpr ovMemory::StringView NAME = "Composite";
constexpr std::size_t PNG_INDEX = 0;
constexpr std::size_t EXR_INDEX = 2;

ovMemory::String getLowerExtension(ovMemory::StringView path) {
    const std::size_t slash = path.rfind('/');
    const ovMemory::StringView name = slash == ovMemory::StringView::npos ? path : path.substr(slash + 1);
    const std::size_t dot = name.rfind('.');
    if (dot == ovMemory::StringView::npos)
        return {};
    ovMemory::String extension(name.substr(dot + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

// The first bytes tell a reader what the file is more often than its name does: a page of HTML that a server
// sent, or a pointer of a version control system.
ovMemory::String describeUnknown(ovMemory::BufferView<const unsigned char> bytes) {
    if (bytes.empty())
        return "the data is empty";
    return fmt::format("no known image format (PNG, JPEG, EXR, HDR): it begins with the bytes {:02x}",
                       fmt::join(bytes.first(std::min<std::size_t>(bytes.size(), 8)), " "));
}

} // namespace

CompositeEncoder::CompositeEncoder() {
    // The order decides nothing but messages: no two formats begin alike. The two indices above refer to it.
    _encoders.push_back(std::make_unique<PngEncoder>());
    _encoders.push_back(std::make_unique<JpgEncoder>());
    _encoders.push_back(std::make_unique<ExrEncoder>());
    _encoders.push_back(std::make_unique<HdrEncoder>());
    for (const auto& encoder : _encoders)
        for (const ovMemory::StringView extension : encoder->getExtensions())
            _extensions.push_back(extension);
}

CompositeEncoder::~CompositeEncoder() = default;

ovMemory::StringView CompositeEncoder::getName() const {
    return NAME;
}

ovMemory::BufferView<const ovMemory::StringView> CompositeEncoder::getExtensions() const {
    return _extensions;
}

bool CompositeEncoder::canDecode(ovMemory::BufferView<const unsigned char> bytes) const {
    return findByContent(bytes) != nullptr;
}

DecodeResult CompositeEncoder::decode(ovMemory::BufferView<const unsigned char> bytes,
                                      const DecodeOptions& options) const {
    if (const Encoder* encoder = findByContent(bytes))
        return encoder->decode(bytes, options);
    DecodeResult result;
    result.error = describeUnknown(bytes);
    return result;
}

EncodeResult CompositeEncoder::encode(const ImageView& view, const EncodeOptions& options) const {
    const bool isFloat =
        view.componentType == COMPONENT_TYPE::HALF || view.componentType == COMPONENT_TYPE::FLOAT;
    return _encoders[isFloat ? EXR_INDEX : PNG_INDEX]->encode(view, options);
}

// By content, because a JPEG by name may be a PNG inside.
const Encoder* CompositeEncoder::findByContent(ovMemory::BufferView<const unsigned char> bytes) const {
    for (const auto& encoder : _encoders)
        if (encoder->canDecode(bytes))
            return encoder.get();
    return nullptr;
}

const Encoder* CompositeEncoder::findByExtension(ovMemory::StringView path) const {
    const ovMemory::String extension = getLowerExtension(path);
    for (const auto& encoder : _encoders) {
        const auto known = encoder->getExtensions();
        if (std::find(known.begin(), known.end(), extension) != known.end())
            return encoder.get();
    }
    return nullptr;
}

DecodeResult CompositeEncoder::decodeFile(ovMemory::StringView path, const DecodeOptions& options) const {
    ovMemory::Buffer<char> content;
    if (const ovMemory::Result read = ovResources::readFile(path, content); !read)
        return ovMemory::failed<DecodeResult>(read.error, read.place);
    DecodeResult result =
        decode({reinterpret_cast<const unsigned char*>(content.data()), content.size()}, options);
    result.place = path;
    if (!result)
        result.error = fmt::format("Decoding file '{}' failed: {}", path, result.error);
    if (!result.warning.empty())
        result.warning = fmt::format("Decoding file '{}': {}", path, result.warning);
    return result;
}

ovMemory::Result CompositeEncoder::encodeFile(ovMemory::StringView path, const ImageView& view,
                                              const EncodeOptions& options) const {
    const auto fail = [&](ovMemory::StringView reason) {
        return ovMemory::failed(fmt::format("Encoding file '{}' failed: {}", path, reason),
                                ovMemory::String(path));
    };
    // Before encoding, which may take seconds.
    const Encoder* encoder = findByExtension(path);
    if (!encoder)
        return fail(fmt::format("its extension names no image format; expected one of {}",
                                fmt::join(_extensions, ", ")));
    const EncodeResult encoded = encoder->encode(view, options);
    if (!encoded)
        return fail(encoded.error);
    ovMemory::Result written = ovResources::writeFileAtomically(path, encoded.bytes);
    if (written && !encoded.warning.empty())
        written.warning = fmt::format("Encoding file '{}': {}", path, encoded.warning);
    return written;
}

} // namespace ovImages

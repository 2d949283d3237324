#include <ovImages/JpgEncoder.h>

#include <ovImages/Conversion.h>
#include <ovImages/detail/Orientation.h>
#include <ovImages/detail/Results.h>

#include <fmt/format.h>
#include <turbojpeg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace ovImages {

namespace {

constexpr ovMemory::StringView NAME = "JPEG";
constexpr std::array<ovMemory::StringView, 3> EXTENSIONS = {"jpg", "jpeg", "jpe"};
constexpr std::array<int, 3> SUBSAMPLINGS = {TJSAMP_444, TJSAMP_422, TJSAMP_420};
constexpr unsigned MAX_SIDE = 65500;
// Huffman coding spends at least a bit on each 8 x 8 block; arithmetic coding less, hence the wide margin.
constexpr std::uint64_t MAX_PIXELS_PER_BYTE = 8 * 64 * 16;

struct HandleDeleter {
    void operator()(void* handle) const { tjDestroy(handle); }
};
using Handle = std::unique_ptr<void, HandleDeleter>;

struct TjDeleter {
    void operator()(unsigned char* memory) const { tjFree(memory); }
};

// What the segments before the first scan say beyond what the library tells.
struct Segments {
    bool hasAdobe = false;
    unsigned orientation = 1;
};

bool beginsWith(ovMemory::BufferView<const unsigned char> bytes, ovMemory::StringView text) {
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

// The library hands out neither the orientation nor the Adobe marker, so the segments are walked here.
// Everything of interest stands before the first scan.
Segments readSegments(ovMemory::BufferView<const unsigned char> bytes) {
    constexpr ovMemory::StringView EXIF("Exif\0\0", 6);
    Segments segments;
    std::size_t offset = 2;
    while (offset + 4 <= bytes.size() && bytes[offset] == 0xff) {
        const unsigned marker = bytes[offset + 1];
        // Fill bytes may stand before a marker.
        if (marker == 0xff) {
            ++offset;
            continue;
        }
        const std::size_t length = std::size_t(bytes[offset + 2]) << 8 | bytes[offset + 3];
        const bool isScan = marker == 0xda;
        if (isScan || length < 2 || offset + 2 + length > bytes.size())
            break;
        const auto body = bytes.subspan(offset + 4, length - 2);
        if (marker == 0xee && beginsWith(body, "Adobe"))
            segments.hasAdobe = true;
        if (marker == 0xe1 && beginsWith(body, EXIF))
            segments.orientation = detail::readExifOrientation(body.subspan(EXIF.size()));
        offset += 2 + length;
    }
    return segments;
}

struct Header {
    int width = 0;
    int height = 0;
    int subsampling = 0;
    int colorSpace = -1;
    bool isCmyk() const { return colorSpace == TJCS_CMYK || colorSpace == TJCS_YCCK; }
    bool isGrey() const { return colorSpace == TJCS_GRAY; }
};

unsigned char multiply(unsigned char a, unsigned char b) {
    return static_cast<unsigned char>((unsigned(a) * b + 127) / 255);
}

// From ink (0 none, 255 full; with an Adobe marker the other way round) to light. Programs that write an
// Adobe marker store the inverse. Files without it store ink as the standard says.
void convertCmyk(ovMemory::BufferView<const unsigned char> cmyk, bool isInverted,
                 ovMemory::BufferView<unsigned char> rgb) {
    const unsigned char flip = isInverted ? 0 : 255;
    const unsigned char* ink = cmyk.data();
    for (std::size_t i = 0; i + 3 <= rgb.size(); i += 3, ink += 4)
        for (std::size_t c = 0; c < 3; ++c)
            rgb[i + c] = multiply(ink[c] ^ flip, ink[3] ^ flip);
}

ovMemory::String checkHeader(const Header& header, std::size_t fileSize, const DecodeOptions& options) {
    if (header.width < 0 || header.height < 0)
        return "bad header: negative size";
    const auto width = static_cast<std::uint64_t>(header.width);
    const auto height = static_cast<std::uint64_t>(header.height);
    const std::uint64_t pixelSize = header.isGrey() ? 1 : header.isCmyk() ? 4 : 3;
    const ovMemory::String excess = detail::describeExcessiveSize(width, height, pixelSize, options);
    if (!excess.empty())
        return excess;
    if (options.refuseDamaged && width * height > MAX_PIXELS_PER_BYTE * fileSize)
        return fmt::format("{} bytes cannot hold {} x {} pixels", fileSize, width, height);
    return {};
}

bool isOnlyWarning(tjhandle handle, const DecodeOptions& options) {
    return !options.refuseDamaged && tjGetErrorCode(handle) == TJERR_WARNING;
}

DecodeResult decodePixels(tjhandle handle, ovMemory::BufferView<const unsigned char> bytes,
                          const Header& header, bool isInverted, const DecodeOptions& options) {
    DecodeResult result;
    const auto width = static_cast<unsigned>(header.width);
    const auto height = static_cast<unsigned>(header.height);
    if (!detail::allocateImage(result, NAME, width, height, header.isGrey() ? 1 : 3, COMPONENT_TYPE::UINT8,
                               COLOR_ENCODING::SRGB))
        return result;
    ovMemory::Buffer<unsigned char> cmyk;
    if (header.isCmyk())
        cmyk.resize(std::size_t(width) * height * 4);
    unsigned char* target = header.isCmyk() ? cmyk.data() : result.image->getBytes().data();
    const int format = header.isGrey() ? TJPF_GRAY : header.isCmyk() ? TJPF_CMYK : TJPF_RGB;
    // The exact transform, so that the same file gives the same pixels on every processor. Scans are limited,
    // because a progressive file of a few kilobytes can otherwise keep the library busy for minutes.
    const int flags = TJFLAG_ACCURATEDCT | TJFLAG_LIMITSCANS |
                      (options.smoothChroma ? 0 : TJFLAG_FASTUPSAMPLE) |
                      (options.refuseDamaged ? TJFLAG_STOPONWARNING : 0);
    if (tjDecompress2(handle, bytes.data(), bytes.size(), target, header.width, 0, header.height, format,
                      flags) != 0) {
        const ovMemory::String text = fmt::format("damaged data: {}", tjGetErrorStr2(handle));
        if (!isOnlyWarning(handle, options))
            return detail::failFormat<DecodeResult>(NAME, text);
        detail::appendWarning(result.warning, "JPEG: " + text);
    }
    if (header.isCmyk())
        convertCmyk(cmyk, isInverted, result.image->getBytes());
    return result;
}

DecodeResult decodeJpg(ovMemory::BufferView<const unsigned char> bytes, const DecodeOptions& options) {
    const Handle handle(tjInitDecompress());
    if (!handle)
        return detail::failFormat<DecodeResult>(NAME, tjGetErrorStr2(nullptr));
    Header header;
    const int status = tjDecompressHeader3(handle.get(), bytes.data(), bytes.size(), &header.width,
                                           &header.height, &header.subsampling, &header.colorSpace);
    // Sampling factors without a name in the library's list fail here, but decode.
    const bool isOnlyUnnamed = header.subsampling < 0 && header.colorSpace >= 0;
    if (status != 0 && !isOnlyUnnamed && !isOnlyWarning(handle.get(), options))
        return detail::failFormat<DecodeResult>(NAME,
                                                fmt::format("bad header: {}", tjGetErrorStr2(handle.get())));
    const ovMemory::String fault = checkHeader(header, bytes.size(), options);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, fault);
    const Segments segments = readSegments(bytes);
    DecodeResult result = decodePixels(handle.get(), bytes, header, segments.hasAdobe, options);
    if (result && options.applyOrientation)
        *result.image = detail::applyOrientation(std::move(*result.image), segments.orientation);
    return result;
}

EncodeResult encodeJpg(const ImageView& view, const EncodeOptions& options) {
    const Handle handle(tjInitCompress());
    if (!handle)
        return detail::failFormat<EncodeResult>(NAME, tjGetErrorStr2(nullptr));
    Image grey;
    const unsigned char* pixels = view.bytes.data();
    // The library has no grey with alpha to read from.
    if (view.channels == 2) {
        grey = convertImage(view, COMPONENT_TYPE::UINT8, 1, view.encoding);
        if (grey.isEmpty())
            return detail::failFormat<EncodeResult>(NAME, "no memory");
        pixels = grey.getBytes().data();
    }
    // Four channels are read as RGB and a byte that is skipped, so that alpha needs no copy.
    constexpr std::array<int, 4> FORMATS = {TJPF_GRAY, TJPF_GRAY, TJPF_RGB, TJPF_RGBX};
    const int format = FORMATS[view.channels - 1];
    const int subsampling = format == TJPF_GRAY ? TJSAMP_GRAY : SUBSAMPLINGS[options.subsampling];
    // The library has no quality 0.
    const int quality = std::max(1, static_cast<int>(std::lround(options.quality * 100.0f)));
    // The library allocates, as it cannot tell the size beforehand; its memory must go back to it.
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
    const int status =
        tjCompress2(handle.get(), pixels, static_cast<int>(view.width), 0, static_cast<int>(view.height),
                    format, &encoded, &size, subsampling, quality, TJFLAG_ACCURATEDCT);
    const std::unique_ptr<unsigned char, TjDeleter> owner(encoded);
    if (status != 0)
        return detail::failFormat<EncodeResult>(NAME, tjGetErrorStr2(handle.get()));
    EncodeResult result;
    result.bytes.assign(encoded, encoded + size);
    detail::warnOfDroppedAlpha(result.warning, view, NAME);
    detail::warnOfEncoding(result.warning, view, NAME, COLOR_ENCODING::SRGB);
    return result;
}

ovMemory::String describeFault(const ImageView& view, const EncodeOptions& options) {
    ovMemory::String fault;
    if (!isValid(view, &fault))
        return fault;
    if (view.componentType != COMPONENT_TYPE::UINT8)
        return fmt::format("cannot hold {} components: convert to 8-bit unsigned first",
                           getComponentTypeName(view.componentType));
    if (view.width > MAX_SIDE || view.height > MAX_SIDE)
        return fmt::format("the picture is {} x {} pixels: a side has at most {}", view.width, view.height,
                           MAX_SIDE);
    if (options.subsampling >= SUBSAMPLINGS.size())
        return fmt::format("the subsampling is {}: expected 0 (4:4:4), 1 (4:2:2) or 2 (4:2:0)",
                           options.subsampling);
    if (!(options.quality >= 0.0f && options.quality <= 1.0f))
        return fmt::format("the quality is {}: expected 0 to 1", options.quality);
    return {};
}

} // namespace

ovMemory::StringView JpgEncoder::getName() const {
    return NAME;
}

ovMemory::BufferView<const ovMemory::StringView> JpgEncoder::getExtensions() const {
    return EXTENSIONS;
}

bool JpgEncoder::canDecode(ovMemory::BufferView<const unsigned char> bytes) const {
    return bytes.size() >= 3 && bytes[0] == 0xff && bytes[1] == 0xd8 && bytes[2] == 0xff;
}

DecodeResult JpgEncoder::decode(ovMemory::BufferView<const unsigned char> bytes,
                                const DecodeOptions& options) const {
    if (!canDecode(bytes))
        return detail::failFormat<DecodeResult>(NAME,
                                                "the data does not begin with the marker of a JPEG file");
    return detail::runGuarded<DecodeResult>(NAME, [&] { return decodeJpg(bytes, options); });
}

EncodeResult JpgEncoder::encode(const ImageView& view, const EncodeOptions& options) const {
    const ovMemory::String fault = describeFault(view, options);
    if (!fault.empty())
        return detail::failFormat<EncodeResult>(NAME, fault);
    return detail::runGuarded<EncodeResult>(NAME, [&] { return encodeJpg(view, options); });
}

} // namespace ovImages

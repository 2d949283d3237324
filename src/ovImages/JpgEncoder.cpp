#include <ovImages/JpgEncoder.h>

#include <ovImages/Conversion.h>
#include <ovImages/detail/JpegReader.h>
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

ovMemory::String checkHeader(const detail::JpegHeader& header, std::size_t fileSize,
                             const DecodeOptions& options) {
    const std::uint64_t pixels = std::uint64_t{header.width} * header.height;
    const ovMemory::String excess = detail::describeExcessiveSize(
        header.width, header.height, static_cast<unsigned>(header.color), options);
    if (!excess.empty())
        return excess;
    if (options.refuseDamaged && pixels > MAX_PIXELS_PER_BYTE * fileSize)
        return fmt::format("{} bytes cannot hold {} x {} pixels", fileSize, header.width, header.height);
    return {};
}

// What the library complained of while it read the pixels: an error, or warnings as the options allow.
DecodeResult judge(DecodeResult result, const detail::JpegComplaints& complaints,
                   const DecodeOptions& options) {
    if (!complaints.damage.empty())
        detail::appendWarning(result.warning, fmt::format("JPEG: damaged data: {}", complaints.damage));
    if (complaints.doubt.empty())
        return result;
    if (options.strict)
        return detail::failFormat<DecodeResult>(NAME, fmt::format("doubtful data: {}", complaints.doubt));
    detail::appendWarning(result.warning,
                          fmt::format("JPEG: doubtful data, read nevertheless: {}", complaints.doubt));
    return result;
}

DecodeResult decodePixels(detail::JpegReader& reader, const detail::JpegHeader& header,
                          const DecodeOptions& options) {
    DecodeResult result;
    const bool isCmyk = header.color == detail::JPEG_COLOR::CMYK;
    if (!detail::allocateImage(result, NAME, header.width, header.height,
                               isCmyk ? 3 : static_cast<unsigned>(header.color), COMPONENT_TYPE::UINT8,
                               COLOR_ENCODING::SRGB))
        return result;
    ovMemory::Buffer<unsigned char> cmyk;
    if (isCmyk)
        cmyk.resize(std::size_t(header.width) * header.height * 4);
    if (!reader.readPixels(isCmyk ? cmyk.data() : result.image->getBytes().data(),
                           {options.smoothChroma, options.refuseDamaged, options.progress}))
        return detail::failFormat<DecodeResult>(
            NAME, fmt::format("damaged data: {}", reader.getComplaints().error));
    if (isCmyk)
        convertCmyk(cmyk, header.hasAdobe, result.image->getBytes());
    return judge(std::move(result), reader.getComplaints(), options);
}

DecodeResult decodeJpg(ovMemory::BufferView<const unsigned char> bytes, const DecodeOptions& options) {
    detail::JpegReader reader(bytes);
    detail::JpegHeader header;
    if (!reader.readHeader(header))
        return detail::failFormat<DecodeResult>(NAME,
                                                fmt::format("bad header: {}", reader.getComplaints().error));
    const ovMemory::String fault = checkHeader(header, bytes.size(), options);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, fault);
    DecodeResult result = decodePixels(reader, header, options);
    if (result && options.applyOrientation)
        *result.image = detail::applyOrientation(std::move(*result.image), header.orientation);
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
    // Behind the first marker stands another one, but for stray bytes.
    return bytes.size() >= 3 && bytes[0] == 0xff && bytes[1] == 0xd8;
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

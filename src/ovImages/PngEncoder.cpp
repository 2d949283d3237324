#include <ovImages/PngEncoder.h>

#include <ovImages/detail/Orientation.h>
#include <ovImages/detail/Results.h>

#include <fmt/format.h>
#include <spng.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace ovImages {

namespace {

constexpr ovMemory::StringView NAME = "PNG";
constexpr std::array<ovMemory::StringView, 1> EXTENSIONS = {"png"};
constexpr std::array<unsigned char, 8> SIGNATURE = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
// Chunks beside the pixels, inflated: a profile or comment larger than this is an attack.
constexpr std::size_t MAX_CHUNK_BYTES = std::size_t(16) << 20;
// The library reads pixels in pieces of this size and drops a last piece that is not whole.
constexpr std::size_t READ_BYTES = 8192;
// Deflate makes at most 1032 bytes of one.
constexpr std::uint64_t MAX_INFLATION = 1040;
constexpr std::uint32_t LINEAR_GAMMA = 100000;
constexpr std::uint32_t SRGB_GAMMA = 45455;

struct ContextDeleter {
    void operator()(spng_ctx* context) const { spng_ctx_free(context); }
};
using Context = std::unique_ptr<spng_ctx, ContextDeleter>;

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

// What libspng is asked for, and the shape that comes of it.
struct Layout {
    int format;
    unsigned channels;
    COMPONENT_TYPE type;
};

// The library widens to a format of ours only where the file needs it: palettes and transparent colours.
// Everything else stays as it is stored.
Layout chooseLayout(const spng_ihdr& header, bool hasTransparency) {
    const COMPONENT_TYPE type = header.bit_depth == 16 ? COMPONENT_TYPE::UINT16 : COMPONENT_TYPE::UINT8;
    const bool is16 = type == COMPONENT_TYPE::UINT16;
    switch (header.color_type) {
    case SPNG_COLOR_TYPE_GRAYSCALE:
        if (hasTransparency)
            return {is16 ? SPNG_FMT_GA16 : SPNG_FMT_GA8, 2, type};
        return {is16 ? SPNG_FMT_PNG : SPNG_FMT_G8, 1, type};
    case SPNG_COLOR_TYPE_GRAYSCALE_ALPHA:
        return {SPNG_FMT_PNG, 2, type};
    case SPNG_COLOR_TYPE_TRUECOLOR_ALPHA:
        return {SPNG_FMT_PNG, 4, type};
    default:
        if (hasTransparency)
            return {is16 ? SPNG_FMT_RGBA16 : SPNG_FMT_RGBA8, 4, type};
        return {is16 ? SPNG_FMT_PNG : SPNG_FMT_RGB8, 3, type};
    }
}

// The order is the PNG specification's: an sRGB chunk or a profile wins over a gamma.
COLOR_ENCODING readEncoding(spng_ctx* context, ovMemory::String& warning) {
    std::uint8_t intent = 0;
    spng_iccp profile = {};
    std::uint32_t gamma = 0;
    if (spng_get_srgb(context, &intent) == SPNG_OK || spng_get_iccp(context, &profile) == SPNG_OK ||
        spng_get_gama_int(context, &gamma) != SPNG_OK)
        return COLOR_ENCODING::SRGB;
    if (gamma == LINEAR_GAMMA)
        return COLOR_ENCODING::LINEAR;
    // Writers round 1/2.2 in many ways.
    if (std::abs(static_cast<double>(gamma) - SRGB_GAMMA) > 2000.0)
        detail::appendWarning(warning, fmt::format("PNG: the file's gamma of {} is read as sRGB",
                                                   static_cast<double>(gamma) / LINEAR_GAMMA));
    return COLOR_ENCODING::SRGB;
}

unsigned readOrientation(spng_ctx* context) {
    spng_exif exif = {};
    if (spng_get_exif(context, &exif) != SPNG_OK)
        return 1;
    return detail::readExifOrientation({reinterpret_cast<const unsigned char*>(exif.data), exif.length});
}

// Empty when the header is sound and the picture of an allowed size.
ovMemory::String checkHeader(const spng_ihdr& header, const Layout& layout, std::size_t fileSize,
                             const DecodeOptions& options) {
    const ovMemory::String excess = detail::describeExcessiveSize(
        header.width, header.height, layout.channels * getComponentSize(layout.type), options);
    if (!excess.empty())
        return excess;
    // By colour type: grey, none, RGB, palette, grey and alpha, none, RGBA.
    constexpr std::array<unsigned, 7> STORED_CHANNELS = {1, 0, 3, 1, 2, 0, 4};
    const unsigned channels = STORED_CHANNELS[header.color_type];
    const std::uint64_t rowBytes = (std::uint64_t(header.width) * channels * header.bit_depth + 7) / 8;
    // Before the picture is allocated: a header of 33 bytes can ask for two gigabytes.
    if (options.refuseDamaged && rowBytes * header.height > MAX_INFLATION * fileSize)
        return fmt::format("{} bytes cannot hold {} x {} pixels", fileSize, header.width, header.height);
    return {};
}

// Whether the last chunk is there as a whole; the library stops reading within it.
// A file that is cut within the last chunk decodes without an error, and a download that broke off would pass
// for whole.
bool reachesEnd(ovMemory::BufferView<const unsigned char> bytes) {
    constexpr std::size_t CHUNK_FRAME_BYTES = 12;
    constexpr ovMemory::StringView END_TYPE = "IEND";
    std::size_t offset = SIGNATURE.size();
    while (bytes.size() - offset >= CHUNK_FRAME_BYTES) {
        const auto chunk = bytes.subspan(offset);
        const std::size_t length = std::size_t(chunk[0]) << 24 | chunk[1] << 16 | chunk[2] << 8 | chunk[3];
        if (length > chunk.size() - CHUNK_FRAME_BYTES)
            return false;
        if (std::equal(END_TYPE.begin(), END_TYPE.end(), chunk.begin() + 4))
            return true;
        offset += length + CHUNK_FRAME_BYTES;
    }
    return false;
}

// Row by row, as the library does it for whole pictures, so that somebody can be told.
int decodeRows(spng_ctx* context, int format, std::size_t height, ovMemory::BufferView<unsigned char> pixels,
               const ovCommon::WorkProgress& progress) {
    const std::size_t rowSize = pixels.size() / height;
    int status = spng_decode_image(context, nullptr, 0, format, SPNG_DECODE_TRNS | SPNG_DECODE_PROGRESSIVE);
    spng_row_info row = {};
    while (status == SPNG_OK) {
        status = spng_get_row_info(context, &row);
        if (status == SPNG_OK)
            status = spng_decode_row(context, pixels.data() + row.row_num * rowSize, rowSize);
        if (progress)
            progress((row.row_num + 1.0) / static_cast<double>(height));
    }
    return status == SPNG_EOI ? SPNG_OK : status;
}

DecodeResult decodePng(ovMemory::BufferView<const unsigned char> bytes, const DecodeOptions& options) {
    const Context context(spng_ctx_new(0));
    if (!context)
        return detail::failFormat<DecodeResult>(NAME, "no memory");
    spng_set_image_limits(context.get(), MAX_IMAGE_SIDE, MAX_IMAGE_SIDE);
    spng_set_chunk_limits(context.get(), MAX_CHUNK_BYTES, MAX_CHUNK_BYTES);
    ovMemory::Buffer<unsigned char> padded;
    const std::size_t fileSize = bytes.size();
    if (!options.refuseDamaged) {
        // Pixels with a wrong checksum are still the best there is; damaged chunks beside them are dropped.
        spng_set_crc_action(context.get(), SPNG_CRC_USE, SPNG_CRC_DISCARD);
        // The library reads whole pieces and drops the rows of a last one that is short. Zeros behind the end
        // keep them.
        padded.assign(bytes.begin(), bytes.end());
        padded.resize(bytes.size() + READ_BYTES);
        bytes = padded;
    } else if (!reachesEnd(bytes)) {
        return detail::failFormat<DecodeResult>(NAME, "damaged data: the file ends early");
    }
    int status = spng_set_png_buffer(context.get(), bytes.data(), bytes.size());
    spng_ihdr header = {};
    if (status == SPNG_OK)
        status = spng_get_ihdr(context.get(), &header);
    if (status != SPNG_OK)
        return detail::failFormat<DecodeResult>(NAME, fmt::format("bad header: {}", spng_strerror(status)));

    spng_trns transparency = {};
    const Layout layout = chooseLayout(header, spng_get_trns(context.get(), &transparency) == SPNG_OK);
    const ovMemory::String fault = checkHeader(header, layout, fileSize, options);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, fault);

    DecodeResult result;
    const COLOR_ENCODING encoding = readEncoding(context.get(), result.warning);
    if (!detail::allocateImage(result, NAME, header.width, header.height, layout.channels, layout.type,
                               encoding))
        return result;
    const auto pixels = result.image->getBytes();
    status = decodeRows(context.get(), layout.format, header.height, pixels, options.progress);
    if (status == SPNG_OK)
        // The chunks behind the pixels too: EXIF may stand there.
        status = spng_decode_chunks(context.get());
    if (status != SPNG_OK && options.refuseDamaged)
        return detail::failFormat<DecodeResult>(NAME, fmt::format("damaged data: {}", spng_strerror(status)));
    if (status != SPNG_OK)
        detail::appendWarning(result.warning, fmt::format("PNG: damaged data: {}", spng_strerror(status)));
    if (options.applyOrientation)
        *result.image = detail::applyOrientation(std::move(*result.image), readOrientation(context.get()));
    return result;
}

std::uint8_t getColorType(unsigned channels) {
    constexpr std::array<std::uint8_t, 4> TYPES = {SPNG_COLOR_TYPE_GRAYSCALE, SPNG_COLOR_TYPE_GRAYSCALE_ALPHA,
                                                   SPNG_COLOR_TYPE_TRUECOLOR,
                                                   SPNG_COLOR_TYPE_TRUECOLOR_ALPHA};
    return TYPES[channels - 1];
}

EncodeResult encodePng(const ImageView& view) {
    const Context context(spng_ctx_new(SPNG_CTX_ENCODER));
    if (!context)
        return detail::failFormat<EncodeResult>(NAME, "no memory");
    spng_ihdr header = {};
    header.width = view.width;
    header.height = view.height;
    header.bit_depth = view.componentType == COMPONENT_TYPE::UINT16 ? 16 : 8;
    header.color_type = getColorType(view.channels);
    spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1);
    int status = spng_set_ihdr(context.get(), &header);
    if (status == SPNG_OK)
        status = view.encoding == COLOR_ENCODING::SRGB ? spng_set_srgb(context.get(), 0)
                                                       : spng_set_gama_int(context.get(), LINEAR_GAMMA);
    if (status == SPNG_OK)
        status = spng_encode_image(context.get(), view.bytes.data(), view.bytes.size(), SPNG_FMT_PNG,
                                   SPNG_ENCODE_FINALIZE);
    std::size_t size = 0;
    const std::unique_ptr<void, FreeDeleter> encoded(
        status == SPNG_OK ? spng_get_png_buffer(context.get(), &size, &status) : nullptr);
    if (!encoded)
        return detail::failFormat<EncodeResult>(NAME, spng_strerror(status));
    EncodeResult result;
    const auto* begin = static_cast<const unsigned char*>(encoded.get());
    result.bytes.assign(begin, begin + size);
    return result;
}

} // namespace

ovMemory::StringView PngEncoder::getName() const {
    return NAME;
}

ovMemory::BufferView<const ovMemory::StringView> PngEncoder::getExtensions() const {
    return EXTENSIONS;
}

bool PngEncoder::canDecode(ovMemory::BufferView<const unsigned char> bytes) const {
    return bytes.size() >= SIGNATURE.size() && std::equal(SIGNATURE.begin(), SIGNATURE.end(), bytes.begin());
}

DecodeResult PngEncoder::decode(ovMemory::BufferView<const unsigned char> bytes,
                                const DecodeOptions& options) const {
    if (!canDecode(bytes))
        return detail::failFormat<DecodeResult>(NAME,
                                                "the data does not begin with the signature of a PNG file");
    return detail::runGuarded<DecodeResult>(NAME, [&] { return decodePng(bytes, options); });
}

EncodeResult PngEncoder::encode(const ImageView& view, const EncodeOptions&) const {
    return detail::encodeHeld(NAME, view, {COMPONENT_TYPE::UINT8, COMPONENT_TYPE::UINT16},
                              "8-bit or 16-bit unsigned", encodePng);
}

} // namespace ovImages

#include <ovImages/ExrEncoder.h>

#include <ovImages/detail/ExrChannels.h>
#include <ovImages/detail/ExrHeader.h>
#include <ovImages/detail/ExrStreamsInternal.h>
#include <ovImages/detail/Results.h>

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputPart.h>
#include <ImfMultiPartInputFile.h>
#include <ImfOutputFile.h>
#include <ImfPartType.h>
#include <ImfRgbaFile.h>
#include <ImfStandardAttributes.h>
#include <ImfTileDescription.h>
#include <ImfVersion.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace ovImages {

namespace {

using Bytes = ovMemory::BufferView<const unsigned char>;

constexpr ovMemory::StringView NAME = "EXR";
constexpr std::array<ovMemory::StringView, 1> EXTENSIONS = {"exr"};
constexpr std::array<unsigned char, 4> MAGIC = {0x76, 0x2f, 0x31, 0x01};
// The library then works on the calling thread, and nothing of it runs on when the call returns.
constexpr int NO_THREADS = 0;
// Enough to recognise a file by, without an error of thousands of names.
constexpr std::size_t MAX_NAMES_LISTED = 40;

struct Size {
    std::uint64_t width;
    std::uint64_t height;
};

Size getSize(const Imf::Header& header) {
    const auto& window = header.dataWindow();
    // In 64 bits: a window from the lowest to the highest int is wider than an int holds.
    const std::int64_t width = std::int64_t(window.max.x) - window.min.x + 1;
    const std::int64_t height = std::int64_t(window.max.y) - window.min.y + 1;
    return {static_cast<std::uint64_t>(std::max<std::int64_t>(width, 0)),
            static_cast<std::uint64_t>(std::max<std::int64_t>(height, 0))};
}

std::size_t getPixelTypeSize(Imf::PixelType type) {
    return type == Imf::HALF ? 2 : 4;
}

ovMemory::Buffer<ovMemory::String> listChannels(const Imf::Header& header) {
    ovMemory::Buffer<ovMemory::String> names;
    const Imf::ChannelList& channels = header.channels();
    for (auto channel = channels.begin(); channel != channels.end(); ++channel)
        names.emplace_back(channel.name());
    return names;
}

bool isDeep(const Imf::Header& header) {
    return header.hasType() && (header.type() == Imf::DEEPSCANLINE || header.type() == Imf::DEEPTILE);
}

// The part and the channels to read.
struct Choice {
    int part = -1;
    detail::ExrSelection selection;
};

Choice chooseChannels(const Imf::MultiPartInputFile& file, ovMemory::StringView layer) {
    // First by the names of channels, then by those of parts, which some programs write a layer each into.
    for (const bool byPart : {false, true}) {
        for (int part = 0; part < file.parts(); ++part) {
            const Imf::Header& header = file.header(part);
            // A file may hold a deep part beside a flat one, and the flat one can be read.
            if (isDeep(header) || (byPart && (layer.empty() || !header.hasName() || header.name() != layer)))
                continue;
            detail::ExrSelection selection =
                detail::selectExrChannels(listChannels(header), byPart ? ovMemory::StringView() : layer);
            if (!selection.channels.empty())
                return {part, std::move(selection)};
        }
    }
    return {};
}

ovMemory::String joinNames(ovMemory::Buffer<ovMemory::String> names) {
    const std::size_t count = names.size();
    if (count > MAX_NAMES_LISTED)
        names.resize(MAX_NAMES_LISTED);
    ovMemory::String list = fmt::format("{}", fmt::join(names, ", "));
    if (count > names.size())
        list += fmt::format(" and {} more", count - names.size());
    return list;
}

/// What a file offers to choose from.
struct Offer {
    ovMemory::Buffer<ovMemory::String> channels;
    ovMemory::Buffer<ovMemory::String> layers;
    bool isAllDeep = true;
};

Offer listOffer(const Imf::MultiPartInputFile& file) {
    Offer offer;
    for (int part = 0; part < file.parts(); ++part) {
        const Imf::Header& header = file.header(part);
        const auto channels = listChannels(header);
        offer.channels.insert(offer.channels.end(), channels.begin(), channels.end());
        if (isDeep(header))
            continue;
        offer.isAllDeep = false;
        const auto layers = detail::listExrLayers(channels);
        offer.layers.insert(offer.layers.end(), layers.begin(), layers.end());
        if (file.parts() > 1 && header.hasName() && !detail::selectExrChannels(channels, {}).channels.empty())
            offer.layers.push_back(header.name());
    }
    return offer;
}

ovMemory::String describeUndecided(const Imf::MultiPartInputFile& file, ovMemory::StringView layer) {
    const Offer offer = listOffer(file);
    if (offer.isAllDeep)
        return "the file holds deep data, which cannot be read";
    const ovMemory::String problem =
        layer.empty() ? ovMemory::String("cannot tell which channels are the picture")
                      : fmt::format("no colours or single channel in the layer \"{}\"", layer);
    if (offer.layers.empty())
        return fmt::format("{}; the file has no layers to choose from, and the channels {}", problem,
                           joinNames(offer.channels));
    return fmt::format("{}; name one of the file's layers: {}", problem, joinNames(offer.layers));
}

// The memory that reading takes, checked from the header alone. Empty, or what is wrong.
ovMemory::String checkSize(const Imf::Header& header, std::size_t pixelSize, const DecodeOptions& options) {
    const Size size = getSize(header);
    const ovMemory::String excess =
        detail::describeExcessiveSize(size.width, size.height, pixelSize, options);
    if (!excess.empty())
        return excess;
    // The library keeps a row of blocks in memory with all channels, also those that are not read. A file of
    // a few hundred bytes can ask for terabytes there, so it is checked too.
    std::uint64_t storedPixelSize = 0;
    const Imf::ChannelList& channels = header.channels();
    for (auto channel = channels.begin(); channel != channels.end(); ++channel)
        storedPixelSize += getPixelTypeSize(channel.channel().type);
    std::uint64_t rows = 1;
    std::uint64_t columns = size.width;
    if (header.hasTileDescription()) {
        rows = header.tileDescription().ySize;
        columns = std::max<std::uint64_t>(columns, header.tileDescription().xSize);
    }
    if (rows > MAX_IMAGE_SIDE || columns > MAX_IMAGE_SIDE ||
        rows * columns * storedPixelSize > MAX_IMAGE_BYTES)
        return fmt::format("the file is stored in pieces of {} x {} pixels of {} bytes: too large", columns,
                           rows, storedPixelSize);
    return {};
}

// Notes damage: an error, or a warning when the options allow it.
DecodeResult finishDamaged(DecodeResult result, ovMemory::StringView what, const DecodeOptions& options) {
    const ovMemory::String text = fmt::format("damaged data: {}", what);
    if (options.refuseDamaged)
        return detail::failFormat<DecodeResult>(NAME, text);
    detail::appendWarning(result.warning, "EXR: " + text);
    return result;
}

// Chroma is stored at half the resolution. Only the library's interface for RGBA knows how to bring it up,
// and that one reads the first part and gives halves.
DecodeResult readLuminanceChroma(Bytes bytes, const Imf::Header& header, const Choice& choice,
                                 const DecodeOptions& options) {
    const unsigned channels = static_cast<unsigned>(choice.selection.channels.size());
    if (choice.part != 0)
        return detail::failFormat<DecodeResult>(NAME,
                                                "luminance and chroma can only be read of the first part");
    const ovMemory::String fault = checkSize(header, sizeof(Imf::Rgba), options);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, fault);
    const Size size = getSize(header);
    DecodeResult result;
    if (!detail::allocateImage(result, NAME, static_cast<unsigned>(size.width),
                               static_cast<unsigned>(size.height), channels, COMPONENT_TYPE::HALF,
                               COLOR_ENCODING::LINEAR))
        return result;
    // Row by row, so that the picture is not in memory twice.
    ovMemory::Buffer<Imf::Rgba> row(size.width);
    try {
        detail::ExrInputStream stream(bytes);
        Imf::RgbaInputFile file(stream, choice.selection.layer, NO_THREADS);
        const auto& window = header.dataWindow();
        unsigned char* target = result.image->getBytes().data();
        for (int y = window.min.y; y <= window.max.y; ++y) {
            // No step from row to row: each is read into the same one.
            file.setFrameBuffer(row.data() - window.min.x, 1, 0);
            file.readPixels(y);
            for (const Imf::Rgba& pixel : row) {
                const std::array<std::uint16_t, 4> color = {pixel.r.bits(), pixel.g.bits(), pixel.b.bits(),
                                                            pixel.a.bits()};
                std::memcpy(target, color.data(), channels * sizeof(std::uint16_t));
                target += channels * sizeof(std::uint16_t);
            }
        }
    } catch (const std::exception& exception) {
        return finishDamaged(std::move(result), exception.what(), options);
    }
    return result;
}

// HALF when all chosen channels are, else FLOAT. A channel of another resolution is an error.
ovMemory::String chooseType(const Imf::Header& header, const detail::ExrSelection& selection,
                            Imf::PixelType& type) {
    type = Imf::HALF;
    for (const ovMemory::String& name : selection.channels) {
        const Imf::Channel& channel = header.channels()[name];
        if (channel.xSampling != 1 || channel.ySampling != 1)
            return fmt::format("the channel {} has {} x {} pixels a sample: expected 1 x 1", name,
                               channel.xSampling, channel.ySampling);
        if (channel.type != Imf::HALF)
            type = Imf::FLOAT;
    }
    return {};
}

/// Reads all rows: at once where nobody asks how far it is, for then the library shares them out best.
void readRows(Imf::InputPart& part, const Imath::Box2i& window, const ovCommon::WorkProgress& progress) {
    constexpr int BAND_ROWS = 512; // two of the largest blocks that rows are compressed in
    const std::int64_t rows = progress ? BAND_ROWS : std::int64_t{window.max.y} - window.min.y + 1;
    for (std::int64_t first = window.min.y; first <= window.max.y; first += rows) {
        const auto last = std::min<std::int64_t>(first + rows - 1, window.max.y);
        part.readPixels(static_cast<int>(first), static_cast<int>(last));
        if (progress)
            progress(static_cast<double>(last - window.min.y + 1) /
                     (static_cast<double>(window.max.y) - window.min.y + 1.0));
    }
}

DecodeResult readChannels(Imf::MultiPartInputFile& file, const Choice& choice, const DecodeOptions& options) {
    const Imf::Header& header = file.header(choice.part);
    const auto& names = choice.selection.channels;
    Imf::PixelType type = Imf::HALF;
    ovMemory::String fault = chooseType(header, choice.selection, type);
    const std::size_t componentSize = getPixelTypeSize(type);
    const std::size_t pixelSize = componentSize * names.size();
    if (fault.empty())
        fault = checkSize(header, pixelSize, options);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, fault);
    const Size size = getSize(header);
    DecodeResult result;
    if (!detail::allocateImage(result, NAME, static_cast<unsigned>(size.width),
                               static_cast<unsigned>(size.height), static_cast<unsigned>(names.size()),
                               type == Imf::HALF ? COMPONENT_TYPE::HALF : COMPONENT_TYPE::FLOAT,
                               COLOR_ENCODING::LINEAR))
        return result;
    Imf::FrameBuffer frame;
    for (std::size_t i = 0; i < names.size(); ++i)
        frame.insert(names[i], Imf::Slice::Make(type, result.image->getBytes().data() + i * componentSize,
                                                header.dataWindow(), pixelSize, pixelSize * size.width));
    try {
        Imf::InputPart part(file, choice.part);
        part.setFrameBuffer(frame);
        readRows(part, header.dataWindow(), options.progress);
    } catch (const std::exception& exception) {
        return finishDamaged(std::move(result), exception.what(), options);
    }
    return result;
}

PICTURE_VIEW viewOf(const Imf::Header& header) {
    if (!Imf::hasEnvmap(header))
        return PICTURE_VIEW::UNTOLD;
    return Imf::envmap(header) == Imf::ENVMAP_CUBE ? PICTURE_VIEW::CUBE : PICTURE_VIEW::PANORAMA;
}

DecodeResult decodeExr(Bytes bytes, const DecodeOptions& options) {
    // The library believes the lengths of attributes and fills up to 2 GiB before it notices the end of the
    // file.
    const ovMemory::String fault = detail::checkExrAttributes(bytes);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, "bad header: " + fault);
    detail::ExrInputStream stream(bytes);
    // The last argument lets the library look for rows whose table was never written, as in a render that was
    // stopped.
    Imf::MultiPartInputFile file(stream, NO_THREADS, !options.refuseDamaged);
    const Choice choice = chooseChannels(file, options.layer);
    if (choice.part < 0)
        return detail::failFormat<DecodeResult>(NAME, describeUndecided(file, options.layer));
    DecodeResult result = choice.selection.isLuminanceChroma
                              ? readLuminanceChroma(bytes, file.header(choice.part), choice, options)
                              : readChannels(file, choice, options);
    result.view = viewOf(file.header(choice.part));
    return result;
}

EncodeResult encodeExr(const ImageView& view) {
    constexpr std::array<std::array<const char*, 4>, 4> NAMES = {
        {{"Y"}, {"Y", "A"}, {"R", "G", "B"}, {"R", "G", "B", "A"}}};
    const Imf::PixelType type = view.componentType == COMPONENT_TYPE::HALF ? Imf::HALF : Imf::FLOAT;
    const std::size_t componentSize = getComponentSize(view.componentType);
    const std::size_t pixelSize = componentSize * view.channels;
    Imf::Header header(static_cast<int>(view.width), static_cast<int>(view.height));
    // The lossless kind that every reader knows.
    header.compression() = Imf::ZIP_COMPRESSION;
    Imf::FrameBuffer frame;
    for (std::size_t i = 0; i < view.channels; ++i) {
        const char* name = NAMES[view.channels - 1][i];
        header.channels().insert(name, Imf::Channel(type));
        frame.insert(name, Imf::Slice::Make(type, view.bytes.data() + i * componentSize, header.dataWindow(),
                                            pixelSize, pixelSize * view.width));
    }
    EncodeResult result;
    {
        // The file writes its table when it is destroyed, so it must be gone before the bytes are used.
        detail::ExrOutputStream stream(result.bytes);
        Imf::OutputFile file(stream, header, NO_THREADS);
        file.setFrameBuffer(frame);
        file.writePixels(static_cast<int>(view.height));
    }
    detail::warnOfEncoding(result.warning, view, NAME, COLOR_ENCODING::LINEAR);
    return result;
}

} // namespace

ovMemory::StringView ExrEncoder::getName() const {
    return NAME;
}

ovMemory::BufferView<const ovMemory::StringView> ExrEncoder::getExtensions() const {
    return EXTENSIONS;
}

bool ExrEncoder::canDecode(Bytes bytes) const {
    return bytes.size() >= MAGIC.size() && std::equal(MAGIC.begin(), MAGIC.end(), bytes.begin());
}

DecodeResult ExrEncoder::decode(Bytes bytes, const DecodeOptions& options) const {
    if (!canDecode(bytes))
        return detail::failFormat<DecodeResult>(
            NAME, "the data does not begin with the magic number of an EXR file");
    return detail::runGuarded<DecodeResult>(NAME, [&] { return decodeExr(bytes, options); });
}

EncodeResult ExrEncoder::encode(const ImageView& view, const EncodeOptions&) const {
    return detail::encodeHeld(NAME, view, {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT},
                              "half float or float", encodeExr);
}

} // namespace ovImages

#include <ovImages/HdrEncoder.h>

#include <ovImages/Conversion.h>
#include <ovImages/detail/HdrHeader.h>
#include <ovImages/detail/Orientation.h>
#include <ovImages/detail/Results.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace ovImages {

namespace {

constexpr ovMemory::StringView NAME = "HDR";
constexpr std::array<ovMemory::StringView, 3> EXTENSIONS = {"hdr", "pic", "rgbe"};
constexpr ovMemory::StringView MAGIC = "#?";
// Outside these lengths a scanline has no new run-length form.
constexpr std::size_t MIN_RLE_LENGTH = 8;
constexpr std::size_t MAX_RLE_LENGTH = 0x7fff;
constexpr int EXPONENT_BIAS = 128 + 8;
constexpr float LARGEST_VALUE = 255.0f * 0x1p119f;

using Rgbe = std::array<unsigned char, 4>;
using Bytes = ovMemory::BufferView<const unsigned char>;

// Reads the scanlines that follow the header.
class ScanlineReader {
public:
    explicit ScanlineReader(Bytes bytes)
        : _bytes(bytes) {}

    // Empty, or what is wrong.
    // The two forms are told apart by the first pixel: no normalised pixel begins with 2, 2 and a third byte
    // below 128. Old files mix both, so each scanline is asked.
    ovMemory::String read(ovMemory::BufferView<Rgbe> line) {
        if (line.size() >= MIN_RLE_LENGTH && line.size() <= MAX_RLE_LENGTH && _left() >= 4 &&
            _bytes[_offset] == 2 && _bytes[_offset + 1] == 2 && _bytes[_offset + 2] < 128)
            return _readNew(line);
        return _readOld(line);
    }

private:
    std::size_t _left() const { return _bytes.size() - _offset; }

    ovMemory::String _readNew(ovMemory::BufferView<Rgbe> line) {
        const std::size_t length = std::size_t(_bytes[_offset + 2]) << 8 | _bytes[_offset + 3];
        if (length != line.size())
            return fmt::format("the scanline has {} pixels: expected {}", length, line.size());
        _offset += 4;
        for (std::size_t component = 0; component < 4; ++component) {
            const ovMemory::String fault = _readComponent(line, component);
            if (!fault.empty())
                return fault;
        }
        return {};
    }

    ovMemory::String _readComponent(ovMemory::BufferView<Rgbe> line, std::size_t component) {
        for (std::size_t x = 0; x < line.size();) {
            if (_left() < 2)
                return "the data ends within it";
            const unsigned code = _bytes[_offset++];
            const bool isRun = code > 128;
            const std::size_t count = isRun ? code - 128 : code;
            if (count == 0 || count > line.size() - x)
                return fmt::format("a run of {} pixels does not fit", count);
            const std::size_t stored = isRun ? 1 : count;
            if (_left() < stored)
                return "the data ends within it";
            for (std::size_t i = 0; i < count; ++i)
                line[x + i][component] = _bytes[_offset + (isRun ? 0 : i)];
            _offset += stored;
            x += count;
        }
        return {};
    }

    // Flat pixels; (1, 1, 1, n) repeats the one before n times, and directly after another such, 256 n times.
    ovMemory::String _readOld(ovMemory::BufferView<Rgbe> line) {
        unsigned shift = 0;
        for (std::size_t x = 0; x < line.size();) {
            if (_left() < 4)
                return "the data ends within it";
            Rgbe pixel;
            std::memcpy(pixel.data(), _bytes.data() + _offset, pixel.size());
            _offset += pixel.size();
            if (pixel[0] != 1 || pixel[1] != 1 || pixel[2] != 1) {
                line[x++] = pixel;
                shift = 0;
                continue;
            }
            // A fifth repetition in a row could only be a damaged file.
            const std::size_t count = shift < 32 ? std::size_t(pixel[3]) << shift : MAX_IMAGE_SIDE;
            if (x == 0 || count > line.size() - x)
                return fmt::format("a run of {} pixels does not fit", count);
            std::fill_n(line.begin() + static_cast<std::ptrdiff_t>(x), count, line[x - 1]);
            x += count;
            shift += 8;
        }
        return {};
    }

    Bytes _bytes;
    std::size_t _offset = 0;
};

// Turns stored pixels into light.
class PixelDecoder {
public:
    // Tables by mantissa and exponent, since a power for each component would take longer than reading.
    explicit PixelDecoder(const detail::HdrHeader& header)
        : _gamma(header.gamma) {
        for (std::size_t exponent = 1; exponent < _scales.size(); ++exponent)
            for (std::size_t i = 0; i < 3; ++i) {
                const double unit = std::ldexp(1.0, static_cast<int>(exponent) - EXPONENT_BIAS);
                _scales[exponent][i] = std::pow(unit, _gamma) / header.exposure[i];
            }
        for (std::size_t mantissa = 0; mantissa < _mantissas.size(); ++mantissa)
            _mantissas[mantissa] = std::pow(static_cast<double>(mantissa), _gamma);
    }

    void decode(ovMemory::BufferView<const Rgbe> line, unsigned char* target) const {
        constexpr double LARGEST = std::numeric_limits<float>::max();
        for (const Rgbe& pixel : line) {
            std::array<float, 3> color;
            for (std::size_t i = 0; i < 3; ++i)
                color[i] = static_cast<float>(std::min(_mantissas[pixel[i]] * _scales[pixel[3]][i], LARGEST));
            std::memcpy(target, color.data(), sizeof(color));
            target += sizeof(color);
        }
    }

private:
    double _gamma;
    // By exponent and channel; exponent 0 is black.
    std::array<std::array<double, 3>, 256> _scales = {};
    std::array<double, 256> _mantissas = {};
};

DecodeResult decodeHdr(Bytes bytes, const DecodeOptions& options) {
    detail::HdrHeader header;
    const ovMemory::String fault = detail::readHdrHeader(bytes, header);
    if (!fault.empty())
        return detail::failFormat<DecodeResult>(NAME, fault);
    const ovMemory::String excess =
        detail::describeExcessiveSize(header.scanlineLength, header.scanlines, 3 * sizeof(float), options);
    if (!excess.empty())
        return detail::failFormat<DecodeResult>(NAME, excess);
    // The shortest scanline is one pixel and its repetition.
    const std::size_t left = bytes.size() - header.size;
    // Before the picture is allocated: a header of fifty bytes can ask for two gigabytes.
    if (options.refuseDamaged && left / sizeof(Rgbe) < header.scanlines)
        return detail::failFormat<DecodeResult>(NAME,
                                                fmt::format("{} bytes cannot hold {} scanlines of {} pixels",
                                                            left, header.scanlines, header.scanlineLength));
    DecodeResult result;
    if (!detail::allocateImage(result, NAME, header.scanlineLength, header.scanlines, 3,
                               COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR))
        return result;
    if (header.gamma != 1.0)
        detail::appendWarning(result.warning,
                              fmt::format("HDR: the file's gamma of {} was undone", header.gamma));

    ScanlineReader reader(bytes.subspan(header.size));
    const PixelDecoder decoder(header);
    ovMemory::Buffer<Rgbe> line(header.scanlineLength);
    const std::size_t stride = line.size() * 3 * sizeof(float);
    for (unsigned i = 0; i < header.scanlines; ++i) {
        const ovMemory::String lineFault = reader.read(line);
        if (!lineFault.empty()) {
            const ovMemory::String text = fmt::format("damaged data: scanline {}: {}", i, lineFault);
            if (options.refuseDamaged)
                return detail::failFormat<DecodeResult>(NAME, text);
            detail::appendWarning(result.warning, "HDR: " + text);
            break;
        }
        decoder.decode(line, result.image->getBytes().data() + i * stride);
        if (options.progress)
            options.progress((i + 1.0) / header.scanlines);
    }
    *result.image = detail::applyOrientation(std::move(*result.image), header.orientation);
    return result;
}

struct Changes {
    std::size_t negative = 0;
    std::size_t nan = 0;
    std::size_t tooLarge = 0;
};

float makeStorable(float value, Changes& changes) {
    if (std::isnan(value)) {
        ++changes.nan;
        return 0.0f;
    }
    changes.negative += value < 0.0f ? 1 : 0;
    changes.tooLarge += value > LARGEST_VALUE ? 1 : 0;
    return std::clamp(value, 0.0f, LARGEST_VALUE);
}

Rgbe encodePixel(const float* color, Changes& changes) {
    const std::array<float, 3> light = {makeStorable(color[0], changes), makeStorable(color[1], changes),
                                        makeStorable(color[2], changes)};
    const float largest = *std::max_element(light.begin(), light.end());
    int exponent = 0;
    std::frexp(largest, &exponent);
    // A largest mantissa that rounds up to 256 needs the next exponent.
    if (std::nearbyint(std::ldexp(largest, 8 - exponent)) >= 256.0f)
        ++exponent;
    const int stored = exponent + 128;
    // Below this, the mantissas would lose their leading bit, which readers rely on to tell pixels from runs.
    if (largest == 0.0f || stored < 1)
        return {};
    Rgbe pixel;
    for (std::size_t i = 0; i < light.size(); ++i)
        pixel[i] = static_cast<unsigned char>(std::nearbyint(std::ldexp(light[i], 8 - exponent)));
    pixel[3] = static_cast<unsigned char>(stored);
    return pixel;
}

// Appends one component of a scanline: runs of 4 and more as (128 + count, value), the rest as (count,
// values...).
void writeComponent(ovMemory::BufferView<const Rgbe> line, std::size_t component,
                    ovMemory::Buffer<unsigned char>& bytes) {
    // A shorter run saves nothing: it ends the values before it, which costs a byte again.
    constexpr std::size_t MIN_RUN = 4;
    // A count of 128 and below means values, so a run has one less than the byte allows.
    constexpr std::size_t MAX_RUN = 127;
    constexpr std::size_t MAX_LITERAL = 128;
    const auto runLength = [&](std::size_t begin) {
        std::size_t end = begin + 1;
        while (end < line.size() && end - begin < MAX_RUN && line[end][component] == line[begin][component])
            ++end;
        return end - begin;
    };
    for (std::size_t x = 0; x < line.size();) {
        const std::size_t run = runLength(x);
        if (run >= MIN_RUN) {
            bytes.push_back(static_cast<unsigned char>(128 + run));
            bytes.push_back(line[x][component]);
            x += run;
            continue;
        }
        std::size_t end = x + run;
        while (end < line.size()) {
            const std::size_t next = runLength(end);
            if (next >= MIN_RUN || end + next - x > MAX_LITERAL)
                break;
            end += next;
        }
        bytes.push_back(static_cast<unsigned char>(end - x));
        for (; x < end; ++x)
            bytes.push_back(line[x][component]);
    }
}

void writeScanline(ovMemory::BufferView<const Rgbe> line, ovMemory::Buffer<unsigned char>& bytes) {
    // Readers take such lengths for flat pixels, as the length would not fit the scanline's head.
    if (line.size() < MIN_RLE_LENGTH || line.size() > MAX_RLE_LENGTH) {
        for (const Rgbe& pixel : line)
            bytes.insert(bytes.end(), pixel.begin(), pixel.end());
        return;
    }
    bytes.insert(bytes.end(), {2, 2, static_cast<unsigned char>(line.size() >> 8),
                               static_cast<unsigned char>(line.size() & 0xff)});
    for (std::size_t component = 0; component < 4; ++component)
        writeComponent(line, component, bytes);
}

ovMemory::String describeChanges(const Changes& changes) {
    ovMemory::String text;
    const auto add = [&text](std::size_t count, ovMemory::StringView what) {
        if (count != 0)
            detail::appendWarning(text, fmt::format("HDR: {} components {}", count, what));
    };
    add(changes.negative, "below 0 became 0");
    add(changes.nan, "that are not a number became 0");
    add(changes.tooLarge, "beyond 1.69e38 were clamped to it");
    return text;
}

EncodeResult encodeHdr(const ImageView& view) {
    EncodeResult result;
    const Image image = convertImage(view, COMPONENT_TYPE::FLOAT, 3, view.encoding);
    if (image.isEmpty())
        return detail::failFormat<EncodeResult>(NAME, "no memory");
    const ovMemory::String header =
        fmt::format("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y {} +X {}\n", view.height, view.width);
    result.bytes.assign(header.begin(), header.end());

    Changes changes;
    ovMemory::Buffer<Rgbe> line(view.width);
    const unsigned char* source = image.getBytes().data();
    for (unsigned y = 0; y < view.height; ++y) {
        for (Rgbe& pixel : line) {
            std::array<float, 3> color;
            std::memcpy(color.data(), source, sizeof(color));
            source += sizeof(color);
            pixel = encodePixel(color.data(), changes);
        }
        writeScanline(line, result.bytes);
    }
    detail::warnOfDroppedAlpha(result.warning, view, NAME);
    detail::warnOfEncoding(result.warning, view, NAME, COLOR_ENCODING::LINEAR);
    const ovMemory::String text = describeChanges(changes);
    if (!text.empty())
        detail::appendWarning(result.warning, text);
    return result;
}

} // namespace

ovMemory::StringView HdrEncoder::getName() const {
    return NAME;
}

ovMemory::BufferView<const ovMemory::StringView> HdrEncoder::getExtensions() const {
    return EXTENSIONS;
}

bool HdrEncoder::canDecode(Bytes bytes) const {
    return bytes.size() >= MAGIC.size() && std::equal(MAGIC.begin(), MAGIC.end(), bytes.begin());
}

DecodeResult HdrEncoder::decode(Bytes bytes, const DecodeOptions& options) const {
    if (!canDecode(bytes))
        return detail::failFormat<DecodeResult>(
            NAME, "the data does not begin with \"#?\" as Radiance pictures do");
    return detail::runGuarded<DecodeResult>(NAME, [&] { return decodeHdr(bytes, options); });
}

EncodeResult HdrEncoder::encode(const ImageView& view, const EncodeOptions&) const {
    return detail::encodeHeld(NAME, view, {COMPONENT_TYPE::HALF, COMPONENT_TYPE::FLOAT},
                              "half float or float", encodeHdr);
}

} // namespace ovImages

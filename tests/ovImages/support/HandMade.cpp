#include <ovImages/support/HandMade.h>

#include <algorithm>
#include <array>

namespace handMade {

namespace {

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

std::uint32_t crc32(const Bytes& bytes) {
    std::uint32_t crc = 0xffffffffu;
    for (const unsigned char byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (crc & 1u ? 0xedb88320u : 0u);
    }
    return ~crc;
}

std::uint32_t adler32(const Bytes& bytes) {
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (const unsigned char byte : bytes) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

Bytes storeAsZlib(const Bytes& data) {
    Bytes zlib = {0x78, 0x01};
    std::size_t offset = 0;
    do {
        const std::size_t size = std::min<std::size_t>(data.size() - offset, 65535);
        const bool isLast = offset + size == data.size();
        for (const std::size_t value :
             {std::size_t(isLast ? 1 : 0), size & 255, size >> 8, ~size & 255, (~size >> 8) & 255})
            zlib.push_back(static_cast<unsigned char>(value));
        zlib.insert(zlib.end(), data.begin() + static_cast<std::ptrdiff_t>(offset),
                    data.begin() + static_cast<std::ptrdiff_t>(offset + size));
        offset += size;
    } while (offset < data.size());
    putBig32(zlib, adler32(data));
    return zlib;
}

void putChunk(Bytes& png, const PngChunk& chunk) {
    putBig32(png, static_cast<std::uint32_t>(chunk.data.size()));
    Bytes body = fromText(chunk.type);
    append(body, chunk.data);
    append(png, body);
    putBig32(png, crc32(body));
}

void putBig16(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<unsigned char>(value >> 8));
    bytes.push_back(static_cast<unsigned char>(value & 255));
}

// Bits, most significant first, with the zero byte that JPEG puts after each 255.
class BitWriter {
public:
    explicit BitWriter(Bytes& bytes)
        : _bytes(bytes) {}

    void put(unsigned value, unsigned count) {
        for (unsigned i = count; i-- > 0;) {
            _current = _current << 1 | (value >> i & 1u);
            if (++_count == 8)
                _flush();
        }
    }

    void finish() {
        while (_count != 0)
            put(1, 1);
    }

private:
    void _flush() {
        _bytes.push_back(static_cast<unsigned char>(_current));
        if (_current == 255)
            _bytes.push_back(0);
        _current = 0;
        _count = 0;
    }

    Bytes& _bytes;
    unsigned _current = 0;
    unsigned _count = 0;
};

void putSegment(Bytes& jpeg, const JpegSegment& segment) {
    jpeg.push_back(0xff);
    jpeg.push_back(segment.marker);
    putBig16(jpeg, static_cast<unsigned>(segment.data.size()) + 2);
    append(jpeg, segment.data);
}

void putBlock(BitWriter& bits, int difference) {
    const unsigned magnitude = static_cast<unsigned>(difference < 0 ? -difference : difference);
    unsigned category = 0;
    while (magnitude >> category != 0)
        ++category;
    // The code of category n is n in four bits; then the difference, less one when it is negative.
    bits.put(category, 4);
    bits.put(static_cast<unsigned>(difference < 0 ? difference - 1 : difference), category);
    bits.put(0, 1);
}

} // namespace

void putBig32(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<unsigned char>(value >> shift & 255));
}

Bytes fromText(ovMemory::StringView text) {
    return Bytes(text.begin(), text.end());
}

Bytes join(ovMemory::BufferView<const Bytes> pieces) {
    Bytes all;
    for (const Bytes& piece : pieces)
        append(all, piece);
    return all;
}

Bytes makePng(const PngHeader& header, const ovMemory::Buffer<Bytes>& rows,
              const ovMemory::Buffer<PngChunk>& chunks) {
    Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    Bytes start;
    putBig32(start, header.width);
    putBig32(start, header.height);
    append(start, {header.bitDepth, header.colorType, 0, 0, header.interlace});
    putChunk(png, {"IHDR", start});
    for (const PngChunk& chunk : chunks)
        putChunk(png, chunk);
    Bytes pixels;
    for (const Bytes& row : rows) {
        pixels.push_back(0);
        append(pixels, row);
    }
    putChunk(png, {"IDAT", storeAsZlib(pixels)});
    putChunk(png, {"IEND", {}});
    return png;
}

ovMemory::Buffer<Bytes> splitAdam7(const ovMemory::Buffer<Bytes>& rows, std::size_t pixelSize) {
    struct Pass {
        std::size_t x, y, stepX, stepY;
    };
    constexpr std::array<Pass, 7> PASSES = {
        {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}};
    ovMemory::Buffer<Bytes> split;
    for (const Pass& pass : PASSES)
        for (std::size_t y = pass.y; y < rows.size(); y += pass.stepY) {
            Bytes row;
            for (std::size_t x = pass.x * pixelSize; x < rows[y].size(); x += pass.stepX * pixelSize)
                row.insert(row.end(), rows[y].begin() + static_cast<std::ptrdiff_t>(x),
                           rows[y].begin() + static_cast<std::ptrdiff_t>(x + pixelSize));
            if (!row.empty())
                split.push_back(row);
        }
    return split;
}

Bytes makeJpeg(unsigned blocksAcross, unsigned blocksDown, unsigned components, const Bytes& blocks,
               const ovMemory::Buffer<JpegSegment>& segments) {
    Bytes jpeg = {0xff, 0xd8};
    for (const JpegSegment& segment : segments)
        putSegment(jpeg, segment);
    Bytes quantisation(65, 8);
    quantisation[0] = 0;
    putSegment(jpeg, {0xdb, quantisation});

    Bytes frame = {8};
    putBig16(frame, blocksDown * 8);
    putBig16(frame, blocksAcross * 8);
    frame.push_back(static_cast<unsigned char>(components));
    Bytes scan = {static_cast<unsigned char>(components)};
    for (unsigned i = 1; i <= components; ++i) {
        append(frame, {static_cast<unsigned char>(i), 0x11, 0});
        append(scan, {static_cast<unsigned char>(i), 0});
    }
    append(scan, {0, 63, 0});
    putSegment(jpeg, {0xc0, frame});
    // Nine DC codes of four bits, categories 0 to 8; one AC code of one bit, the end of the block.
    putSegment(jpeg,
               {0xc4, {0x00, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8}});
    putSegment(jpeg, {0xc4, {0x10, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}});
    putSegment(jpeg, {0xda, scan});

    BitWriter bits(jpeg);
    ovMemory::Buffer<int> previous(components, 128);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        putBlock(bits, blocks[i] - previous[i % components]);
        previous[i % components] = blocks[i];
    }
    bits.finish();
    append(jpeg, {0xff, 0xd9});
    return jpeg;
}

JpegSegment makeAdobeSegment(unsigned char transform) {
    Bytes data = fromText("Adobe");
    append(data, {0, 100, 0, 0, 0, 0, transform});
    return {0xee, data};
}

Bytes makeExif(unsigned orientation, bool isBigEndian) {
    const auto low = static_cast<unsigned char>(orientation);
    if (isBigEndian)
        return {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, low, 0, 0, 0, 0, 0, 0};
    return {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, low, 0, 0, 0, 0, 0, 0, 0};
}

} // namespace handMade

#include <ovImages/support/ExrFiles.h>

#include <ImfDeepFrameBuffer.h>
#include <ImfDeepScanLineOutputFile.h>
#include <ImfFrameBuffer.h>
#include <ImfMultiPartOutputFile.h>
#include <ImfOutputFile.h>
#include <ImfOutputPart.h>
#include <ImfPartType.h>
#include <ImfRgbaFile.h>
#include <ImfTiledOutputFile.h>

#include <array>

namespace exrFiles {

namespace {

// One channel's samples with room for every type.
class Plane {
public:
    Plane(const Channel& channel, std::size_t index, const Imath::Box2i& window, float factor)
        : _width(window.max.x - window.min.x + 1)
        , _samples(std::size_t(_width) * std::size_t(window.max.y - window.min.y + 1))
        , _type(channel.type)
        , _sampling(channel.sampling) {
        std::size_t next = 0;
        for (int y = window.min.y; y <= window.max.y; ++y)
            for (int x = window.min.x; x <= window.max.x; ++x) {
                Sample& sample = _samples[next++];
                const float value = getValue(index, x, y) * factor;
                if (_type == Imf::HALF)
                    sample.asHalf = half(value).bits();
                else if (_type == Imf::FLOAT)
                    sample.asFloat = value;
                else
                    sample.asUint = static_cast<unsigned>(value);
            }
    }

    Imf::Slice makeSlice(const Imath::Box2i& window) {
        return Imf::Slice::Make(_type, _samples.data(), window, sizeof(Sample),
                                sizeof(Sample) * std::size_t(_width), _sampling, _sampling);
    }

private:
    union Sample {
        std::uint16_t asHalf;
        float asFloat;
        unsigned asUint;
    };

    int _width;
    ovMemory::Buffer<Sample> _samples;
    Imf::PixelType _type;
    int _sampling;
};

void addChannels(Imf::Header& header, const ovMemory::Buffer<Channel>& channels) {
    for (const Channel& channel : channels)
        header.channels().insert(channel.name,
                                 Imf::Channel(channel.type, channel.sampling, channel.sampling));
}

struct Frame {
    Frame(const ovMemory::Buffer<Channel>& channels, const Imath::Box2i& window, float factor = 1.0f) {
        for (std::size_t i = 0; i < channels.size(); ++i)
            planes.emplace_back(channels[i], i, window, factor);
        for (std::size_t i = 0; i < channels.size(); ++i)
            buffer.insert(channels[i].name, planes[i].makeSlice(window));
    }
    ovMemory::Buffer<Plane> planes;
    Imf::FrameBuffer buffer;
};

} // namespace

float getValue(std::size_t channel, int x, int y) {
    return static_cast<float>(channel * 256 + static_cast<unsigned>((y * 7 + x * 3) & 127));
}

Bytes writeScanlines(Imf::Header header, const ovMemory::Buffer<Channel>& channels) {
    addChannels(header, channels);
    Bytes bytes;
    ovImages::detail::ExrOutputStream stream(bytes);
    Imf::OutputFile file(stream, header, 0);
    const Imath::Box2i window = header.dataWindow();
    const Frame frame(channels, window);
    file.setFrameBuffer(frame.buffer);
    file.writePixels(window.max.y - window.min.y + 1);
    return bytes;
}

Bytes writeTiles(Imf::Header header, const ovMemory::Buffer<Channel>& channels, bool hasMips) {
    addChannels(header, channels);
    header.setTileDescription(Imf::TileDescription(4, 3, hasMips ? Imf::MIPMAP_LEVELS : Imf::ONE_LEVEL));
    Bytes bytes;
    ovImages::detail::ExrOutputStream stream(bytes);
    Imf::TiledOutputFile file(stream, header, 0);
    for (int level = 0; level < file.numLevels(); ++level) {
        const Imath::Box2i window = file.dataWindowForLevel(level);
        const Frame frame(channels, window, level == 0 ? 1.0f : 0.0f);
        file.setFrameBuffer(frame.buffer);
        file.writeTiles(0, file.numXTiles(level) - 1, 0, file.numYTiles(level) - 1, level);
    }
    return bytes;
}

Bytes writeTwoParts(const ovMemory::Buffer<Channel>& first, const ovMemory::Buffer<Channel>& second) {
    std::array<Imf::Header, 2> headers = {Imf::Header(5, 3), Imf::Header(5, 3)};
    const std::array<const ovMemory::Buffer<Channel>*, 2> channels = {&first, &second};
    for (std::size_t i = 0; i < headers.size(); ++i) {
        addChannels(headers[i], *channels[i]);
        headers[i].setName(i == 0 ? "first" : "second");
        headers[i].setType(Imf::SCANLINEIMAGE);
    }
    Bytes bytes;
    ovImages::detail::ExrOutputStream stream(bytes);
    Imf::MultiPartOutputFile file(stream, headers.data(), 2, false, 0);
    for (std::size_t i = 0; i < headers.size(); ++i) {
        Imf::OutputPart part(file, static_cast<int>(i));
        const Frame frame(*channels[i], headers[i].dataWindow());
        part.setFrameBuffer(frame.buffer);
        part.writePixels(3);
    }
    return bytes;
}

Bytes writeDeep() {
    Imf::Header header(2, 1);
    addChannels(header, {{"R"}, {"G"}, {"B"}});
    header.setType(Imf::DEEPSCANLINE);
    header.compression() = Imf::ZIPS_COMPRESSION;
    Bytes bytes;
    ovImages::detail::ExrOutputStream stream(bytes);
    Imf::DeepScanLineOutputFile file(stream, header, 0);
    std::array<unsigned, 2> counts = {1, 1};
    std::array<half, 2> samples = {half(1.0f), half(2.0f)};
    std::array<half*, 2> pointers = {&samples[0], &samples[1]};
    Imf::DeepFrameBuffer buffer;
    buffer.insertSampleCountSlice(Imf::Slice(Imf::UINT, reinterpret_cast<char*>(counts.data()),
                                             sizeof(unsigned), 2 * sizeof(unsigned)));
    for (const char* name : {"R", "G", "B"})
        buffer.insert(name, Imf::DeepSlice(Imf::HALF, reinterpret_cast<char*>(pointers.data()), sizeof(half*),
                                           2 * sizeof(half*), sizeof(half)));
    file.setFrameBuffer(buffer);
    file.writePixels(1);
    return bytes;
}

Bytes writeLuminanceChroma(int width, int height, float red, float green, float blue) {
    const ovMemory::Buffer<Imf::Rgba> pixels(std::size_t(width) * std::size_t(height),
                                             Imf::Rgba(red, green, blue, 0.5f));
    Bytes bytes;
    ovImages::detail::ExrOutputStream stream(bytes);
    Imf::RgbaOutputFile file(stream, Imf::Header(width, height), Imf::WRITE_YCA, 0);
    file.setFrameBuffer(pixels.data(), 1, static_cast<std::size_t>(width));
    file.writePixels(height);
    return bytes;
}

} // namespace exrFiles

#include <ovGraphics/scene/VertexPacking.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovImages/Half.h>

namespace ovGraphics {

namespace {

void append(ovMemory::Buffer<unsigned char>& bytes, const void* value, std::size_t size) {
    const auto* from = static_cast<const unsigned char*>(value);
    bytes.insert(bytes.end(), from, from + size);
}

/// The whole number of a component: scaled, clamped to the range, rounded; 0 for what is not a number.
int64_t toWhole(float value, double scale, double lowest, double highest) {
    const double scaled = std::isnan(value) ? 0.0 : static_cast<double>(value) * scale;
    // In doubles: a float does not hold every 32-bit whole number.
    return std::llround(std::clamp(scaled, lowest, highest));
}

/// The bits of a component of a number of bytes, of which the low ones are used.
uint32_t toBits(float value, FORMAT_COMPONENT component, unsigned int size) {
    const double unsignedMaximum = std::ldexp(1.0, static_cast<int>(8 * size)) - 1.0;
    const double signedMaximum = std::ldexp(1.0, static_cast<int>(8 * size) - 1) - 1.0;
    switch (component) {
    case FORMAT_COMPONENT::UNORM:
        return static_cast<uint32_t>(toWhole(value, unsignedMaximum, 0.0, unsignedMaximum));
    case FORMAT_COMPONENT::SNORM:
        return static_cast<uint32_t>(toWhole(value, signedMaximum, -signedMaximum, signedMaximum));
    case FORMAT_COMPONENT::UINT:
        return static_cast<uint32_t>(toWhole(value, 1.0, 0.0, unsignedMaximum));
    case FORMAT_COMPONENT::SINT:
        return static_cast<uint32_t>(toWhole(value, 1.0, -signedMaximum - 1.0, signedMaximum));
    default:
        return size == sizeof(uint16_t) ? ovImages::floatToHalf(value) : std::bit_cast<uint32_t>(value);
    }
}

} // namespace

ovMemory::Buffer<unsigned char> packVertices(const VertexComposition& composition,
                                             ovMemory::BufferView<const ovMaths::Vector> values) {
    ovMemory::Buffer<unsigned char> bytes;
    const unsigned int attributes = composition.getAttributeCount();
    bytes.reserve(values.size() / attributes * composition.getStride());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const FORMAT format = composition.getAttribute(static_cast<unsigned int>(i % attributes)).format;
        const unsigned int channels = TextureUtils::getFormatChannelCount(format);
        const unsigned int size = TextureUtils::getFormatBlockSize(format) / channels;
        const std::array<float, 4> components = {values[i].x, values[i].y, values[i].z, values[i].w};
        for (unsigned int channel = 0; channel < channels; ++channel) {
            // Little-endian, as every machine that this runs on: the low bytes come first.
            const uint32_t bits = toBits(components[channel], TextureUtils::getFormatComponent(format), size);
            append(bytes, &bits, size);
        }
    }
    return bytes;
}

} // namespace ovGraphics

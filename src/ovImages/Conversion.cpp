#include <ovImages/Conversion.h>

#include <ovImages/detail/Components.h>
#include <ovImages/detail/SrgbBytes.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

namespace ovImages {

namespace {

constexpr unsigned colorChannels(unsigned channels) {
    return channels < 3 ? 1 : 3;
}
constexpr bool hasAlpha(unsigned channels) {
    return channels % 2 == 0;
}

using ByteTable = std::array<float, 256>;

// A byte has 256 values only, so that the power of the sRGB curve is computed for each of them once.
const ByteTable& getSrgbByteTable() {
    static const ByteTable table = [] {
        ByteTable values;
        for (unsigned i = 0; i < values.size(); ++i)
            values[i] = srgbToLinear(static_cast<float>(i) / 255.0f);
        return values;
    }();
    return table;
}

/// Where each channel of a target comes from: a channel of the source, or OPAQUE.
using ChannelMap = std::array<unsigned, 4>;
constexpr unsigned OPAQUE = 4;

ChannelMap mapChannels(unsigned source, unsigned target) {
    ChannelMap map = {0, 0, 0, 0};
    const unsigned colors = colorChannels(target);
    for (unsigned i = 0; i < colors; ++i)
        map[i] = colorChannels(source) == 1 ? 0 : i;
    if (hasAlpha(target))
        map[colors] = hasAlpha(source) ? source - 1 : OPAQUE;
    return map;
}

template <typename STORED>
void copyChannels(const unsigned char* source, unsigned sourceChannels, STORED opaque, const ChannelMap& map,
                  ovMemory::BufferView<unsigned char> target, unsigned targetChannels) {
    // The value of alpha 1 lies behind the pixel's own, where the map looks for it.
    std::array<STORED, OPAQUE + 1> pixel = {};
    pixel[OPAQUE] = opaque;
    for (unsigned char* to = target.data(); to != target.data() + target.size();) {
        for (unsigned i = 0; i < sourceChannels; ++i, source += sizeof(STORED))
            std::memcpy(&pixel[i], source, sizeof(STORED));
        for (unsigned i = 0; i < targetChannels; ++i, to += sizeof(STORED))
            std::memcpy(to, &pixel[map[i]], sizeof(STORED));
    }
}

// Conversions go through floats, row by row: one path for every pair of types, and a row stays in the cache.
// Floats hold every 16-bit integer and every half exactly. Two ways are shorter, because whole photographs
// take them: numbers that only change their places, and light that becomes bytes of sRGB.
class RowConverter {
public:
    RowConverter(const ImageView& source, Image& target, unsigned firstRow)
        : _source(source)
        , _target(target)
        , _firstRow(firstRow)
        , _loaded(std::size_t(source.width) * source.channels)
        , _mapped(std::size_t(source.width) * target.getChannels()) {
        const bool isSourceSrgb = source.encoding == COLOR_ENCODING::SRGB;
        const bool isTargetSrgb = target.getEncoding() == COLOR_ENCODING::SRGB;
        // Luminance is a property of light. A grey picture of sRGB numbers is therefore decoded first and
        // encoded again.
        _collapses = colorChannels(source.channels) == 3 && colorChannels(target.getChannels()) == 1;
        _decodes = isSourceSrgb && (!isTargetSrgb || _collapses);
        _encodes = isTargetSrgb && (!isSourceSrgb || _collapses);
        // Halves would not do: infinities among them are clamped.
        _copies = source.componentType == target.getComponentType() &&
                  source.componentType != COMPONENT_TYPE::HALF && source.encoding == target.getEncoding() &&
                  !_collapses;
    }

    void convert(unsigned y) {
        const std::size_t sourceStride = _loaded.size() * getComponentSize(_source.componentType);
        const std::size_t targetStride = _mapped.size() * getComponentSize(_target.getComponentType());
        const unsigned char* source = _source.bytes.data() + y * sourceStride;
        const auto target = _target.getBytes().subspan((_firstRow + y) * targetStride, targetStride);
        if (_copies)
            return _copy(source, target);
        detail::loadComponents(source, _source.componentType, _loaded);
        if (_decodes)
            _decode(source);
        _map();
        if (_encodes && _target.getComponentType() == COMPONENT_TYPE::UINT8)
            return _storeSrgbBytes(target);
        if (_encodes)
            _encode();
        const detail::StoreLosses losses =
            detail::storeComponents(_mapped, _target.getComponentType(), target.data());
        _losses.clampedToHalf += losses.clampedToHalf;
        _losses.nanToZero += losses.nanToZero;
    }

    const detail::StoreLosses& getLosses() const { return _losses; }

private:
    void _copy(const unsigned char* source, ovMemory::BufferView<unsigned char> target) const {
        const unsigned from = _source.channels;
        const unsigned to = _target.getChannels();
        const ChannelMap map = mapChannels(from, to);
        if (_source.componentType == COMPONENT_TYPE::UINT8)
            copyChannels<std::uint8_t>(source, from, std::numeric_limits<std::uint8_t>::max(), map, target,
                                       to);
        else if (_source.componentType == COMPONENT_TYPE::UINT16)
            copyChannels<std::uint16_t>(source, from, std::numeric_limits<std::uint16_t>::max(), map, target,
                                        to);
        else
            copyChannels<float>(source, from, 1.0f, map, target, to);
    }

    void _storeSrgbBytes(ovMemory::BufferView<unsigned char> target) {
        const detail::SrgbBytes& srgb = detail::SrgbBytes::get();
        const unsigned channels = _target.getChannels();
        const unsigned colors = colorChannels(channels);
        for (std::size_t pixel = 0; pixel < _mapped.size(); pixel += channels) {
            for (std::size_t i = pixel; i < pixel + colors; ++i) {
                _losses.nanToZero += std::isnan(_mapped[i]) ? 1 : 0;
                target[i] = srgb.encode(_mapped[i]);
            }
            if (hasAlpha(channels))
                _losses.nanToZero += detail::storeComponents({&_mapped[pixel + colors], 1},
                                                             COMPONENT_TYPE::UINT8, &target[pixel + colors])
                                         .nanToZero;
        }
    }

    void _decode(const unsigned char* source) {
        const bool isByte = _source.componentType == COMPONENT_TYPE::UINT8;
        const ByteTable& table = getSrgbByteTable();
        const unsigned colors = colorChannels(_source.channels);
        for (std::size_t pixel = 0; pixel < _loaded.size(); pixel += _source.channels)
            for (std::size_t i = pixel; i < pixel + colors; ++i)
                _loaded[i] = isByte ? table[source[i]] : srgbToLinear(_loaded[i]);
    }

    void _encode() {
        const unsigned colors = colorChannels(_target.getChannels());
        for (std::size_t pixel = 0; pixel < _mapped.size(); pixel += _target.getChannels())
            for (std::size_t i = pixel; i < pixel + colors; ++i)
                _mapped[i] = linearToSrgb(_mapped[i]);
    }

    void _map() {
        const unsigned targetChannels = _target.getChannels();
        const unsigned targetColors = colorChannels(targetChannels);
        const unsigned sourceColors = colorChannels(_source.channels);
        const float* from = _loaded.data();
        float* to = _mapped.data();
        for (unsigned x = 0; x < _source.width; ++x, from += _source.channels, to += targetChannels) {
            if (_collapses)
                // The luminance of light with the primaries of Rec. 709, which are those of sRGB.
                to[0] = 0.2126f * from[0] + 0.7152f * from[1] + 0.0722f * from[2];
            else
                for (unsigned i = 0; i < targetColors; ++i)
                    to[i] = from[sourceColors == 1 ? 0 : i];
            if (hasAlpha(targetChannels))
                to[targetColors] = hasAlpha(_source.channels) ? from[sourceColors] : 1.0f;
        }
    }

    const ImageView& _source;
    Image& _target;
    std::size_t _firstRow;
    ovMemory::Buffer<float> _loaded;
    ovMemory::Buffer<float> _mapped;
    detail::StoreLosses _losses;
    bool _collapses = false;
    bool _decodes = false;
    bool _encodes = false;
    bool _copies = false;
};

} // namespace

float srgbToLinear(float encoded) {
    // The negated comparison sends NaN through the curve, which keeps it.
    if (encoded <= 0.04045f)
        return encoded / 12.92f;
    return std::pow((encoded + 0.055f) / 1.055f, 2.4f);
}

float linearToSrgb(float linear) {
    if (linear <= 0.0031308f)
        return linear * 12.92f;
    return 1.055f * std::pow(linear, 1.0f / 2.4f) - 0.055f;
}

Image convertImage(const ImageView& source, COMPONENT_TYPE type, unsigned channels, COLOR_ENCODING encoding,
                   ovMemory::String* warning) {
    if (warning)
        warning->clear();
    if (!isValid(source) || channels < 1 || channels > 4)
        return {};
    Image target(source.width, source.height, channels, type, encoding);
    if (target.isEmpty())
        return target;
    if (source.componentType == type && source.channels == channels && source.encoding == encoding) {
        std::copy(source.bytes.begin(), source.bytes.end(), target.getBytes().begin());
        return target;
    }
    ConversionLosses losses;
    if (!convertRows(source, target, 0, losses))
        return {};
    if (warning)
        *warning = describeLosses(losses);
    return target;
}

bool convertRows(const ImageView& source, Image& target, unsigned firstRow, ConversionLosses& losses) {
    if (!isValid(source) || source.width != target.getWidth() || firstRow > target.getHeight() ||
        source.height > target.getHeight() - firstRow)
        return false;
    try {
        RowConverter converter(source, target, firstRow);
        for (unsigned y = 0; y < source.height; ++y)
            converter.convert(y);
        losses.clampedToHalf += converter.getLosses().clampedToHalf;
        losses.nanToZero += converter.getLosses().nanToZero;
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

ovMemory::String describeLosses(const ConversionLosses& losses) {
    ovMemory::String text;
    if (losses.clampedToHalf != 0)
        text = fmt::format("{} components beyond 65504, the largest half float, were clamped to it",
                           losses.clampedToHalf);
    if (losses.nanToZero != 0)
        text += fmt::format("{}{} components that are not a number became 0", text.empty() ? "" : "; ",
                            losses.nanToZero);
    return text;
}

} // namespace ovImages

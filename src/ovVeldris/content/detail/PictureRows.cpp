#include <ovVeldris/content/detail/PictureRows.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <ovImages/Conversion.h>
#include <utility>

namespace ovVeldris::detail {

namespace {

constexpr std::size_t ROW_CHANNELS = 4;
constexpr unsigned int NO_ROW = std::numeric_limits<unsigned int>::max();

float mix(float a, float b, float weight) {
    return a * (1.0f - weight) + b * weight;
}

/// The two pixels around a place on an axis, and the weight of the second.
struct Neighbours {
    unsigned int first;
    unsigned int second;
    float weight;
};

// Middles of pixels, as devices read textures: a computed texture then fits the ones it is used beside.
Neighbours neighboursOf(unsigned int at, unsigned int count, unsigned int size) {
    const float place =
        (static_cast<float>(at) + 0.5f) * static_cast<float>(size) / static_cast<float>(count) - 0.5f;
    const float clamped = std::clamp(place, 0.0f, static_cast<float>(size - 1));
    const auto first = static_cast<unsigned int>(clamped);
    return {first, std::min(first + 1, size - 1), clamped - static_cast<float>(first)};
}

ovImages::Image convertRow(const ovImages::ImageView& picture, unsigned int index) {
    ovImages::ImageView row = picture;
    const std::size_t size = picture.bytes.size() / picture.height;
    row.height = 1;
    row.bytes = picture.bytes.subspan(index * size, size);
    return ovImages::convertImage(row, ovImages::COMPONENT_TYPE::FLOAT, ROW_CHANNELS,
                                  ovImages::COLOR_ENCODING::LINEAR);
}

} // namespace

PictureRows::PictureRows(const ovImages::ImageView& picture, unsigned int width, unsigned int height)
    : _picture(picture)
    , _width(width)
    , _height(height)
    , _upper{NO_ROW, {}}
    , _lower{NO_ROW, {}}
    , _mixed(width * ROW_CHANNELS) {}

ovMemory::BufferView<const float> PictureRows::read(unsigned int y) {
    const Neighbours down = neighboursOf(y, _height, _picture.height);
    // What was below is above as soon as the next row begins.
    if (_lower.index == down.first)
        std::swap(_upper, _lower);
    const Row& upper = _rowOf(down.first, _upper);
    if (down.weight == 0.0f)
        return upper.values;
    const Row& lower = _rowOf(down.second, _lower);
    for (std::size_t i = 0; i < _mixed.size(); ++i)
        _mixed[i] = mix(upper.values[i], lower.values[i], down.weight);
    return _mixed;
}

const PictureRows::Row& PictureRows::_rowOf(unsigned int index, Row& place) {
    if (place.index == index)
        return place;
    const ovImages::Image converted = convertRow(_picture, index);
    const auto* floats = reinterpret_cast<const float*>(converted.getBytes().data());
    _stretch({floats, converted.getBytes().size() / sizeof(float)}, place.values);
    place.index = index;
    return place;
}

void PictureRows::_stretch(ovMemory::BufferView<const float> source, ovMemory::Buffer<float>& target) const {
    target.assign(source.begin(), source.end());
    if (_picture.width == _width)
        return;
    target.resize(_width * ROW_CHANNELS);
    for (unsigned int x = 0; x < _width; ++x) {
        const Neighbours across = neighboursOf(x, _width, _picture.width);
        for (std::size_t channel = 0; channel < ROW_CHANNELS; ++channel)
            target[x * ROW_CHANNELS + channel] =
                mix(source[across.first * ROW_CHANNELS + channel],
                    source[across.second * ROW_CHANNELS + channel], across.weight);
    }
}

ovImages::Image
makePicture(unsigned int width, unsigned int height, ovImages::COLOR_ENCODING encoding,
            const std::function<void(unsigned int y, ovMemory::BufferView<float> row)>& fillRow) {
    ovImages::Image picture(width, height, ROW_CHANNELS, ovImages::COMPONENT_TYPE::UINT8, encoding);
    ovMemory::Buffer<float> row(width * ROW_CHANNELS);
    unsigned char* target = picture.getBytes().data();
    for (unsigned int y = 0; !picture.isEmpty() && y < height; ++y) {
        fillRow(y, row);
        const ovMemory::BufferView<const unsigned char> bytes(
            reinterpret_cast<const unsigned char*>(row.data()), row.size() * sizeof(float));
        const ovImages::Image rounded =
            ovImages::convertImage({width, 1, ROW_CHANNELS, ovImages::COMPONENT_TYPE::FLOAT,
                                    ovImages::COLOR_ENCODING::LINEAR, bytes},
                                   ovImages::COMPONENT_TYPE::UINT8, ROW_CHANNELS, encoding);
        target = std::copy(rounded.getBytes().begin(), rounded.getBytes().end(), target);
    }
    return picture;
}

} // namespace ovVeldris::detail

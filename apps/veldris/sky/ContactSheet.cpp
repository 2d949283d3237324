#include <veldris/sky/ContactSheet.h>

#include <algorithm>
#include <cmath>

namespace veldris {

using ovImages::ImageView;

namespace {

constexpr unsigned int CELL_WIDTH = 320; // pixels at most
constexpr unsigned int GAP = 4;          // pixels
constexpr unsigned int CHANNELS = 4;

unsigned int columnsFor(unsigned int count) {
    return static_cast<unsigned int>(std::ceil(std::sqrt(count)));
}

/// The mean of a square of pixels.
float meanOf(const ImageView& picture, unsigned int left, unsigned int top, unsigned int side,
             unsigned int channel) {
    const auto* texels = reinterpret_cast<const float*>(picture.bytes.data());
    double sum = 0.0;
    for (unsigned int y = top; y < top + side; ++y)
        for (unsigned int x = left; x < left + side; ++x)
            sum += static_cast<double>(texels[(std::size_t{y} * picture.width + x) * CHANNELS + channel]);
    return static_cast<float>(sum / (side * side));
}

} // namespace

ContactSheet::ContactSheet(unsigned int count, unsigned int width, unsigned int height)
    : _columns(columnsFor(count))
    // A picture that is wider than high by more is not reduced to nothing.
    , _reduction(std::clamp((width + CELL_WIDTH - 1) / CELL_WIDTH, 1u, std::min(width, height)))
    , _cellWidth(width / _reduction)
    , _cellHeight(height / _reduction) {
    const unsigned int rows = (count + _columns - 1) / _columns;
    _image = ovImages::Image(_columns * (_cellWidth + GAP) + GAP, rows * (_cellHeight + GAP) + GAP, CHANNELS,
                             ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < _image.getHeight(); ++y)
        for (unsigned int x = 0; x < _image.getWidth(); ++x)
            _image.setComponent(x, y, CHANNELS - 1, 1.0f);
}

void ContactSheet::add(const ImageView& picture) {
    const unsigned int left = GAP + _added % _columns * (_cellWidth + GAP);
    const unsigned int top = GAP + _added / _columns * (_cellHeight + GAP);
    ++_added;
    if (_image.isEmpty())
        return;
    for (unsigned int y = 0; y < _cellHeight; ++y)
        for (unsigned int x = 0; x < _cellWidth; ++x)
            for (unsigned int channel = 0; channel < CHANNELS; ++channel)
                _image.setComponent(left + x, top + y, channel,
                                    meanOf(picture, x * _reduction, y * _reduction, _reduction, channel));
}

} // namespace veldris

#include <veldris/demo/PictureSheet.h>

#include <algorithm>

namespace veldris {

using ovImages::Image;

PictureSheet::PictureSheet(unsigned int width, unsigned int height, unsigned int columns, unsigned int rows,
                           ovImages::COLOR_ENCODING encoding)
    : _columns(columns)
    , _rows(rows)
    , _image(width, height, 4, ovImages::COMPONENT_TYPE::FLOAT, encoding) {
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 4; ++channel)
                _image.setComponent(x, y, channel, 1.0f);
}

unsigned int PictureSheet::getCellWidth() const {
    return std::max(_image.getWidth() / _columns, 1u);
}

unsigned int PictureSheet::getCellHeight() const {
    return std::max(_image.getHeight() / _rows, 1u);
}

void PictureSheet::draw(const Image& picture, unsigned int cell, unsigned int scale) {
    const unsigned int left = std::min(cell % _columns * getCellWidth(), _image.getWidth());
    const unsigned int top = std::min(cell / _columns * getCellHeight(), _image.getHeight());
    const unsigned int width = std::min(scale * picture.getWidth(), _image.getWidth() - left);
    const unsigned int height = std::min(scale * picture.getHeight(), _image.getHeight() - top);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 3; ++channel)
                _image.setComponent(left + x, top + y, channel,
                                    picture.getComponent(x / scale, y / scale, channel));
}

} // namespace veldris

// Pictures beside each other in one.
#pragma once

#include <ovImages/Image.h>

namespace veldris {

/// A white, opaque picture of four floats in equal cells. What is left at its right and its lower edge, where
/// its size is no multiple of a cell's, stays white.
class PictureSheet {
public:
    /// @param columns, rows above 0
    PictureSheet(unsigned int width, unsigned int height, unsigned int columns, unsigned int rows,
                 ovImages::COLOR_ENCODING encoding);

    /// At least one pixel, so that a cell's picture can always be made.
    unsigned int getCellWidth() const;
    unsigned int getCellHeight() const;

    /// Draws a picture's colours from the upper left corner of a cell on. What does not fit into the sheet is
    /// left out; alpha is left out as well, for the sheet is opaque.
    /// @param cell in reading order, below columns times rows @param scale the side of a texel, pixels
    void draw(const ovImages::Image& picture, unsigned int cell, unsigned int scale = 1);

    ovImages::Image take() { return std::move(_image); }

private:
    unsigned int _columns;
    unsigned int _rows;
    ovImages::Image _image;
};

} // namespace veldris

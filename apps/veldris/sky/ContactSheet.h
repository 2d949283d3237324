// Many pictures in one.
#pragma once

#include <ovImages/Image.h>

namespace veldris {

/// A sheet of small pictures in rows, nearly as many as columns, with black between them.
class ContactSheet {
public:
    /// @param count of the pictures, 1 or more @param width, height of each in pixels
    ContactSheet(unsigned int count, unsigned int width, unsigned int height);

    /// Adds the next picture in reading order, scene-linear, of four floats. Each pixel of the sheet is the
    /// mean of a square of the picture's.
    void add(const ovImages::ImageView& picture);
    /// The sheet, scene-linear, of four floats; empty when memory does not suffice.
    const ovImages::Image& getImage() const { return _image; }

private:
    unsigned int _columns;
    unsigned int _reduction; ///< pixels of a picture along a side of one of the sheet
    unsigned int _cellWidth;
    unsigned int _cellHeight;
    unsigned int _added = 0;
    ovImages::Image _image;
};

} // namespace veldris

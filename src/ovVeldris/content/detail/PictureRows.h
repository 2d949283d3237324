// Pictures of any kind, read row by row as linear floats.
#pragma once

#include <functional>
#include <ovCommon/Api.h>
#include <ovImages/Image.h>

namespace ovVeldris::detail {

/// A picture stretched over width x height pixels, bilinearly, as devices read textures. Few rows of it are
/// in memory at a time.
class OV_API PictureRows {
public:
    /// @param picture borrowed, valid
    PictureRows(const ovImages::ImageView& picture, unsigned int width, unsigned int height);

    /// Four linear floats a pixel of row y, until the next call. Rows are cheapest in order.
    ovMemory::BufferView<const float> read(unsigned int y);

private:
    /// A row of the picture stretched across, and which one it is.
    struct Row {
        unsigned int index;
        ovMemory::Buffer<float> values;
    };

    const Row& _rowOf(unsigned int index, Row& place);
    void _stretch(ovMemory::BufferView<const float> source, ovMemory::Buffer<float>& target) const;

    ovImages::ImageView _picture;
    unsigned int _width;
    unsigned int _height;
    Row _upper;
    Row _lower;
    ovMemory::Buffer<float> _mixed;
};

/// A picture of four channels of 8 bits. @param fillRow gives row y, four linear floats a pixel. @return the
/// empty picture when memory does not suffice
OV_API ovImages::Image
makePicture(unsigned int width, unsigned int height, ovImages::COLOR_ENCODING encoding,
            const std::function<void(unsigned int y, ovMemory::BufferView<float> row)>& fillRow);

} // namespace ovVeldris::detail

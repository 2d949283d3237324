#include <veldris/bake/CrossLayout.h>

#include <algorithm>

namespace veldris {

namespace {

/// In faces from the top left.
struct Place {
    unsigned int column;
    unsigned int row;
    bool isTurned = false;
};

using Places = std::array<Place, FACE_COUNT>;

// In the order of the faces. Both layouts fold up to a cube seen from inside; in the vertical one -Z hangs
// below -Y and is therefore upside down.
constexpr Places HORIZONTAL = {{{2, 1}, {0, 1}, {1, 0}, {1, 2}, {1, 1}, {3, 1}}};
constexpr Places VERTICAL = {{{2, 1}, {0, 1}, {1, 0}, {1, 2}, {1, 1}, {1, 3, true}}};

bool isGrid(unsigned int width, unsigned int height, unsigned int columns, unsigned int rows) {
    return width > 0 && width % columns == 0 && height % rows == 0 && width / columns == height / rows;
}

// Half a turn is the reverse order of all pixels.
void turn(ovMemory::BufferView<unsigned char> pixels, std::size_t pixelSize) {
    const std::size_t count = pixels.size() / pixelSize;
    for (std::size_t i = 0; i < count / 2; ++i) {
        unsigned char* other = pixels.data() + (count - 1 - i) * pixelSize;
        std::swap_ranges(other, other + pixelSize, pixels.data() + i * pixelSize);
    }
}

/// Bytes from the start of a cross to the start of a row of one of its faces.
std::size_t offsetIn(const Place& place, unsigned int side, unsigned int row, std::size_t pixelSize,
                     unsigned int crossWidth) {
    return ((std::size_t(place.row) * side + row) * crossWidth + std::size_t(place.column) * side) *
           pixelSize;
}

} // namespace

bool isCross(unsigned int width, unsigned int height) {
    return isGrid(width, height, 4, 3) || isGrid(width, height, 3, 4);
}

ovImages::Image facesOfCross(const ovImages::ImageView& cross) {
    if (!isCross(cross.width, cross.height))
        return {};
    const Places& places = cross.width > cross.height ? HORIZONTAL : VERTICAL;
    const unsigned int side = cross.width / (cross.width > cross.height ? 4 : 3);
    ovImages::Image mip(side, side * FACE_COUNT, cross.channels, cross.componentType, cross.encoding);
    if (mip.isEmpty())
        return mip;
    const std::size_t pixelSize = cross.channels * ovImages::getComponentSize(cross.componentType);
    const std::size_t rowSize = side * pixelSize;
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        const ovMemory::BufferView<unsigned char> target = faceBytesOf(mip, face);
        for (unsigned int row = 0; row < side; ++row)
            std::copy_n(cross.bytes.data() + offsetIn(places[face], side, row, pixelSize, cross.width),
                        rowSize, target.data() + row * rowSize);
        if (places[face].isTurned)
            turn(target, pixelSize);
    }
    return mip;
}

ovImages::Image crossOfFaces(const ovImages::Image& mip) {
    const unsigned int side = mip.getWidth();
    ovImages::Image cross(side * 4, side * 3, mip.getChannels(), mip.getComponentType(), mip.getEncoding());
    if (cross.isEmpty())
        return cross;
    const std::size_t pixelSize = mip.getChannels() * ovImages::getComponentSize(mip.getComponentType());
    const std::size_t rowSize = side * pixelSize;
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        const ovImages::ImageView source = faceOf(mip, face);
        for (unsigned int row = 0; row < side; ++row)
            std::copy_n(source.bytes.data() + row * rowSize, rowSize,
                        cross.getBytes().data() +
                            offsetIn(HORIZONTAL[face], side, row, pixelSize, cross.getWidth()));
    }
    return cross;
}

} // namespace veldris

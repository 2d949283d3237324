#include <ovImages/cubes/CubeLayout.h>

#include <algorithm>
#include <array>

namespace ovImages {

namespace {

/// In faces from the top left.
struct Place {
    unsigned int column;
    unsigned int row;
    unsigned int turns = 0; ///< quarters clockwise from the picture to the face
};

/// A layout of a grid of faces.
struct Grid {
    CUBE_LAYOUT layout;
    unsigned int columns;
    unsigned int rows;
    std::array<Place, FACE_COUNT> places;
};

// Faces in their order. Both crosses fold up to a cube seen from inside; in the vertical one -Z hangs below
// -Y and is therefore upside down. OpenEXR's x is our z and the other way round (ImfEnvmap.h), which turns
// the faces above and below.
constexpr Grid GRIDS[] = {
    {CUBE_LAYOUT::CROSS, 4, 3, {{{2, 1}, {0, 1}, {1, 0}, {1, 2}, {1, 1}, {3, 1}}}},
    {CUBE_LAYOUT::CROSS, 3, 4, {{{2, 1}, {0, 1}, {1, 0}, {1, 2}, {1, 1}, {1, 3, 2}}}},
    {CUBE_LAYOUT::STRIP, 1, 6, {{{0, 0}, {0, 1}, {0, 2}, {0, 3}, {0, 4}, {0, 5}}}},
    {CUBE_LAYOUT::STRIP, 6, 1, {{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}}},
    {CUBE_LAYOUT::EXR_STRIP, 1, 6, {{{0, 4}, {0, 5}, {0, 2, 1}, {0, 3, 3}, {0, 0}, {0, 1}}}}};
constexpr const Grid& WRITTEN = GRIDS[0];

bool hasShape(const Grid& grid, unsigned int width, unsigned int height) {
    return width > 0 && width % grid.columns == 0 && height % grid.rows == 0 &&
           width / grid.columns == height / grid.rows;
}

/// The pixel of a place that is turned to a pixel of its face.
struct Pixel {
    unsigned int x;
    unsigned int y;
};

Pixel turnedFrom(Pixel face, unsigned int turns, unsigned int side) {
    const unsigned int last = side - 1;
    switch (turns) {
    case 1:
        return {face.y, last - face.x};
    case 2:
        return {last - face.x, last - face.y};
    case 3:
        return {last - face.y, face.x};
    default:
        return face;
    }
}

/// Bytes from the start of a picture to a pixel of one of its places.
std::size_t offsetIn(const Place& place, unsigned int side, Pixel pixel, std::size_t pixelSize,
                     unsigned int pictureWidth) {
    return ((std::size_t(place.row) * side + pixel.y) * pictureWidth + std::size_t(place.column) * side +
            pixel.x) *
           pixelSize;
}

} // namespace

CUBE_LAYOUT cubeLayoutOf(unsigned int width, unsigned int height) {
    for (const Grid& grid : GRIDS)
        if (hasShape(grid, width, height))
            return grid.layout;
    return CUBE_LAYOUT::NONE;
}

Image facesOfPicture(const ImageView& picture, CUBE_LAYOUT layout) {
    const auto* const grid = std::ranges::find_if(GRIDS, [&](const Grid& candidate) {
        return candidate.layout == layout && hasShape(candidate, picture.width, picture.height);
    });
    if (grid == std::end(GRIDS))
        return {};
    const unsigned int side = picture.width / grid->columns;
    Image mip(side, side * FACE_COUNT, picture.channels, picture.componentType, picture.encoding);
    if (mip.isEmpty())
        return mip;
    const std::size_t pixelSize = picture.channels * getComponentSize(picture.componentType);
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        const Place& place = grid->places[face];
        unsigned char* target = faceBytesOf(mip, face).data();
        for (unsigned int y = 0; y < side; ++y)
            for (unsigned int x = 0; x < side; ++x)
                target = std::copy_n(picture.bytes.data() + offsetIn(place, side,
                                                                     turnedFrom({x, y}, place.turns, side),
                                                                     pixelSize, picture.width),
                                     pixelSize, target);
    }
    return mip;
}

Image crossOfFaces(const Image& mip) {
    const unsigned int side = mip.getWidth();
    Image cross(side * 4, side * 3, mip.getChannels(), mip.getComponentType(), mip.getEncoding());
    if (cross.isEmpty())
        return cross;
    const std::size_t pixelSize = mip.getChannels() * getComponentSize(mip.getComponentType());
    const std::size_t rowSize = side * pixelSize;
    for (unsigned int face = 0; face < FACE_COUNT; ++face) {
        const ImageView source = faceOf(mip, face);
        for (unsigned int row = 0; row < side; ++row)
            std::copy_n(source.bytes.data() + row * rowSize, rowSize,
                        cross.getBytes().data() +
                            offsetIn(WRITTEN.places[face], side, {0, row}, pixelSize, cross.getWidth()));
    }
    return cross;
}

} // namespace ovImages

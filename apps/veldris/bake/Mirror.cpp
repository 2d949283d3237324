#include <veldris/bake/Mirror.h>

#include <algorithm>

namespace veldris {

namespace {

using Texel = std::array<float, 4>;

/// The rows of a picture; inputs are four floats a pixel.
ovMemory::BufferView<Texel> texelsOf(ovMemory::BufferView<unsigned char> bytes) {
    return {reinterpret_cast<Texel*>(bytes.data()), bytes.size() / sizeof(Texel)};
}

void turnColumns(ovMemory::BufferView<Texel> texels, std::size_t width) {
    for (std::size_t start = 0; start < texels.size(); start += width)
        std::ranges::reverse(texels.subspan(start, width));
}

void turnRows(ovMemory::BufferView<Texel> texels, std::size_t width) {
    const std::size_t height = texels.size() / width;
    for (std::size_t row = 0; row < height / 2; ++row)
        std::ranges::swap_ranges(texels.subspan(row * width, width),
                                 texels.subspan((height - 1 - row) * width, width));
}

/// z runs along the rows of the faces +X and -X and along the columns of +Y and -Y; those along z change
/// places.
void mirrorCube(ovImages::Image& mip) {
    const std::size_t side = mip.getWidth();
    for (const unsigned int face : {0u, 1u, 4u, 5u})
        turnColumns(texelsOf(faceBytesOf(mip, face)), side);
    for (const unsigned int face : {2u, 3u})
        turnRows(texelsOf(faceBytesOf(mip, face)), side);
    std::ranges::swap_ranges(faceBytesOf(mip, 4), faceBytesOf(mip, 5));
}

} // namespace

void mirror(EnvironmentInput& input) {
    if (input.isCube)
        mirrorCube(input.image);
    else
        turnColumns(texelsOf(input.image.getBytes()), input.image.getWidth());
}

} // namespace veldris

#include <ovVeldris/content/detail/MetalConversion.h>

#include <algorithm>
#include <array>
#include <ovImages/Conversion.h>
#include <ovVeldris/content/detail/PictureRows.h>

namespace ovVeldris::detail {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovImages::ImageView;

namespace {

constexpr std::size_t BYTES = 256;
constexpr unsigned int COLORS = 3;
constexpr unsigned int ALPHA = 3;
constexpr unsigned int CHANNELS = 4;
constexpr unsigned int METALNESS = 2; ///< channel of colours

/// Of one channel: from a base colour with its factor and a metalness to what is stored.
using Formula = float (*)(float base, float metalness);

/// What every pair of bytes becomes, for each colour: index [metalness * 256 + base].
using Table = std::array<ovMemory::Buffer<unsigned char>, COLORS>;

/// What the library makes of each byte.
std::array<float, BYTES> valuesOfBytes(COLOR_ENCODING encoding) {
    Image ramp(BYTES, 1, 1, COMPONENT_TYPE::UINT8, encoding);
    for (std::size_t i = 0; i < BYTES; ++i)
        ramp.getBytes()[i] = static_cast<unsigned char>(i);
    const Image floats = convertImage(ramp.view(), COMPONENT_TYPE::FLOAT, 1, COLOR_ENCODING::LINEAR);
    std::array<float, BYTES> values = {};
    for (unsigned int i = 0; i < BYTES; ++i)
        values[i] = floats.getComponent(i, 0, 0);
    return values;
}

Table makeTable(const MetalSurface& source, Formula formula) {
    const std::array<float, BYTES> light = valuesOfBytes(source.base.encoding);
    const std::array<float, BYTES> metalness = valuesOfBytes(source.surface.encoding);
    const float factors[] = {source.baseColor.x, source.baseColor.y, source.baseColor.z};
    Table table;
    for (unsigned int color = 0; color < COLORS; ++color) {
        Image values(BYTES, BYTES, 1, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
        for (unsigned int m = 0; m < BYTES; ++m)
            for (unsigned int b = 0; b < BYTES; ++b)
                values.setComponent(b, m, 0,
                                    formula(light[b] * factors[color], metalness[m] * source.metallic));
        table[color] =
            convertImage(values.view(), COMPONENT_TYPE::UINT8, 1, COLOR_ENCODING::SRGB).takeBytes();
    }
    return table;
}

/// Pairs of bytes have 65,536 values only, and a picture many more texels.
Image convertBytes(const MetalSurface& source, Formula formula, bool keepsAlpha) {
    const ImageView& base = source.base;
    Image result(base.width, base.height, CHANNELS, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    const Table table = makeTable(source, formula);
    const bool isGrey = base.channels < COLORS;
    const bool hasAlpha = keepsAlpha && base.channels % 2 == 0;
    const unsigned char* color = base.bytes.data();
    std::size_t metalness = source.surface.channels < COLORS ? 0 : METALNESS;
    const auto bytes = result.getBytes();
    for (std::size_t pixel = 0; pixel < bytes.size(); pixel += CHANNELS) {
        const std::size_t row = source.surface.bytes[metalness] * BYTES;
        for (unsigned int i = 0; i < COLORS; ++i)
            bytes[pixel + i] = table[i][row + color[isGrey ? 0 : i]];
        bytes[pixel + ALPHA] = hasAlpha ? color[base.channels - 1] : 255;
        color += base.channels;
        metalness += source.surface.channels;
    }
    return result;
}

Image convertRows(const MetalSurface& source, Formula formula, bool keepsAlpha) {
    const unsigned int width = std::max(source.base.width, source.surface.width);
    const unsigned int height = std::max(source.base.height, source.surface.height);
    PictureRows base(source.base, width, height);
    PictureRows surface(source.surface, width, height);
    const float factors[] = {source.baseColor.x, source.baseColor.y, source.baseColor.z};
    return makePicture(width, height, COLOR_ENCODING::SRGB,
                       [&](unsigned int y, ovMemory::BufferView<float> row) {
                           const auto colors = base.read(y);
                           const auto surfaces = surface.read(y);
                           for (std::size_t pixel = 0; pixel < row.size(); pixel += CHANNELS) {
                               const float metalness = surfaces[pixel + METALNESS] * source.metallic;
                               for (unsigned int i = 0; i < COLORS; ++i)
                                   row[pixel + i] = formula(colors[pixel + i] * factors[i], metalness);
                               row[pixel + ALPHA] = keepsAlpha ? colors[pixel + ALPHA] : 1.0f;
                           }
                       });
}

Image convertSurface(const MetalSurface& source, Formula formula, bool keepsAlpha) {
    const bool isOfBytes = source.base.componentType == COMPONENT_TYPE::UINT8 &&
                           source.surface.componentType == COMPONENT_TYPE::UINT8;
    const bool isOneSize =
        source.base.width == source.surface.width && source.base.height == source.surface.height;
    return isOfBytes && isOneSize ? convertBytes(source, formula, keepsAlpha)
                                  : convertRows(source, formula, keepsAlpha);
}

} // namespace

Image makeDiffuse(const MetalSurface& source) {
    return convertSurface(source, diffuseOf, true);
}

Image makeReflectance(const MetalSurface& source) {
    return convertSurface(source, reflectanceOf, false);
}

} // namespace ovVeldris::detail

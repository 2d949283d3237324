#include <ovImages/detail/Orientation.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace ovImages::detail {

namespace {

constexpr std::uint16_t ORIENTATION_TAG = 0x0112;
constexpr std::uint16_t SHORT_TYPE = 3;
constexpr std::size_t TIFF_HEADER_SIZE = 8;
constexpr std::size_t ENTRY_SIZE = 12;

class TiffReader {
public:
    explicit TiffReader(ovMemory::BufferView<const unsigned char> bytes)
        : _bytes(bytes)
        , _isBigEndian(bytes[0] == 'M') {}

    std::uint32_t read(std::size_t offset, unsigned size) const {
        std::uint32_t value = 0;
        for (unsigned i = 0; i < size; ++i)
            value = value << 8 | _bytes[offset + (_isBigEndian ? i : size - 1 - i)];
        return value;
    }

private:
    ovMemory::BufferView<const unsigned char> _bytes;
    bool _isBigEndian;
};

// Where the pixel that belongs at (x, y) upright lies in the stored picture.
struct PixelMap {
    std::ptrdiff_t origin;
    std::ptrdiff_t stepX;
    std::ptrdiff_t stepY;
};

// Each of the eight is a start and two steps through the stored pixels, so one loop serves all.
PixelMap makePixelMap(unsigned orientation, std::ptrdiff_t width, std::ptrdiff_t height) {
    const std::ptrdiff_t lastColumn = width - 1;
    const std::ptrdiff_t lastRow = (height - 1) * width;
    switch (orientation) {
    case 2:
        return {lastColumn, -1, width};
    case 3:
        return {lastRow + lastColumn, -1, -width};
    case 4:
        return {lastRow, 1, -width};
    case 5:
        return {0, width, 1};
    case 6:
        return {lastRow, -width, 1};
    case 7:
        return {lastRow + lastColumn, -width, -1};
    case 8:
        return {lastColumn, width, -1};
    default:
        return {0, 1, width};
    }
}

} // namespace

unsigned readExifOrientation(ovMemory::BufferView<const unsigned char> tiff) {
    // Metadata is never worth an error: a picture with a damaged block is shown as it is stored.
    if (tiff.size() < TIFF_HEADER_SIZE || tiff[0] != tiff[1] || (tiff[0] != 'I' && tiff[0] != 'M'))
        return 1;
    const TiffReader reader(tiff);
    const std::size_t directory = reader.read(4, 4);
    if (reader.read(2, 2) != 42 || directory > tiff.size() - 2)
        return 1;
    const std::size_t count = reader.read(directory, 2);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + i * ENTRY_SIZE;
        if (entry + ENTRY_SIZE > tiff.size())
            return 1;
        if (reader.read(entry, 2) != ORIENTATION_TAG)
            continue;
        const std::uint32_t value = reader.read(entry + 8, 2);
        const bool isSound = reader.read(entry + 2, 2) == SHORT_TYPE && value >= 1 && value <= 8;
        return isSound ? value : 1;
    }
    return 1;
}

Image applyOrientation(Image&& stored, unsigned orientation) {
    if (orientation < 2 || orientation > 8 || stored.isEmpty())
        return std::move(stored);
    const bool isTurned = orientation >= 5;
    Image upright(isTurned ? stored.getHeight() : stored.getWidth(),
                  isTurned ? stored.getWidth() : stored.getHeight(), stored.getChannels(),
                  stored.getComponentType(), stored.getEncoding());
    // The decoder that calls this turns it into the error of memory that ran out.
    if (upright.isEmpty())
        throw std::bad_alloc();
    const std::size_t pixelSize = stored.getChannels() * getComponentSize(stored.getComponentType());
    const PixelMap map = makePixelMap(orientation, stored.getWidth(), stored.getHeight());
    const unsigned char* source = stored.getBytes().data();
    unsigned char* target = upright.getBytes().data();
    for (unsigned y = 0; y < upright.getHeight(); ++y) {
        std::ptrdiff_t index = map.origin + map.stepY * y;
        for (unsigned x = 0; x < upright.getWidth(); ++x, index += map.stepX, target += pixelSize)
            std::memcpy(target, source + static_cast<std::size_t>(index) * pixelSize, pixelSize);
    }
    return upright;
}

} // namespace ovImages::detail

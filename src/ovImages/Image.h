// Pictures in memory: an owning one and a view over anybody's bytes.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

#include <cstddef>
#include <ovMemory/Enumeration.h>

namespace ovImages {

/// What one component of a pixel is stored as, in the byte order of the machine.
enum class COMPONENT_TYPE : unsigned int {
    UINT8,  ///< 0..255 stands for 0..1
    UINT16, ///< 0..65535 stands for 0..1
    HALF,   ///< IEEE 754 binary16
    FLOAT   ///< IEEE 754 binary32
};

inline constexpr ovMemory::EnumEntry<COMPONENT_TYPE> COMPONENT_TYPE_ENTRIES[] = {
    {COMPONENT_TYPE::UINT8, "UINT8"},
    {COMPONENT_TYPE::UINT16, "UINT16"},
    {COMPONENT_TYPE::HALF, "HALF"},
    {COMPONENT_TYPE::FLOAT, "FLOAT"},
};
constexpr ovMemory::EnumTable<COMPONENT_TYPE> enumTable(COMPONENT_TYPE) {
    return {"COMPONENT_TYPE", COMPONENT_TYPE_ENTRIES};
}

/// What the numbers of the colour components mean. Alpha is always linear coverage.
enum class COLOR_ENCODING : unsigned int {
    LINEAR, ///< proportional to light
    SRGB    ///< encoded with the transfer function of IEC 61966-2-1
};

inline constexpr ovMemory::EnumEntry<COLOR_ENCODING> COLOR_ENCODING_ENTRIES[] = {
    {COLOR_ENCODING::LINEAR, "LINEAR"},
    {COLOR_ENCODING::SRGB, "SRGB"},
};
constexpr ovMemory::EnumTable<COLOR_ENCODING> enumTable(COLOR_ENCODING) {
    return {"COLOR_ENCODING", COLOR_ENCODING_ENTRIES};
}

/// The longest side that an Image, a decoder or an encoder takes, in pixels.
inline constexpr unsigned MAX_IMAGE_SIDE = 1u << 20;

/// The most bytes of pixels that an Image holds, and so the most that a decoder makes: 2 GiB.
inline constexpr std::size_t MAX_IMAGE_BYTES = std::size_t(1) << 31;

/// Bytes of one component: 1, 2, 2 or 4; 0 for a value outside the enumeration.
OV_API std::size_t getComponentSize(COMPONENT_TYPE type);

/// "8-bit unsigned", "16-bit unsigned", "half float" or "float", for messages.
OV_API ovMemory::StringView getComponentTypeName(COMPONENT_TYPE type);

/// Pixels owned by somebody else, who keeps them alive while the view is used.
struct ImageView {
    unsigned width = 0;    ///< pixels
    unsigned height = 0;   ///< pixels
    unsigned channels = 0; ///< 1 grey, 2 grey + alpha, 3 RGB, 4 RGBA
    COMPONENT_TYPE componentType = COMPONENT_TYPE::UINT8;
    COLOR_ENCODING encoding = COLOR_ENCODING::SRGB;
    /// Rows without padding, the top row first; channels interleaved. Needs no alignment.
    ovMemory::BufferView<const unsigned char> bytes;
};

/// Bytes that the pixels of a picture of this shape take. Saturates at the largest size_t.
OV_API std::size_t getImageSize(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type);

/// Whether the sides are 1 to MAX_IMAGE_SIDE, the channels 1 to 4, the enumerations in range and the bytes as
/// many as the shape says. Otherwise *error, when given, tells what is wrong.
OV_API bool isValid(const ImageView& view, ovMemory::String* error = nullptr);

/// A picture that owns its pixels: a value, copied deeply, moved cheaply.
class OV_API Image {
public:
    /// An empty picture: 0 x 0 pixels, no bytes.
    Image() = default;

    /// A picture filled with zero bytes. Sides up to MAX_IMAGE_SIDE, 1 to 4 channels, at most
    /// MAX_IMAGE_BYTES; a shape outside these, or one that there is no memory for, gives the empty picture
    /// instead.
    Image(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type, COLOR_ENCODING encoding);
    /// A picture of these bytes, which it takes over, laid out as in ImageView. A view of the same that is
    /// not valid gives the empty picture instead.
    Image(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type, COLOR_ENCODING encoding,
          ovMemory::Buffer<unsigned char> bytes);

    Image(const Image&) = default;
    Image& operator=(const Image&) = default;
    /// The source becomes the empty picture.
    Image(Image&& other) noexcept;
    Image& operator=(Image&& other) noexcept;
    ~Image() = default;

    unsigned getWidth() const { return _width; }
    unsigned getHeight() const { return _height; }
    unsigned getChannels() const { return _channels; }
    COMPONENT_TYPE getComponentType() const { return _type; }
    COLOR_ENCODING getEncoding() const { return _encoding; }

    /// Declares what the numbers mean without changing them; convertImage changes them.
    void setEncoding(COLOR_ENCODING encoding) { _encoding = encoding; }

    bool isEmpty() const { return _bytes.empty(); }

    /// The pixels, laid out as in ImageView. Valid until the picture is assigned, moved or destroyed.
    ovMemory::BufferView<unsigned char> getBytes() { return _bytes; }
    ovMemory::BufferView<const unsigned char> getBytes() const { return _bytes; }

    /// A view that lives as long as getBytes().
    ImageView view() const;

    /// Hands the pixels over and becomes the empty picture.
    ovMemory::Buffer<unsigned char> takeBytes();

    /// One component as a float, unorm types as 0..1, not decoded from sRGB. Outside the picture: 0. A
    /// convenience for single pixels; convertImage is the fast way for whole pictures.
    float getComponent(unsigned x, unsigned y, unsigned channel) const;

    /// Stores one component: unorm types clamp to 0..1 and round to nearest, NaN becomes 0 there; half clamps
    /// to +-65504 and keeps NaN. Outside the picture: does nothing.
    void setComponent(unsigned x, unsigned y, unsigned channel, float value);

private:
    unsigned _width = 0;
    unsigned _height = 0;
    unsigned _channels = 0;
    COMPONENT_TYPE _type = COMPONENT_TYPE::UINT8;
    COLOR_ENCODING _encoding = COLOR_ENCODING::SRGB;
    ovMemory::Buffer<unsigned char> _bytes;
};

} // namespace ovImages

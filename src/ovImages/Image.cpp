#include <ovImages/Image.h>

#include <ovImages/detail/Components.h>

#include <fmt/format.h>

#include <limits>
#include <new>
#include <utility>

namespace ovImages {

std::size_t getComponentSize(COMPONENT_TYPE type) {
    switch (type) {
    case COMPONENT_TYPE::UINT8:
        return 1;
    case COMPONENT_TYPE::UINT16:
    case COMPONENT_TYPE::HALF:
        return 2;
    case COMPONENT_TYPE::FLOAT:
        return 4;
    }
    return 0;
}

ovMemory::StringView getComponentTypeName(COMPONENT_TYPE type) {
    switch (type) {
    case COMPONENT_TYPE::UINT8:
        return "8-bit unsigned";
    case COMPONENT_TYPE::UINT16:
        return "16-bit unsigned";
    case COMPONENT_TYPE::HALF:
        return "half float";
    case COMPONENT_TYPE::FLOAT:
        return "float";
    }
    return "unknown";
}

std::size_t getImageSize(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type) {
    const std::size_t pixels = std::size_t(width) * height;
    const std::size_t pixelSize = std::size_t(channels) * getComponentSize(type);
    // Saturated and not wrapped round: callers compare the size with a limit.
    if (pixelSize != 0 && pixels > std::numeric_limits<std::size_t>::max() / pixelSize)
        return std::numeric_limits<std::size_t>::max();
    return pixels * pixelSize;
}

namespace {

// One check that every encoder and converter calls, so that a view from anywhere is safe behind it.
ovMemory::String describeFault(const ImageView& view) {
    if (view.width == 0 || view.height == 0)
        return fmt::format("the picture is {} x {} pixels: it has none", view.width, view.height);
    if (view.width > MAX_IMAGE_SIDE || view.height > MAX_IMAGE_SIDE)
        return fmt::format("the picture is {} x {} pixels: a side has at most {}", view.width, view.height,
                           MAX_IMAGE_SIDE);
    if (view.channels < 1 || view.channels > 4)
        return fmt::format("the picture has {} channels: expected 1 to 4", view.channels);
    if (getComponentSize(view.componentType) == 0)
        return fmt::format("the component type {} is unknown", static_cast<unsigned>(view.componentType));
    if (view.encoding != COLOR_ENCODING::LINEAR && view.encoding != COLOR_ENCODING::SRGB)
        return fmt::format("the colour encoding {} is unknown", static_cast<unsigned>(view.encoding));
    const std::size_t expected = getImageSize(view.width, view.height, view.channels, view.componentType);
    if (view.bytes.size() != expected)
        return fmt::format("the picture of {} x {} pixels has {} bytes: expected {}", view.width, view.height,
                           view.bytes.size(), expected);
    return {};
}

} // namespace

bool isValid(const ImageView& view, ovMemory::String* error) {
    const ovMemory::String fault = describeFault(view);
    if (!fault.empty() && error)
        *error = fault;
    return fault.empty();
}

Image::Image(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type,
             COLOR_ENCODING encoding) {
    if (width > MAX_IMAGE_SIDE || height > MAX_IMAGE_SIDE || channels > 4)
        return;
    const std::size_t size = getImageSize(width, height, channels, type);
    if (size == 0 || size > MAX_IMAGE_BYTES)
        return;
    try {
        _bytes.resize(size);
        // The image stays empty then. A picture can ask for gigabytes, and callers test for an empty one
        // anyway.
    } catch (const std::bad_alloc&) {
        return;
    }
    _width = width;
    _height = height;
    _channels = channels;
    _type = type;
    _encoding = encoding;
}

Image::Image(unsigned width, unsigned height, unsigned channels, COMPONENT_TYPE type, COLOR_ENCODING encoding,
             ovMemory::Buffer<unsigned char> bytes) {
    if (!isValid({width, height, channels, type, encoding, bytes}))
        return;
    _width = width;
    _height = height;
    _channels = channels;
    _type = type;
    _encoding = encoding;
    _bytes = std::move(bytes);
}

Image::Image(Image&& other) noexcept
    : Image() {
    *this = std::move(other);
}

// Written out: the default would leave the sizes behind, of an image that has lost its bytes.
Image& Image::operator=(Image&& other) noexcept {
    if (this == &other)
        return *this;
    _width = std::exchange(other._width, 0u);
    _height = std::exchange(other._height, 0u);
    _channels = std::exchange(other._channels, 0u);
    _type = other._type;
    _encoding = other._encoding;
    _bytes = std::exchange(other._bytes, {});
    return *this;
}

ImageView Image::view() const {
    return {_width, _height, _channels, _type, _encoding, _bytes};
}

ovMemory::Buffer<unsigned char> Image::takeBytes() {
    Image taken(std::move(*this));
    return std::move(taken._bytes);
}

float Image::getComponent(unsigned x, unsigned y, unsigned channel) const {
    if (x >= _width || y >= _height || channel >= _channels)
        return 0.0f;
    const std::size_t index = (std::size_t(y) * _width + x) * _channels + channel;
    float value = 0.0f;
    detail::loadComponents(_bytes.data() + index * getComponentSize(_type), _type, {&value, 1});
    return value;
}

void Image::setComponent(unsigned x, unsigned y, unsigned channel, float value) {
    if (x >= _width || y >= _height || channel >= _channels)
        return;
    const std::size_t index = (std::size_t(y) * _width + x) * _channels + channel;
    detail::storeComponents({&value, 1}, _type, _bytes.data() + index * getComponentSize(_type));
}

} // namespace ovImages

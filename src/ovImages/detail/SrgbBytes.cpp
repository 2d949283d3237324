#include <ovImages/detail/SrgbBytes.h>

#include <ovImages/Conversion.h>

#include <bit>
#include <cmath>
#include <limits>

namespace ovImages::detail {

namespace {

unsigned encodeByPower(float linear) {
    return static_cast<unsigned>(std::floor(linearToSrgb(linear) * 255.0f + 0.5f));
}

// Positive floats are in the order of their bits, so that the bits can be halved down to one float.
float findSmallest(unsigned byte) {
    std::uint32_t below = 0;
    std::uint32_t reached = std::bit_cast<std::uint32_t>(1.0f);
    while (reached - below > 1) {
        const std::uint32_t middle = below + (reached - below) / 2;
        (encodeByPower(std::bit_cast<float>(middle)) >= byte ? reached : below) = middle;
    }
    return std::bit_cast<float>(reached);
}

} // namespace

const SrgbBytes& SrgbBytes::get() {
    static const SrgbBytes table;
    return table;
}

SrgbBytes::SrgbBytes()
    : _smallest()
    , _byteAtStart() {
    for (unsigned byte = 1; byte <= LARGEST; ++byte)
        _smallest[byte] = findSmallest(byte);
    _smallest[LARGEST + 1] = std::numeric_limits<float>::infinity();
    for (std::size_t i = 0; i < INTERVALS; ++i)
        _byteAtStart[i] =
            static_cast<std::uint8_t>(encodeByPower(static_cast<float>(i) / static_cast<float>(INTERVALS)));
}

} // namespace ovImages::detail

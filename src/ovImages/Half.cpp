#include <ovImages/Half.h>

#include <bit>

namespace ovImages {

namespace {

constexpr std::uint32_t FLOAT_EXPONENT_BITS = 0x7f800000u;
constexpr std::uint32_t FLOAT_MANTISSA_BITS = 0x007fffffu;
constexpr std::uint32_t MANTISSA_SHIFT = 23 - 10;
constexpr std::uint32_t EXPONENT_BIAS_DIFFERENCE = 127 - 15;

// Shifts right, rounding to nearest with ties to even. 1 <= shift <= 31.
std::uint32_t shiftRounded(std::uint32_t value, std::uint32_t shift) {
    const std::uint32_t halfway = 1u << (shift - 1);
    const std::uint32_t isOdd = (value >> shift) & 1u;
    // Adding one half less one rounds ties down; an odd result needs them up.
    return (value + halfway - 1 + isOdd) >> shift;
}

} // namespace

// In software, because the processor's instructions for halves are not among those that every processor of
// the architecture has.
float halfToFloat(std::uint16_t half) {
    const std::uint32_t sign = static_cast<std::uint32_t>(half & 0x8000u) << 16;
    const std::uint32_t exponent = (half >> 10) & 0x1fu;
    const std::uint32_t mantissa = half & 0x3ffu;
    if (exponent == 0x1f)
        return std::bit_cast<float>(sign | FLOAT_EXPONENT_BITS | (mantissa << MANTISSA_SHIFT));
    if (exponent != 0)
        return std::bit_cast<float>(sign | ((exponent + EXPONENT_BIAS_DIFFERENCE) << 23) |
                                    (mantissa << MANTISSA_SHIFT));
    // Subnormals and zero, exact as a product: no loop to normalise.
    const float magnitude = static_cast<float>(mantissa) * 0x1p-24f;
    return sign ? -magnitude : magnitude;
}

std::uint16_t floatToHalf(float value) {
    const std::uint32_t bits = std::bit_cast<std::uint32_t>(value);
    const std::uint32_t sign = (bits >> 16) & 0x8000u;
    const std::uint32_t magnitude = bits & 0x7fffffffu;
    // The quiet bit is set, or a NaN whose payload lies in the lost bits would become infinity.
    if (magnitude > FLOAT_EXPONENT_BITS)
        return static_cast<std::uint16_t>(sign | 0x7e00u |
                                          ((magnitude & FLOAT_MANTISSA_BITS) >> MANTISSA_SHIFT));

    const std::uint32_t exponent = magnitude >> 23;
    if (exponent > EXPONENT_BIAS_DIFFERENCE + 0x1e)
        return static_cast<std::uint16_t>(sign | 0x7c00u);
    // A carry out of the mantissa moves into the exponent, up to infinity, as it should.
    if (exponent > EXPONENT_BIAS_DIFFERENCE)
        return static_cast<std::uint16_t>(
            sign | (shiftRounded(magnitude, MANTISSA_SHIFT) - (EXPONENT_BIAS_DIFFERENCE << 10)));

    // Subnormal: units of 2^-24. Below exponent 102 the value is under half a unit.
    if (exponent < 102)
        return static_cast<std::uint16_t>(sign);
    const std::uint32_t significand = (magnitude & FLOAT_MANTISSA_BITS) | 0x00800000u;
    return static_cast<std::uint16_t>(sign | shiftRounded(significand, 126 - exponent));
}

} // namespace ovImages

// Linear light as bytes of sRGB, without a power for each. Internal to the library.
#pragma once

#include <array>
#include <cstdint>

namespace ovImages::detail {

/// Rounds linear light to the nearest byte of its sRGB encoding: the same byte, for every float, that
/// linearToSrgb() gives after clamping to 0..1, times 255, and rounding. NaN becomes 0.
class SrgbBytes {
public:
    /// The only one there is; thread-safe.
    static const SrgbBytes& get();

    std::uint8_t encode(float linear) const {
        // Written so that NaN fails the first comparison.
        if (!(linear > 0.0f))
            return 0;
        if (linear >= 1.0f)
            return LARGEST;
        const std::uint8_t byte = _byteAtStart[static_cast<std::size_t>(linear * INTERVALS)];
        return static_cast<std::uint8_t>(byte + (linear >= _smallest[byte + 1] ? 1 : 0));
    }

private:
    SrgbBytes();

    static constexpr std::uint8_t LARGEST = 255;
    /// The curve rises by 12.92 * 255 bytes at most, so that within such an interval it passes no more than
    /// one step.
    static constexpr std::size_t INTERVALS = 4096;

    std::array<float, LARGEST + 2> _smallest;         ///< that becomes this byte; infinity behind the last
    std::array<std::uint8_t, INTERVALS> _byteAtStart; ///< of each interval of 0..1
};

} // namespace ovImages::detail

// The bodies of the loops over rows. Each is compiled once for every set of instructions, so everything in
// here is inlined into its caller; vectors are passed by reference, as by value their passing would depend on
// the set.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <ovVeldris/environment/irradiance/detail/IrradianceKernels.h>
#include <type_traits>

namespace ovVeldris::irradianceKernels {

// Four channels side by side: vectors of GCC and Clang, for any processor. Conversions between them are
// written channel by channel: compilers make one instruction of that, and two halves of
// __builtin_convertvector.
using Double4 = double __attribute__((vector_size(32)));
using Float4 = float __attribute__((vector_size(16)));
using Int4 = int32_t __attribute__((vector_size(16)));
using Byte16 = uint8_t __attribute__((vector_size(16)));

static_assert(std::endian::native == std::endian::little, "bytes of integers are picked by their place");

template <typename Four>
[[gnu::always_inline]] inline void widen(const Four& four, Double4& texel) {
    texel = Double4{static_cast<double>(four[0]), static_cast<double>(four[1]), static_cast<double>(four[2]),
                    static_cast<double>(four[3])};
}

/// Reads four components, whatever the last ones are.
template <typename Component>
[[gnu::always_inline]] inline void loadFour(const unsigned char* bytes, Double4& texel) {
    if constexpr (std::is_floating_point_v<Component>) {
        Float4 four;
        std::memcpy(&four, bytes, sizeof(four));
        widen(four, texel);
        return;
    }
    Int4 four;
    if constexpr (sizeof(Component) == 1)
        four = Int4{bytes[0], bytes[1], bytes[2], bytes[3]};
    else
        std::memcpy(&four, bytes, sizeof(four));
    // Converted as what processors convert: 32-bit integers with a sign.
    if constexpr (std::is_same_v<Component, int8_t>)
        four = (four ^ 0x80) - 0x80;
    if constexpr (std::is_same_v<Component, uint32_t>)
        four ^= std::numeric_limits<int32_t>::min();
    widen(four, texel);
    if constexpr (std::is_same_v<Component, uint32_t>)
        texel += 0x1p31;
}

/// Reads the components that are there; the others are 0.
template <typename Component>
[[gnu::always_inline]] inline void loadChannels(const unsigned char* bytes, unsigned int channels,
                                                Double4& texel) {
    Component components[4] = {};
    std::memcpy(components, bytes, channels * sizeof(Component));
    widen(components, texel);
}

/// Channels is 4, 3, or 0 for what the row says. Of three channels this reads a fourth too.
template <typename Component, unsigned int Channels>
[[gnu::always_inline]] inline void loadInner(const unsigned char* bytes, unsigned int channels,
                                             Double4& texel) {
    if constexpr (Channels == 0)
        loadChannels<Component>(bytes, channels, texel);
    else
        loadFour<Component>(bytes, texel);
}

/// The same, for the last texel of a row too.
template <typename Component, unsigned int Channels>
[[gnu::always_inline]] inline void loadTexel(const unsigned char* bytes, unsigned int channels,
                                             Double4& texel) {
    if constexpr (Channels == 4)
        loadFour<Component>(bytes, texel);
    else
        loadChannels<Component>(bytes, channels, texel);
}

template <typename Component, unsigned int Channels>
[[gnu::always_inline]] inline void projectRow(const unsigned char* row, const RowLayout& layout,
                                              const ColumnTerms* terms, const RowBasis& basis,
                                              BasisValues& sums) {
    const std::size_t width = layout.width;
    const std::size_t size = layout.texelSize;
    constexpr int FIRST_LEVEL = 3; // of __builtin_prefetch, as the next one
    constexpr int SECOND_LEVEL = 2;
    constexpr std::size_t TERMS_AHEAD = 80;
    // Two sums, taken in turns: with one, each addition waited for the last.
    Double4 partial[2][ROW_FUNCTIONS] = {};
    const auto addColumn = [&](const Double4& same, const Double4& opposite, const ColumnTerms& column,
                               Double4* sum) __attribute__((always_inline)) {
        const Double4 evens = same * column.even;
        const Double4 odds = opposite * column.odd;
        sum[0] += same;
        sum[1] += evens;
        sum[2] += evens * column.even;
        sum[3] += odds;
        sum[4] += odds * column.even;
    };
    Double4 left = {};
    Double4 right = {};
    loadTexel<Component, Channels>(row, layout.channels, left);
    addColumn(left, left, terms[0], partial[0]); // mirrored, it would be the column after the last
    const std::size_t pairs = (width - 1) / 2;
    if (pairs > 0) { // with the last column
        loadTexel<Component, Channels>(row + size, layout.channels, left);
        loadTexel<Component, Channels>(row + (width - 1) * size, layout.channels, right);
        addColumn(left + right, left - right, terms[1], partial[1]);
    }
    const auto addPair = [&](std::size_t column, Double4 * sum) __attribute__((always_inline)) {
        loadInner<Component, Channels>(row + column * size, layout.channels, left);
        loadInner<Component, Channels>(row + (width - column) * size, layout.channels, right);
        addColumn(left + right, left - right, terms[column], sum);
    };
    std::size_t column = 2;
    for (; column + 3 <= pairs; column += 4) { // a line of the cache, where texels are four floats
        // Processors do not foresee that a row is read from both its ends: maps take half as long with this.
        // The second-level cache is asked to hold the lines. Rows are longer than what the first level keeps,
        // and lines that it drops are read from memory twice. Terms are dropped there, too, while texels
        // pass.
        __builtin_prefetch(row + column * size + layout.ahead, 0, SECOND_LEVEL);
        __builtin_prefetch(row + (width - column) * size + layout.ahead, 0, SECOND_LEVEL);
        __builtin_prefetch(terms + std::min(column + TERMS_AHEAD, pairs), 0, FIRST_LEVEL);
        addPair(column, partial[0]);
        addPair(column + 1, partial[1]);
        addPair(column + 2, partial[0]);
        addPair(column + 3, partial[1]);
    }
    for (; column <= pairs; ++column)
        addPair(column, partial[0]);
    if (width % 2 == 0) { // the middle is its own mirror
        loadTexel<Component, Channels>(row + width / 2 * size, layout.channels, left);
        addColumn(left, left, terms[width / 2], partial[0]);
    }
    for (std::size_t k = 0; k < BASIS_FUNCTIONS; ++k) {
        Double4 total;
        std::memcpy(&total, &sums[k], sizeof(total));
        for (std::size_t m = 0; m < ROW_FUNCTIONS; ++m)
            total += (partial[0][m] + partial[1][m]) * basis[k][m];
        std::memcpy(&sums[k], &total, sizeof(total));
    }
}

[[gnu::always_inline]] inline void fillFaceRow(ovMemory::BufferView<const double> a, double b,
                                               ColumnTerms* terms) {
    for (std::size_t column = 0; column < a.size(); ++column) {
        const double k = 1.0 / std::sqrt(a[column] * a[column] + b * b + 1.0);
        terms[column] = {k, k * a[column]};
    }
}

/// The integer modulo 2^n that lies next to the value towards zero; 0 for what is not finite.
template <typename Component>
[[gnu::always_inline]] inline Component wrapped(double value) {
    constexpr double RANGE = static_cast<double>(uint64_t{1} << (8 * sizeof(Component)));
    if (!(std::fabs(value) <= std::numeric_limits<double>::max()))
        return 0;
    const double whole = std::trunc(value);
    const double rest = whole - std::floor(whole / RANGE) * RANGE; // exact: RANGE is a power of two
    return static_cast<Component>(static_cast<uint32_t>(rest));
}

template <typename Component, unsigned int Channels, bool Wraps>
[[gnu::always_inline]] inline void storeTexel(unsigned char* bytes, unsigned int channels,
                                              const Double4& texel) {
    const std::size_t size = (Channels == 0 ? channels : Channels) * sizeof(Component);
    if constexpr (std::is_floating_point_v<Component>) {
        const Float4 four = {static_cast<float>(texel[0]), static_cast<float>(texel[1]),
                             static_cast<float>(texel[2]), static_cast<float>(texel[3])};
        std::memcpy(bytes, &four, size);
    } else if constexpr (Wraps) {
        const Component four[4] = {wrapped<Component>(texel[0]), wrapped<Component>(texel[1]),
                                   wrapped<Component>(texel[2]), wrapped<Component>(texel[3])};
        std::memcpy(bytes, &four, size);
    } else {
        const Int4 four = {static_cast<int32_t>(texel[0]), static_cast<int32_t>(texel[1]),
                           static_cast<int32_t>(texel[2]), static_cast<int32_t>(texel[3])};
        Byte16 packed;
        std::memcpy(&packed, &four, sizeof(packed));
        if constexpr (sizeof(Component) == 1)
            packed =
                __builtin_shufflevector(packed, packed, 0, 4, 8, 12, 0, 4, 8, 12, 0, 4, 8, 12, 0, 4, 8, 12);
        std::memcpy(bytes, &packed, size);
    }
}

/// Writes the sum of factors times row functions.
template <typename Component, unsigned int Channels, bool Wraps>
[[gnu::always_inline]] inline void writeRow(unsigned char* row, const RowLayout& layout,
                                            const ColumnTerms* terms, const Double4* factor) {
    const std::size_t width = layout.width;
    const std::size_t size = layout.texelSize;
    const auto evaluate = [&](const ColumnTerms& column, Double4& same, Double4& opposite)
        __attribute__((always_inline)) {
        same = factor[0] + column.even * (factor[1] + column.even * factor[2]);
        opposite = column.odd * (factor[3] + column.even * factor[4]);
    };
    Double4 same = {};
    Double4 opposite = {};
    evaluate(terms[0], same, opposite);
    storeTexel<Component, Channels, Wraps>(row, layout.channels, same + opposite);
    const std::size_t pairs = (width - 1) / 2;
    for (std::size_t column = 1; column <= pairs; ++column) {
        evaluate(terms[column], same, opposite);
        storeTexel<Component, Channels, Wraps>(row + column * size, layout.channels, same + opposite);
        storeTexel<Component, Channels, Wraps>(row + (width - column) * size, layout.channels,
                                               same - opposite);
    }
    if (width % 2 == 0) {
        evaluate(terms[width / 2], same, opposite);
        storeTexel<Component, Channels, Wraps>(row + width / 2 * size, layout.channels, same + opposite);
    }
}

/// Whether no place of a row can reach 2^31, roundings included: row functions lie in [-1, 1].
[[gnu::always_inline]] inline bool staysSmall(const Double4* factor) {
    constexpr double LIMIT = 2147480000.0;
    for (std::size_t channel = 0; channel < 4; ++channel) {
        double bound = 0.0;
        for (std::size_t m = 0; m < ROW_FUNCTIONS; ++m)
            bound += std::fabs(factor[m][channel]);
        if (!(bound <= LIMIT)) // or NaN
            return false;
    }
    return true;
}

template <typename Component, unsigned int Channels>
[[gnu::always_inline]] inline void evaluateRow(unsigned char* row, const RowLayout& layout,
                                               const ColumnTerms* terms, const RowBasis& basis,
                                               const BasisValues& factors) {
    Double4 factor[ROW_FUNCTIONS] = {{0.0, 0.0, 0.0, layout.opaque}};
    for (std::size_t k = 0; k < BASIS_FUNCTIONS; ++k) {
        Double4 value;
        std::memcpy(&value, &factors[k], sizeof(value));
        for (std::size_t m = 0; m < ROW_FUNCTIONS; ++m)
            factor[m] += value * basis[k][m];
    }
    if (std::is_floating_point_v<Component> || staysSmall(factor))
        writeRow<Component, Channels, false>(row, layout, terms, factor);
    else
        writeRow<Component, Channels, true>(row, layout, terms, factor);
}

} // namespace ovVeldris::irradianceKernels

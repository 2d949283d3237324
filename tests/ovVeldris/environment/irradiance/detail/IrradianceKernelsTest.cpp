#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <ovVeldris/environment/irradiance/IrradianceReference.h>
#include <ovVeldris/environment/irradiance/detail/IrradianceKernels.h>

using namespace ovVeldris;
using irradianceReference::noise;

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();

constexpr IRRADIANCE_COMPONENT COMPONENTS[] = {IRRADIANCE_COMPONENT::FLOAT32, IRRADIANCE_COMPONENT::UINT32,
                                               IRRADIANCE_COMPONENT::SINT32, IRRADIANCE_COMPONENT::UINT8,
                                               IRRADIANCE_COMPONENT::SINT8};

constexpr unsigned int WIDTHS[] = {1, 2, 3, 4, 5, 6, 7, 8, 17, 64, 255};

bool isByte(IRRADIANCE_COMPONENT component) {
    return component == IRRADIANCE_COMPONENT::UINT8 || component == IRRADIANCE_COMPONENT::SINT8;
}

double read(IRRADIANCE_COMPONENT component, const ovMemory::Buffer<unsigned char>& bytes, std::size_t place) {
    using irradianceReference::componentAt;
    switch (component) {
    case IRRADIANCE_COMPONENT::FLOAT32:
        return double(componentAt<float>(bytes, place));
    case IRRADIANCE_COMPONENT::UINT32:
        return double(componentAt<uint32_t>(bytes, place));
    case IRRADIANCE_COMPONENT::SINT32:
        return double(componentAt<int32_t>(bytes, place));
    case IRRADIANCE_COMPONENT::UINT8:
        return double(componentAt<uint8_t>(bytes, place));
    default:
        return double(componentAt<int8_t>(bytes, place));
    }
}

/// A row with gaps of some bytes between texels.
RowLayout makeRow(IRRADIANCE_COMPONENT component, unsigned int channels, unsigned int width,
                  std::size_t gap) {
    return {width, channels, channels * (isByte(component) ? 1 : 4) + gap, 1.0};
}

/// Bytes that end with the last component, so that a sanitizer sees reads beyond.
std::size_t sizeOf(const RowLayout& row, std::size_t gap) {
    return row.width * row.texelSize - gap;
}

void forEachRow(const std::function<void(IRRADIANCE_COMPONENT, const RowLayout&, std::size_t gap)>& check) {
    for (const IRRADIANCE_COMPONENT component : COMPONENTS)
        for (unsigned int channels = 1; channels <= 4; ++channels)
            for (const unsigned int width : WIDTHS)
                for (const std::size_t gap : {std::size_t{0}, std::size_t{4}}) {
                    SCOPED_TRACE("component " + std::to_string(unsigned(component)) + ", channels " +
                                 std::to_string(channels) + ", width " + std::to_string(width) + ", gap " +
                                 std::to_string(gap));
                    check(component, makeRow(component, channels, width, gap), gap);
                }
}

/// Factors of each channel that change over a row; the fourth channel's are 0.
BasisValues makeFactors(double scale) {
    BasisValues factors = {};
    for (std::size_t k = 0; k < factors.size(); ++k)
        for (std::size_t channel = 0; channel < 3; ++channel)
            factors[k][channel] = scale * std::sin(1.0 + double(k) * 1.7 + double(channel));
    return factors;
}

/// What a double is as an integer of so many bits, by repeated doubling instead of division.
uint32_t moduloOf(double value, unsigned int bits) {
    if (!std::isfinite(value))
        return 0;
    int exponent = 0;
    // The mantissa as an integer of 53 bits, and what it is shifted by.
    const int64_t mantissa = int64_t(std::ldexp(std::frexp(std::trunc(value), &exponent), 53));
    const int shift = exponent - 53;
    if (shift >= 64)
        return 0;
    const uint64_t whole =
        shift >= 0 ? uint64_t(mantissa) << shift : uint64_t(mantissa / (int64_t{1} << -shift));
    return uint32_t(bits == 8 ? whole & 0xff : whole & 0xffffffff);
}

} // namespace

TEST(IrradianceKernelsTest, sumsUpARowWithAnyInstructions) {
    forEachRow([](IRRADIANCE_COMPONENT component, const RowLayout& row, std::size_t gap) {
        const IrradianceDirections directions(true, row.width, 3, false);
        const RowBasis basis = directions.getBasis(2, 1);
        const auto bytes = noise(sizeOf(row, gap), component == IRRADIANCE_COMPONENT::FLOAT32, row.width);
        BasisValues expected = {};
        BasisValues sizes = {};
        for (unsigned int i = 0; i < row.width; ++i) {
            const auto y =
                irradianceReference::basis(irradianceReference::direction(true, 2, i, 1, row.width, 3));
            for (std::size_t channel = 0; channel < row.channels; ++channel) {
                const double value =
                    read(component, bytes, i * row.texelSize + channel * (isByte(component) ? 1 : 4));
                for (std::size_t k = 0; k < y.size(); ++k) {
                    expected[k][channel] += value * y[k];
                    sizes[k][channel] += std::abs(value);
                }
            }
        }
        BasisValues results[2] = {};
        for (const bool useAvx2 : {false, true}) {
            BasisValues& sums = results[useAvx2 ? 1 : 0];
            sums[0] = {1.0, 1.0, 1.0, 1.0}; // sums are added to
            irradianceKernelsOf(component, row.channels, useAvx2 && canIrradianceUseAvx2())
                .project(bytes.data(), row, directions.getTerms(1), basis, sums);
            for (std::size_t k = 0; k < sums.size(); ++k)
                for (std::size_t channel = 0; channel < std::min(row.channels, 3u); ++channel) {
                    const double start = k == 0 ? 1.0 : 0.0;
                    // A rounding of 1e-16 for each of some hundred terms, which partly cancel.
                    EXPECT_NEAR(sums[k][channel], expected[k][channel] + start,
                                1e-13 * (sizes[k][channel] + start));
                    // The instructions differ in the roundings of products only.
                    EXPECT_NEAR(sums[k][channel], results[0][k][channel],
                                2e-14 * (sizes[k][channel] + start));
                }
        }
    });
}

TEST(IrradianceKernelsTest, drawsARowWithAnyInstructions) {
    forEachRow([](IRRADIANCE_COMPONENT component, const RowLayout& row, std::size_t gap) {
        const IrradianceDirections directions(false, row.width, 4, false);
        // Within the range of bytes and far beyond 32 bits.
        for (const double scale : {20.0, 3e12}) {
            const BasisValues factors = makeFactors(scale);
            const ovMemory::Buffer<unsigned char> before(sizeOf(row, gap), 0xa5);
            ovMemory::Buffer<unsigned char> results[2] = {before, before};
            for (const bool useAvx2 : {false, true})
                irradianceKernelsOf(component, row.channels, useAvx2 && canIrradianceUseAvx2())
                    .evaluate(results[useAvx2 ? 1 : 0].data(), row, directions.getTerms(1),
                              directions.getBasis(0, 1), factors);
            const std::size_t size = isByte(component) ? 1 : 4;
            for (unsigned int i = 0; i < row.width; ++i) {
                const auto y =
                    irradianceReference::basis(irradianceReference::direction(false, 0, i, 1, row.width, 4));
                for (std::size_t channel = 0; channel < row.channels; ++channel) {
                    double expected = channel == 3 ? 1.0 : 0.0;
                    for (std::size_t k = 0; k < y.size(); ++k)
                        expected += factors[k][channel] * y[k];
                    const std::size_t place = i * row.texelSize + channel * size;
                    for (const auto& bytes : results) {
                        const double actual = read(component, bytes, place);
                        if (component == IRRADIANCE_COMPONENT::FLOAT32) {
                            EXPECT_NEAR(actual, expected, 1.2e-7 * std::abs(expected) + 1e-14 * scale);
                            continue;
                        }
                        // Roundings of a thousandth at the larger scale may pass an integer.
                        const uint32_t mask = size == 1 ? 0xffu : 0xffffffffu;
                        const uint32_t difference =
                            uint32_t(int64_t(actual)) - moduloOf(expected, size == 1 ? 8 : 32);
                        const uint32_t allowed = scale == 20.0 ? 0 : 1;
                        EXPECT_LE((difference + allowed) & mask, 2 * allowed)
                            << actual << " instead of " << expected;
                    }
                }
                for (std::size_t k = row.channels * size; k < row.texelSize && i + 1 < row.width; ++k)
                    EXPECT_EQ(int(results[1][i * row.texelSize + k]), 0xa5);
            }
        }
    });
}

TEST(IrradianceKernelsTest, writesValuesThatDoNotFit) {
    constexpr double TWO_32 = 4294967296.0;
    const double values[] = {0.0,
                             -0.0,
                             0.999,
                             -0.999,
                             1.0,
                             -1.0,
                             127.5,
                             128.0,
                             -128.5,
                             -129.0,
                             255.0,
                             255.999,
                             256.0,
                             300.5,
                             -256.0,
                             -257.0,
                             65535.0,
                             2147480000.0,
                             2147483647.0,
                             2147483648.0,
                             -2147483648.0,
                             -2147483649.0,
                             3e9,
                             TWO_32 - 1.0,
                             TWO_32,
                             TWO_32 + 77.5,
                             -TWO_32 - 3.0,
                             9007199254740993.0,
                             -9007199254740994.0,
                             1.2345678e17,
                             -9.8765432e18,
                             1.5e300,
                             -1.5e300,
                             INF,
                             -INF,
                             NAN_VALUE};
    const ColumnTerms terms[2] = {{1.0, 0.0}, {-1.0, 0.0}};
    RowBasis basis = {};
    basis[0][0] = 1.0;
    for (const IRRADIANCE_COMPONENT component : COMPONENTS)
        for (const bool useAvx2 : {false, true})
            for (const double value : values) {
                const RowLayout row = makeRow(component, 4, 3, 0);
                BasisValues factors = {};
                factors[0] = {value, 1.0, 2.0, 0.0};
                ovMemory::Buffer<unsigned char> bytes(sizeOf(row, 0));
                irradianceKernelsOf(component, 4, useAvx2 && canIrradianceUseAvx2())
                    .evaluate(bytes.data(), row, terms, basis, factors);
                const std::size_t size = isByte(component) ? 1 : 4;
                for (unsigned int i = 0; i < 3; ++i) {
                    const double actual = read(component, bytes, i * row.texelSize);
                    if (component == IRRADIANCE_COMPONENT::FLOAT32) {
                        // Infinity times the functions that a row has nothing of is not a number.
                        if (std::isfinite(value))
                            EXPECT_EQ(actual, double(float(value)));
                        else
                            EXPECT_FALSE(std::isfinite(actual));
                    } else {
                        EXPECT_EQ(uint32_t(int64_t(actual)) & (size == 1 ? 0xffu : 0xffffffffu),
                                  moduloOf(value, size == 1 ? 8 : 32))
                            << value << " as component " << unsigned(component);
                    }
                    // Neighbouring channels do not notice.
                    EXPECT_EQ(read(component, bytes, i * row.texelSize + size), 1.0);
                    EXPECT_EQ(read(component, bytes, i * row.texelSize + 2 * size), 2.0);
                    EXPECT_EQ(read(component, bytes, i * row.texelSize + 3 * size), 1.0);
                }
            }
    // The rule in numbers.
    EXPECT_EQ(moduloOf(255.999, 8), 255u);
    EXPECT_EQ(moduloOf(256.0, 8), 0u);
    EXPECT_EQ(moduloOf(300.5, 8), 44u);
    EXPECT_EQ(moduloOf(-1.0, 8), 255u);
    EXPECT_EQ(moduloOf(-0.999, 8), 0u);
    EXPECT_EQ(moduloOf(3e9, 32), 3000000000u);
    EXPECT_EQ(moduloOf(TWO_32 + 77.5, 32), 77u);
    EXPECT_EQ(moduloOf(NAN_VALUE, 32), 0u);
}

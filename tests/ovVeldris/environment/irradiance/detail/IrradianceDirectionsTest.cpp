#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <ovVeldris/environment/irradiance/IrradianceReference.h>
#include <ovVeldris/environment/irradiance/detail/IrradianceKernels.h>

using namespace ovVeldris;

namespace {

struct Size {
    unsigned int width;
    unsigned int height;
};

constexpr Size SIZES[] = {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {3, 3},   {4, 4},
                          {5, 5}, {8, 4}, {9, 5}, {4, 9}, {33, 17}, {64, 32}};

/// Each shape, size and set of instructions.
template <typename Check>
void forEachDirections(const Check& check) {
    for (const bool isCube : {false, true})
        for (const auto [width, height] : SIZES)
            for (const bool useAvx2 : {false, true}) {
                SCOPED_TRACE((isCube ? "cube " : "map ") + std::to_string(width) + " x " +
                             std::to_string(height) + (useAvx2 ? ", AVX2" : ""));
                check(IrradianceDirections(isCube, width, height, useAvx2 && canIrradianceUseAvx2()), isCube,
                      Size{width, height});
            }
}

} // namespace

TEST(IrradianceDirectionsTest, composesEveryBasisFunction) {
    forEachDirections([](const IrradianceDirections& directions, bool isCube, Size size) {
        const auto [width, height] = size;
        for (unsigned int slice = 0; slice < (isCube ? 6u : 1u); ++slice)
            for (unsigned int j = 0; j < height; ++j) {
                const ColumnTerms* terms = directions.getTerms(j);
                const RowBasis basis = directions.getBasis(slice, j);
                for (unsigned int i = 0; i < width; ++i) {
                    // The right half mirrors the left one.
                    const bool isMirrored = i > width / 2;
                    const ColumnTerms& column = terms[isMirrored ? width - i : i];
                    const double even = column.even;
                    const double odd = isMirrored ? -column.odd : column.odd;
                    const double functions[ROW_FUNCTIONS] = {1.0, even, even * even, odd, odd * even};
                    const auto expected = irradianceReference::basis(
                        irradianceReference::direction(isCube, slice, i, j, width, height));
                    for (std::size_t k = 0; k < BASIS_FUNCTIONS; ++k) {
                        double value = 0.0;
                        for (std::size_t m = 0; m < ROW_FUNCTIONS; ++m)
                            value += basis[k][m] * functions[m];
                        // A few roundings of numbers near 1.
                        EXPECT_NEAR(value, expected[k], 4e-15)
                            << "slice " << slice << ", row " << j << ", column " << i << ", function " << k;
                    }
                }
            }
    });
}

TEST(IrradianceDirectionsTest, givesTheBasisOfOneDirection) {
    for (const bool isCube : {false, true}) {
        for (unsigned int j = 0; j < 4; ++j) {
            const auto direction = irradianceReference::direction(isCube, 1 + j, 2, j, 7, 4);
            const auto expected = irradianceReference::basis(direction);
            const auto basis = irradianceBasisOf(direction);
            for (std::size_t k = 0; k < BASIS_FUNCTIONS; ++k)
                EXPECT_NEAR(basis[k], expected[k], 1e-15) << j << ", " << k;
        }
    }
}

TEST(IrradianceDirectionsTest, isOrthonormalOverTheSphere) {
    // Over a map, texels cover sin(theta) of the area of those at the equator.
    constexpr unsigned int HEIGHT = 256;
    constexpr unsigned int WIDTH = 2 * HEIGHT;
    double products[BASIS_FUNCTIONS][BASIS_FUNCTIONS] = {};
    for (unsigned int j = 0; j < HEIGHT; ++j) {
        const double area = std::sin(std::numbers::pi * j / HEIGHT) * 2.0 * std::numbers::pi *
                            std::numbers::pi / WIDTH / HEIGHT;
        for (unsigned int i = 0; i < WIDTH; ++i) {
            const auto y =
                irradianceReference::basis(irradianceReference::direction(false, 0, i, j, WIDTH, HEIGHT));
            for (std::size_t k = 0; k < BASIS_FUNCTIONS; ++k)
                for (std::size_t l = 0; l < BASIS_FUNCTIONS; ++l)
                    products[k][l] += y[k] * y[l] * area;
        }
    }
    for (std::size_t k = 0; k < BASIS_FUNCTIONS; ++k)
        for (std::size_t l = 0; l < BASIS_FUNCTIONS; ++l)
            // Rows are 0.012 rad high: the rule errs by some twelfths of the square.
            EXPECT_NEAR(products[k][l], k == l ? 1.0 : 0.0, 1e-4) << k << ", " << l;
}

TEST(IrradianceDirectionsTest, keepsItsTermsSmall) {
    forEachDirections([](const IrradianceDirections& directions, bool, Size size) {
        for (unsigned int j = 0; j < size.height; ++j)
            for (unsigned int i = 0; i <= size.width / 2; ++i) {
                EXPECT_LE(std::abs(directions.getTerms(j)[i].even), 1.0);
                EXPECT_LE(std::abs(directions.getTerms(j)[i].odd), 1.0);
            }
    });
}

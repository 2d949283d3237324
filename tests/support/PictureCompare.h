// Comparison of pictures, with files to look at when they differ.
#pragma once

#include <gtest/gtest.h>
#include <support/FloatPicture.h>

/// How far a picture may be from what is expected. The error of a component is
/// |actual - expected| / max(|expected|, floor): relative for large values, absolute below the floor. NaN is
/// only met by NaN (then the error is 0), an infinity by the same infinity.
struct PictureLimits {
    float worst = 0.0f; ///< of any component of any pixel
    float mean = 0.0f;  ///< over all components of all pixels
    float floor = 1.0f; ///< above 0
};

/// What comparing found.
struct PictureDifference {
    float worst = 0.0f;
    float mean = 0.0f;
    /// The error of each component.
    FloatPicture errors;
};

/// The error of one component; infinity where one is NaN or infinite and the other differs.
float componentError(float actual, float expected, float floor);

/// Compares pictures of one size.
PictureDifference comparePictures(const FloatPicture& actual, const FloatPicture& expected,
                                  float floor = 1.0f);

/// Succeeds when both limits hold. Otherwise prints the worst pixels and writes actual, expected and errors
/// as <name>.actual.pfm, <name>.expected.pfm and <name>.difference.pfm (three floats a pixel, alpha left out)
/// into the folder that $OV_TEST_OUTPUT_DIR names, made when missing; without that variable into the tests'
/// folder for temporary files.
///
///     EXPECT_TRUE(picturesMatch("fxaa_preset_12", actual, expected, {.worst = 1e-5f, .mean = 1e-6f}));
testing::AssertionResult picturesMatch(ovMemory::StringView name, const FloatPicture& actual,
                                       const FloatPicture& expected, const PictureLimits& limits);

/// Succeeds when all components have the same bits; any NaN equals any NaN.
testing::AssertionResult picturesAreIdentical(ovMemory::StringView name, const FloatPicture& actual,
                                              const FloatPicture& expected);

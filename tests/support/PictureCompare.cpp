#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <limits>
#include <numeric>
#include <support/PictureCompare.h>
#include <system_error>

namespace {

constexpr std::size_t PRINTED_PIXELS = 5;

/// Text in which the float can be read back exactly.
std::ostream& operator<<(std::ostream& stream, const FloatPixel& pixel) {
    stream << std::setprecision(std::numeric_limits<float>::max_digits10);
    return stream << "(" << pixel[0] << ", " << pixel[1] << ", " << pixel[2] << ", " << pixel[3] << ")";
}

float worstOf(const FloatPixel& errors) {
    return *std::max_element(errors.begin(), errors.end());
}

std::filesystem::path getOutputFolder() {
    const char* folder = std::getenv("OV_TEST_OUTPUT_DIR");
    std::filesystem::path path = folder && *folder ? folder : testing::TempDir();
    std::error_code ignored; // writing tells
    std::filesystem::create_directories(path, ignored);
    return path;
}

/// Portable float map, little-endian: rows from the bottom up.
bool writePfm(const std::filesystem::path& path, const FloatPicture& picture) {
    std::ofstream file(path, std::ios::binary);
    file << "PF\n" << picture.width << " " << picture.height << "\n-1.0\n";
    for (unsigned int y = picture.height; y-- > 0;)
        for (unsigned int x = 0; x < picture.width; ++x)
            file.write(reinterpret_cast<const char*>(picture.at(x, y).data()), 3 * sizeof(float));
    file.close();
    return file.good();
}

void describeWorst(testing::AssertionResult& result, const FloatPicture& actual, const FloatPicture& expected,
                   const FloatPicture& errors) {
    ovMemory::Buffer<std::size_t> order(errors.pixels.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    const std::size_t count = std::min(PRINTED_PIXELS, order.size());
    std::partial_sort(
        order.begin(), order.begin() + std::ptrdiff_t(count), order.end(),
        [&](std::size_t a, std::size_t b) { return worstOf(errors.pixels[a]) > worstOf(errors.pixels[b]); });
    std::ostringstream text;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t pixel = order[i];
        text << "\n  pixel " << pixel % actual.width << ", " << pixel / actual.width << ": actual "
             << actual.pixels[pixel] << ", expected " << expected.pixels[pixel] << ", error "
             << worstOf(errors.pixels[pixel]);
    }
    result << text.str();
}

void writePictures(testing::AssertionResult& result, ovMemory::StringView name, const FloatPicture& actual,
                   const FloatPicture& expected, const FloatPicture& errors) {
    const std::filesystem::path folder = getOutputFolder();
    const auto write = [&](const char* suffix, const FloatPicture& picture) {
        const std::filesystem::path path = folder / (ovMemory::String(name) + suffix);
        result << (writePfm(path, picture) ? "\n  written: " : "\n  could not be written: ") << path.native();
    };
    write(".actual.pfm", actual);
    write(".expected.pfm", expected);
    write(".difference.pfm", errors);
}

bool haveOneSize(const FloatPicture& actual, const FloatPicture& expected) {
    return actual.width == expected.width && actual.height == expected.height;
}

testing::AssertionResult sizesDiffer(ovMemory::StringView name, const FloatPicture& actual,
                                     const FloatPicture& expected) {
    return testing::AssertionFailure()
           << "picture '" << name << "' is " << actual.width << " x " << actual.height << ", expected "
           << expected.width << " x " << expected.height;
}

bool areIdentical(float a, float b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

} // namespace

float componentError(float actual, float expected, float floor) {
    if (actual == expected || (std::isnan(actual) && std::isnan(expected)))
        return 0.0f;
    if (!std::isfinite(actual) || !std::isfinite(expected))
        return std::numeric_limits<float>::infinity();
    return float(std::abs(double(actual) - expected) / std::max<double>(std::abs(expected), floor));
}

PictureDifference comparePictures(const FloatPicture& actual, const FloatPicture& expected, float floor) {
    PictureDifference difference;
    difference.errors = FloatPicture(actual.width, actual.height);
    double sum = 0.0;
    for (std::size_t i = 0; i < actual.pixels.size(); ++i) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const float error = componentError(actual.pixels[i][channel], expected.pixels[i][channel], floor);
            difference.errors.pixels[i][channel] = error;
            difference.worst = std::max(difference.worst, error);
            sum += error;
        }
    }
    if (!actual.pixels.empty())
        difference.mean = float(sum / (4.0 * double(actual.pixels.size())));
    return difference;
}

testing::AssertionResult picturesMatch(ovMemory::StringView name, const FloatPicture& actual,
                                       const FloatPicture& expected, const PictureLimits& limits) {
    if (!haveOneSize(actual, expected))
        return sizesDiffer(name, actual, expected);
    const PictureDifference difference = comparePictures(actual, expected, limits.floor);
    if (difference.worst <= limits.worst && difference.mean <= limits.mean)
        return testing::AssertionSuccess();
    testing::AssertionResult result = testing::AssertionFailure();
    result << "picture '" << name << "': worst error " << difference.worst << " (limit " << limits.worst
           << "), mean " << difference.mean << " (limit " << limits.mean << ")";
    describeWorst(result, actual, expected, difference.errors);
    writePictures(result, name, actual, expected, difference.errors);
    return result;
}

testing::AssertionResult picturesAreIdentical(ovMemory::StringView name, const FloatPicture& actual,
                                              const FloatPicture& expected) {
    if (!haveOneSize(actual, expected))
        return sizesDiffer(name, actual, expected);
    FloatPicture differs(actual.width, actual.height);
    std::size_t count = 0;
    for (std::size_t i = 0; i < actual.pixels.size(); ++i)
        for (std::size_t channel = 0; channel < 4; ++channel)
            if (!areIdentical(actual.pixels[i][channel], expected.pixels[i][channel])) {
                differs.pixels[i][channel] = 1.0f;
                ++count;
            }
    if (count == 0)
        return testing::AssertionSuccess();
    testing::AssertionResult result = testing::AssertionFailure();
    result << "picture '" << name << "': " << count << " components differ in their bits";
    describeWorst(result, actual, expected, differs);
    writePictures(result, name, actual, expected, differs);
    return result;
}

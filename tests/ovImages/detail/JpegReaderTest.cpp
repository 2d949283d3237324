// The reader through the encoder, which stands on it.
#include <ovImages/JpgEncoder.h>

#include <ovImages/support/HandMade.h>

#include <gtest/gtest.h>

namespace {

using namespace ovImages;
using handMade::Bytes;

TEST(JpegReaderTest, aFileWithoutAPictureIsRefused) {
    const Bytes file = {0xff, 0xd8, 0xff, 0xd9};
    EXPECT_EQ(JpgEncoder().decode(file).error, "JPEG: bad header: JPEG datastream contains no image");
    const Bytes unknown = {0xff, 0xd8, 0xff, 0xff, 3};
    EXPECT_EQ(JpgEncoder().decode(unknown).error, "JPEG: bad header: Unsupported marker type 0x03");
}

TEST(JpegReaderTest, thousandsOfScansAreRefused) {
    // A progressive grey file whose first scan is repeated.
    Bytes file = handMade::makeJpeg(1, 1, 1, {128});
    for (std::size_t i = 0; i + 1 < file.size(); ++i)
        if (file[i] == 0xff && file[i + 1] == 0xc0)
            file[i + 1] = 0xc2;
    std::size_t scan = 0;
    while (!(file[scan] == 0xff && file[scan + 1] == 0xda))
        ++scan;
    // The first scan of averages alone: coefficients 0 to 0.
    file[scan + 2 + 2 + 1 + 2 + 1] = 0;
    const Bytes repeated(file.begin() + static_cast<std::ptrdiff_t>(scan), file.end() - 2);
    Bytes many(file.begin(), file.end() - 2);
    for (int i = 0; i < 600; ++i)
        many.insert(many.end(), repeated.begin(), repeated.end());
    many.insert(many.end(), {0xff, 0xd9});
    DecodeOptions lenient;
    lenient.refuseDamaged = false;
    EXPECT_EQ(JpgEncoder().decode(many, lenient).error,
              "JPEG: damaged data: Progressive JPEG image has more than 500 scans");
}

} // namespace

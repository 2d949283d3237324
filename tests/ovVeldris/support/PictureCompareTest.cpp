#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <support/Numbers.h>
#include <support/PictureCompare.h>
#include <support/TemporaryFolder.h>

namespace {

/// Sends the pictures of comparisons that are meant to fail into a folder of their own.
class PictureCompareTest : public testing::Test {
protected:
    PictureCompareTest() {
        if (const char* folder = std::getenv("OV_TEST_OUTPUT_DIR"))
            _before = folder;
        ::setenv("OV_TEST_OUTPUT_DIR", _folder.getPath("new").c_str(), 1);
    }
    ~PictureCompareTest() override { ::setenv("OV_TEST_OUTPUT_DIR", _before.c_str(), 1); }

    std::uintmax_t sizeOf(ovMemory::StringView file) {
        std::error_code ignored;
        return std::filesystem::file_size(_folder.getPath("new") + "/" + ovMemory::String(file), ignored);
    }

private:
    TemporaryFolder _folder;
    ovMemory::String _before;
};

} // namespace

TEST_F(PictureCompareTest, measuresComponents) {
    struct Case {
        float actual, expected, floor, error;
    };
    const Case cases[] = {
        {1.0f, 1.0f, 1.0f, 0.0f},
        {0.5f, 0.25f, 1.0f, 0.25f},
        {110.0f, 100.0f, 1.0f, 0.1f},
        {0.5f, 0.25f, 0.125f, 1.0f},
        {-2.0f, 2.0f, 1.0f, 2.0f},
        {INFINITE, INFINITE, 1.0f, 0.0f},
        {INFINITE, -INFINITE, 1.0f, INFINITE},
        {INFINITE, 1.0f, 1.0f, INFINITE},
        {1.0f, INFINITE, 1.0f, INFINITE},
        {NOT_A_NUMBER, 1.0f, 1.0f, INFINITE},
        {1.0f, NOT_A_NUMBER, 1.0f, INFINITE},
        {NOT_A_NUMBER, NOT_A_NUMBER, 1.0f, 0.0f},
        {NOT_A_NUMBER, INFINITE, 1.0f, INFINITE},
        {3e38f, -3e38f, 1.0f, 2.0f},
        {0.0f, -0.0f, 1.0f, 0.0f},
    };
    for (const Case& row : cases)
        EXPECT_FLOAT_EQ(componentError(row.actual, row.expected, row.floor), row.error)
            << row.actual << " " << row.expected;
}

TEST_F(PictureCompareTest, holdsBothLimits) {
    FloatPicture expected(2, 2, {1.0f, 1.0f, 1.0f, 1.0f});
    FloatPicture actual = expected;
    EXPECT_TRUE(picturesMatch("same", actual, expected, {}));
    actual.at(1, 0)[3] = 1.5f;
    EXPECT_TRUE(picturesMatch("near", actual, expected, {.worst = 0.5f, .mean = 0.5f / 16.0f}));
    EXPECT_FALSE(picturesMatch("far", actual, expected, {.worst = 0.49f, .mean = 1.0f}));
    EXPECT_FALSE(picturesMatch("mean", actual, expected, {.worst = 1.0f, .mean = 0.03f}));
    EXPECT_FALSE(picturesMatch("size", actual, FloatPicture(4, 1), {.worst = 9.0f, .mean = 9.0f}));
}

TEST_F(PictureCompareTest, tellsBitsApart) {
    FloatPicture expected(1, 1, {0.0f, NOT_A_NUMBER, INFINITE, 1.0f});
    FloatPicture actual = expected;
    actual.at(0, 0)[1] = -NOT_A_NUMBER;
    EXPECT_TRUE(picturesAreIdentical("bits", actual, expected));
    actual.at(0, 0)[0] = -0.0f;
    EXPECT_FALSE(picturesAreIdentical("zero", actual, expected));
    EXPECT_FALSE(picturesAreIdentical("shape", FloatPicture(1, 2), FloatPicture(2, 1)));
}

TEST_F(PictureCompareTest, leavesPicturesAndTheWorstPixels) {
    const FloatPicture expected(3, 2, {1.0f, 1.0f, 1.0f, 1.0f});
    FloatPicture actual = expected;
    actual.at(2, 1) = {1.0f, 3.0f, 1.0f, 1.0f};
    const testing::AssertionResult result =
        picturesMatch("bad", actual, expected, {.worst = 0.5f, .mean = 0.5f});
    ASSERT_FALSE(result);
    const ovMemory::String message = result.message();
    EXPECT_NE(message.find("picture 'bad': worst error 2 (limit 0.5)"), ovMemory::String::npos) << message;
    EXPECT_NE(message.find("pixel 2, 1: actual (1, 3, 1, 1), expected (1, 1, 1, 1), error 2"),
              ovMemory::String::npos)
        << message;
    // "PF\n3 2\n-1.0\n" and six pixels of three floats.
    for (const char* file : {"bad.actual.pfm", "bad.expected.pfm", "bad.difference.pfm"})
        EXPECT_EQ(sizeOf(file), 12u + 6u * 12u) << file;
}

#include <bit>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <ovMaths/Vector.h>
#include <random>
#include <string>

using ovMaths::Vector;

// The conversion is internal to the library; vectors show it.
TEST(NumberTextTest, AgreesWithPrintf) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float value : {0.0f, -0.0f, 1.0f, -1.5f, 0.1f, 1e-7f, -1e-7f, 5e-7f, 0.0000005f, 123456.789f,
                              16777217.0f, FLT_MAX, -FLT_MAX, FLT_MIN, infinity, -infinity}) {
        char printed[64];
        std::snprintf(printed, sizeof(printed), "%f", double(value));
        EXPECT_EQ(Vector(value, 0).toString(),
                  "Vec(" + std::string(printed) + ", 0.000000, 0.000000, 0.000000)");
    }
}

TEST(NumberTextTest, ExactTextReadsBackBitForBit) {
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value))
            continue;
        const std::string text = Vector(value, 0).toExactString();
        Vector read;
        ASSERT_TRUE(read.fromString(text)) << text;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(read.x), std::bit_cast<std::uint32_t>(value)) << text;
        // The C library is the second reader.
        ASSERT_EQ(std::strtof(text.c_str() + 4, nullptr), value) << text;
        ASSERT_LE(text.size(), std::string("Vec(-1.17549435e-38, 0, 0, 0)").size()) << text;
    }
}

TEST(NumberTextTest, ExactTextHasTheFewestDigits) {
    const struct {
        float value;
        const char* text;
    } cases[] = {{0.0f, "0"},
                 {-0.0f, "-0"},
                 {1.0f, "1"},
                 {0.1f, "0.1"},
                 {1.0f / 3.0f, "0.33333334"},
                 {1e-7f, "1e-07"},
                 {123456.789f, "123456.79"},
                 {FLT_MAX, "3.4028235e+38"},
                 {FLT_TRUE_MIN, "1e-45"},
                 {-FLT_TRUE_MIN, "-1e-45"}};
    for (const auto& row : cases)
        EXPECT_EQ(Vector(0, row.value, 2, 0.5f).toExactString(),
                  "Vec(0, " + std::string(row.text) + ", 2, 0.5)");
}

TEST(NumberTextTest, IgnoresTheLocaleOfTheHost) {
    const std::string kept = std::setlocale(LC_ALL, nullptr);
    // Whichever of them is installed; without any, the case shows the C locale once more.
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C"}) {
        std::setlocale(LC_ALL, name);
        EXPECT_EQ(Vector(1.5f, 0).toString(), "Vec(1.500000, 0.000000, 0.000000, 0.000000)");
        EXPECT_EQ(Vector(1.5f, 0.25f).toExactString(), "Vec(1.5, 0.25, 0, 0)");
        Vector read;
        EXPECT_TRUE(read.fromString("Vec(1.500000, 0.25, 0, 0)"));
        EXPECT_EQ(read, Vector(1.5f, 0.25f));
    }
    std::setlocale(LC_ALL, kept.c_str());
}

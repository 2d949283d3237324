#include <cfloat>
#include <clocale>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <ovMaths/Vector.h>
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

TEST(NumberTextTest, IgnoresTheLocaleOfTheHost) {
    const std::string kept = std::setlocale(LC_ALL, nullptr);
    // Whichever of them is installed; without any, the case shows the C locale once more.
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C"}) {
        std::setlocale(LC_ALL, name);
        EXPECT_EQ(Vector(1.5f, 0).toString(), "Vec(1.500000, 0.000000, 0.000000, 0.000000)");
        Vector read;
        EXPECT_TRUE(read.fromString("Vec(1.500000, 0.25, 0, 0)"));
        EXPECT_EQ(read, Vector(1.5f, 0.25f));
    }
    std::setlocale(LC_ALL, kept.c_str());
}

#include <ovVeldris/complexEffects/ComplexEffectTypeUtils.h>

#include <gtest/gtest.h>

using ovVeldris::COMPLEX_EFFECT_TYPE;
using ovVeldris::ComplexEffectTypeUtils;

TEST(ComplexEffectTypeUtilsTest, GivesTheTextOfANumber) {
    const std::pair<uint32_t, ovMemory::StringView> cases[] = {
        {0, "UNKNOWN"}, {1, "BLUR"}, {2, "DOF"}, {3, "UNKNOWN"}, {0xffffffffu, "UNKNOWN"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(ComplexEffectTypeUtils::enumToString(static_cast<COMPLEX_EFFECT_TYPE>(number)), text)
            << number;
}

TEST(ComplexEffectTypeUtilsTest, GivesTheNumberOfAnExactText) {
    const std::pair<ovMemory::StringView, uint32_t> cases[] = {
        {"BLUR", 1}, {"DOF", 2}, {"UNKNOWN", 0}, {"blur", 0},  {"Dof", 0},
        {"", 0},     {"BLU", 0}, {"BLUR ", 0},   {"BLURR", 0}, {ovMemory::StringView("DOF\0", 4), 0},
    };
    for (const auto& [text, number] : cases)
        EXPECT_EQ(static_cast<uint32_t>(ComplexEffectTypeUtils::stringToEnum(text)), number) << text;
}

#include <ovVeldris/materials/MaterialTypeUtils.h>

#include <gtest/gtest.h>

using ovVeldris::MATERIAL_TYPE;
using ovVeldris::MaterialTypeUtils;

TEST(MaterialTypeUtilsTest, GivesTheTextOfANumber) {
    const std::pair<uint32_t, ovMemory::StringView> cases[] = {
        {0, "UNKNOWN"}, {1, "PBS"}, {2, "UNKNOWN"}, {0xffffffffu, "UNKNOWN"}};
    for (const auto& [number, text] : cases)
        EXPECT_EQ(MaterialTypeUtils::enumToString(static_cast<MATERIAL_TYPE>(number)), text) << number;
}

TEST(MaterialTypeUtilsTest, GivesTheNumberOfAnExactText) {
    const std::pair<ovMemory::StringView, uint32_t> cases[] = {
        {"PBS", 1}, {"UNKNOWN", 0}, {"pbs", 0}, {"", 0}, {"PB", 0}, {" PBS", 0}, {"PBSX", 0}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(static_cast<uint32_t>(MaterialTypeUtils::stringToEnum(text)), number) << text;
}

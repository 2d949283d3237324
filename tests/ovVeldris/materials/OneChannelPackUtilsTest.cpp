#include <ovVeldris/materials/OneChannelPackUtils.h>

#include <gtest/gtest.h>

using ovVeldris::ONE_CHANNEL_PACK;
using ovVeldris::OneChannelPackUtils;

TEST(OneChannelPackUtilsTest, GivesTheTextOfANumber) {
    const std::pair<uint32_t, ovMemory::StringView> cases[] = {
        {0, "r"}, {1, "g"}, {2, "b"}, {3, "a"}, {4, "unknown"}, {0xffffffffu, "unknown"}};
    for (const auto& [number, text] : cases)
        EXPECT_EQ(OneChannelPackUtils::enumToStringLower(static_cast<ONE_CHANNEL_PACK>(number)), text)
            << number;
}

TEST(OneChannelPackUtilsTest, EveryTextButTheOtherThreeMeansAlpha) {
    const std::pair<ovMemory::StringView, uint32_t> cases[] = {{"r", 0}, {"g", 1},  {"b", 2},      {"a", 3},
                                                               {"R", 3}, {"G", 3},  {"B", 3},      {"x", 3},
                                                               {"", 3},  {"rg", 3}, {"unknown", 3}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(static_cast<uint32_t>(OneChannelPackUtils::stringLowerToEnum(text)), number) << text;
}

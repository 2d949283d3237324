#include <gtest/gtest.h>
#include <ovMemory/Enumeration.h>

namespace {

enum class WEATHER { SUN = 3, RAIN = 7, SNOW = -1 };

constexpr ovMemory::EnumEntry<WEATHER> WEATHER_ENTRIES[] = {
    {WEATHER::SUN, "SUN"}, {WEATHER::RAIN, "RAIN"}, {WEATHER::SNOW, "SNOW"}};
constexpr ovMemory::EnumTable<WEATHER> enumTable(WEATHER) {
    return {"WEATHER", WEATHER_ENTRIES};
}

enum class LONELY { ONE };
constexpr ovMemory::EnumEntry<LONELY> LONELY_ENTRIES[] = {{LONELY::ONE, "ONE"}};
constexpr ovMemory::EnumTable<LONELY> enumTable(LONELY) {
    return {"LONELY", LONELY_ENTRIES};
}

} // namespace

using namespace ovMemory;

TEST(EnumerationTest, textsAndValuesFindEachOther) {
    EXPECT_EQ(enumToText(WEATHER::SUN), "SUN");
    EXPECT_EQ(enumToText(WEATHER::SNOW), "SNOW");
    EXPECT_EQ(enumToText(static_cast<WEATHER>(4)), "");
    EXPECT_EQ(enumToText(static_cast<WEATHER>(4), "UNKNOWN"), "UNKNOWN");
    EXPECT_EQ(enumFromText<WEATHER>("RAIN"), WEATHER::RAIN);
    for (const char* wrong : {"", "rain", "RAIN ", "RAI", "RAINS"})
        EXPECT_EQ(enumFromText<WEATHER>(wrong), std::nullopt) << wrong;
    static_assert(enumFromText<WEATHER>("SNOW") == WEATHER::SNOW, "also where the compiler needs it");
}

TEST(EnumerationTest, tablesAreWalkedInOrder) {
    EXPECT_EQ(enumTableOf<WEATHER>().name, "WEATHER");
    std::string walked;
    for (const EnumEntry<WEATHER>& entry : enumTableOf<WEATHER>())
        walked += std::string(entry.text) + "=" + std::to_string(static_cast<int>(entry.value)) + " ";
    EXPECT_EQ(walked, "SUN=3 RAIN=7 SNOW=-1 ");
    EXPECT_EQ(enumTableOf<WEATHER>().size(), 3u);
}

TEST(EnumerationTest, messagesListTheTexts) {
    EXPECT_EQ(enumTexts<WEATHER>(), "SUN, RAIN or SNOW");
    EXPECT_EQ(enumTexts<LONELY>(), "ONE");
}

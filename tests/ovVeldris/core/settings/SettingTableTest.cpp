#include <gtest/gtest.h>
#include <ovVeldris/core/settings/SettingSample.h>

using namespace ovVeldris;

TEST(SettingTableTest, rowsAreFoundByTheirWholeName) {
    const SettingTable& settings = settingTesting::SettingSample::settings();
    ASSERT_NE(settings.find("count"), nullptr);
    EXPECT_EQ(settings.find("count")->name, "count");
    EXPECT_EQ(settings.find("coun"), nullptr);
    EXPECT_EQ(settings.find(""), nullptr);
}

TEST(SettingTableTest, rowsKeepTheirOrder) {
    const SettingTable& settings = settingTesting::SettingSample::settings();
    EXPECT_EQ(settings.size(), 14u);
    EXPECT_EQ(settings.begin()->name, "is-on");
    EXPECT_EQ((settings.end() - 1)->name, "anchor");
}

TEST(SettingTableTest, aClassMayHaveNone) {
    EXPECT_EQ(SettingTable::none().size(), 0u);
    EXPECT_EQ(SettingTable::none().find("count"), nullptr);
}

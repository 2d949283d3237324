#include <gtest/gtest.h>
#include <ovVeldris/core/settings/SettingSample.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>

using namespace ovVeldris;
using ovMemory::String;
using settingTesting::SettingSample;

TEST(ConfigurableTest, everySettingGoesInAndComesOut) {
    ovGraphics::System graphics;
    SettingSample sample;
    settingTesting::checkSettingTable(sample, graphics);
}

TEST(ConfigurableTest, settingsReachTheSetters) {
    SettingSample sample;
    EXPECT_EQ(sample.setSetting("count", 9).error, "");
    EXPECT_EQ(sample.count, 9);
    EXPECT_EQ(sample.setSettingFromText("fruit", "apple").error, "");
    EXPECT_EQ(sample.fruit, settingTesting::FRUIT::APPLE);
    EXPECT_EQ(sample.getSettingAsText("fruit"), "apple");
}

TEST(ConfigurableTest, refusedValuesChangeNothing) {
    SettingSample sample;
    String error = sample.setSetting("angle", 180.0f).error;
    EXPECT_EQ(error, "'180' is no value of the setting 'angle'; it takes a number from 1 to 179 degrees.");
    error = sample.setSettingFromText("angle", "wide").error;
    EXPECT_EQ(error, "'wide' is no value of the setting 'angle'; it takes a number from 1 to 179 degrees.");
    EXPECT_EQ(sample.angle, 60.0f);
}

TEST(ConfigurableTest, unknownNamesAreToldWithTheKnownOnes) {
    SettingSample sample;
    String error = sample.setSetting("colour", ovMaths::Vector()).error;
    EXPECT_EQ(error, "there is no setting 'colour'; it has is-on, fruit, count, angle, gamma, offset, color, "
                     "look, place, title, map, reader, eye, anchor. Did you mean 'color'?");
    EXPECT_FALSE(sample.getSetting("colour").has_value());
    EXPECT_EQ(sample.getSettingAsText("colour"), "");
}

TEST(ConfigurableTest, aSettingIsUsedBesideItsConditionOnly) {
    SettingSample sample;
    const Setting& gamma = *SettingSample::settings().find("gamma");
    EXPECT_FALSE(sample.isSettingUsed(gamma));
    sample.fruit = settingTesting::FRUIT::APPLE;
    EXPECT_TRUE(sample.isSettingUsed(gamma));
    EXPECT_TRUE(sample.isSettingUsed(*SettingSample::settings().find("count")));
}

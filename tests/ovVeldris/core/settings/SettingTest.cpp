#include <cmath>
#include <gtest/gtest.h>
#include <ovVeldris/core/settings/SettingSample.h>

using namespace ovVeldris;
using ovMaths::Matrix;
using ovMaths::Vector;
using ovMemory::String;
using settingTesting::SettingSample;

namespace {

const Setting& row(const char* name) {
    return *SettingSample::settings().find(name);
}

} // namespace

TEST(SettingTest, rangesHoldTheirEndsOnlyWhereTheySaySo) {
    EXPECT_TRUE(UNIT_RANGE.holds(0.0) && UNIT_RANGE.holds(1.0));
    EXPECT_FALSE(UNIT_RANGE.holds(-1e-9) || UNIT_RANGE.holds(1.0000001));
    EXPECT_FALSE(POSITIVE.holds(0.0));
    EXPECT_TRUE(POSITIVE.holds(1e-9) && POSITIVE.holds(1e30));
    EXPECT_TRUE(NOT_NEGATIVE.holds(0.0));
    const SettingRange below{.maximum = 1.0f, .includesMaximum = false};
    EXPECT_FALSE(below.holds(1.0));
    EXPECT_TRUE(below.holds(-1e30));
    EXPECT_FALSE(SettingRange().holds(NAN));
}

TEST(SettingTest, rowsReadAndWriteTheirObject) {
    SettingSample sample;
    row("fruit").set(sample, String("apple"));
    EXPECT_EQ(sample.fruit, settingTesting::FRUIT::APPLE);
    EXPECT_EQ(row("fruit").get(sample), SettingValue(String("apple")));
    row("title").set(sample, String("pears"));
    EXPECT_EQ(sample.title, "pears");
    sample.angle = 7.0f;
    EXPECT_EQ(row("angle").get(sample), SettingValue(7.0f));
}

TEST(SettingTest, rowsSayWhatTheyAre) {
    EXPECT_EQ(row("fruit").kind, SETTING_KIND::ENUMERATION);
    EXPECT_EQ(row("fruit").choices, (ovMemory::Buffer<String>{"apple", "sour-cherry"}));
    EXPECT_EQ(row("fruit").defaultValue, SettingValue(String("sour-cherry")));
    EXPECT_TRUE(row("fruit").waitsForLoad);
    EXPECT_FALSE(row("angle").waitsForLoad);
    EXPECT_EQ(row("angle").unit, "degrees");
    EXPECT_EQ(row("offset").components, 2u);
    EXPECT_EQ(row("place").components, 4u);
    EXPECT_EQ(row("gamma").onlyWith.setting, "fruit");
    EXPECT_TRUE(isResource(row("map").kind) && isResource(row("anchor").kind));
    EXPECT_FALSE(isResource(row("title").kind));
}

TEST(SettingTest, acceptedValuesBecomeTheKinds) {
    SettingValue value = 7;
    EXPECT_EQ(acceptSettingValue(row("angle"), value).error, "");
    EXPECT_EQ(value, SettingValue(7.0f));
    value = String("SOUR_CHERRY");
    EXPECT_EQ(acceptSettingValue(row("fruit"), value).error, "");
    EXPECT_EQ(value, SettingValue(String("sour-cherry")));
    value = String("As It Is");
    EXPECT_EQ(acceptSettingValue(row("title"), value).error, "");
    EXPECT_EQ(value, SettingValue(String("As It Is")));
}

TEST(SettingTest, refusedValuesAreToldWithWhatIsTaken) {
    const struct {
        const char* setting;
        SettingValue value;
        const char* error;
    } CASES[] = {
        {"is-on", 1, "'1' is no value of the setting 'is-on'; it takes true or false."},
        {"count", 10, "'10' is no value of the setting 'count'; it takes a whole number from 1 to 9."},
        {"count", 2.0f, "'2' is no value of the setting 'count'; it takes a whole number from 1 to 9."},
        {"angle", 0.5f, "'0.5' is no value of the setting 'angle'; it takes a number from 1 to 179 degrees."},
        {"angle", NAN, "'nan' is no value of the setting 'angle'; it takes a number from 1 to 179 degrees."},
        {"gamma", 0.0f, "'0' is no value of the setting 'gamma'; it takes a number above 0."},
        {"color", Vector(0.0f, 0.0f, 1.5f),
         "'0,0,1.5' is no value of the setting 'color'; it takes three numbers, each from 0 to 1, as in "
         "0.5,0.5,1."},
        {"offset", Vector(0.0f, -INFINITY),
         "'0,-inf' is no value of the setting 'offset'; it takes two numbers, as in 1,2."},
        {"offset", true, "'true' is no value of the setting 'offset'; it takes two numbers, as in 1,2."},
        {"look", Matrix::newMat3(0, 0, 0, 0, 0, 0, NAN, 0, 0),
         "'0,0,0,0,0,0,nan,0,0' is no value of the setting 'look'; it takes nine numbers, three rows of "
         "three."},
        {"place", Vector(1.0f, 2.0f, 3.0f, 4.0f),
         "'1,2,3,4' is no value of the setting 'place'; it takes sixteen numbers, four rows of four."},
        {"fruit", String("pear"),
         "'pear' is no value of the setting 'fruit'; it takes one of apple, sour-cherry."},
        {"title", 1.0f, "'1' is no value of the setting 'title'; it takes a text."},
        {"map", static_cast<ovGraphics::Camera*>(nullptr),
         "'none' is no value of the setting 'map'; it takes the name of a texture, or none."},
    };
    for (const auto& test : CASES) {
        SettingValue value = test.value;
        String error = acceptSettingValue(row(test.setting), value).error;
        EXPECT_EQ(error, test.error);
        EXPECT_EQ(value.index(), test.value.index());
    }
}

TEST(SettingTest, componentsThatDoNotCountAreNotChecked) {
    SettingValue value = Vector(1.0f, 1.0f, 1.0f, 7.0f);
    EXPECT_EQ(acceptSettingValue(row("color"), value).error, "");
}

TEST(SettingTest, enumeratorsAreWrittenInLowerCaseWithDashes) {
    EXPECT_EQ(toSettingText("TONE_MAPPING"), "tone-mapping");
    EXPECT_EQ(toSettingText("mixed_Case-8"), "mixed-case-8");
    EXPECT_EQ(toSettingText(""), "");
}

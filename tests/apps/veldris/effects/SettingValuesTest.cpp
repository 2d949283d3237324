#include <veldris/effects/SettingValues.h>

#include <gtest/gtest.h>

namespace {

using veldris::SETTING_KIND;
using veldris::SettingValues;

const ovMemory::Buffer<veldris::SettingDescription> DESCRIPTIONS = {
    {"on", SETTING_KIND::BOOLEAN, "true", "", {}},
    {"size", SETTING_KIND::NUMBER, "2.5", "", {}},
    {"colour", SETTING_KIND::VECTOR, "1,2,3", "", {}},
    {"look", SETTING_KIND::MATRIX, "1,2,3,4,5,6,7,8,9", "", {}},
    {"kind", SETTING_KIND::ENUMERATION, "soft", "", {"soft", "hard"}},
};

bool parse(const veldris::EffectSpec& effect, SettingValues& values, ovMemory::String& error) {
    return SettingValues::parse(effect, DESCRIPTIONS, values, error);
}

TEST(SettingValuesTest, defaultsStandWhereNothingIsGiven) {
    SettingValues values;
    ovMemory::String error;
    ASSERT_TRUE(parse({"e", {{"size", "-1e-3"}}}, values, error)) << error;
    EXPECT_TRUE(values.getBoolean("on"));
    EXPECT_FLOAT_EQ(values.getNumber("size"), -1e-3f);
    EXPECT_EQ(values.getVector("colour"), ovMaths::Vector(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(values.getMatrix("look").getRow1(), ovMaths::Vector(4.0f, 5.0f, 6.0f, 0.0f));
    EXPECT_EQ(values.getText("kind"), "soft");
    EXPECT_TRUE(values.wasGiven("size"));
    EXPECT_FALSE(values.wasGiven("kind"));
}

TEST(SettingValuesTest, givenValuesReplaceDefaults) {
    SettingValues values;
    ovMemory::String error;
    ASSERT_TRUE(parse({"e", {{"on", "0"}, {"colour", "4, 5 ,6"}, {"kind", "hard"}}}, values, error)) << error;
    EXPECT_FALSE(values.getBoolean("on"));
    EXPECT_EQ(values.getVector("colour"), ovMaths::Vector(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(values.getText("kind"), "hard");
}

TEST(SettingValuesTest, saysWhatWouldBeRight) {
    const struct {
        veldris::EffectSpec effect;
        const char* error;
    } cases[] = {
        {{"e", {{"sice", "1"}}},
         "effect 'e': there is no setting 'sice'; it has on, size, colour, look, kind."},
        {{"e", {{"on", "yes"}}},
         "effect 'e': 'yes' is no value of the setting 'on'; it takes true or false."},
        {{"e", {{"size", "1,2"}}}, "effect 'e': '1,2' is no value of the setting 'size'; it takes a number."},
        {{"e", {{"size", ""}}}, "effect 'e': '' is no value of the setting 'size'; it takes a number."},
        {{"e", {{"size", "nan"}}}, "effect 'e': 'nan' is no value of the setting 'size'; it takes a number."},
        {{"e", {{"size", "1e999"}}},
         "effect 'e': '1e999' is no value of the setting 'size'; it takes a number."},
        {{"e", {{"colour", "1,2"}}},
         "effect 'e': '1,2' is no value of the setting 'colour'; it takes three numbers, as in 2,2,2."},
        {{"e", {{"look", "1"}}},
         "effect 'e': '1' is no value of the setting 'look'; it takes nine numbers, three rows of three."},
        {{"e", {{"kind", "Soft"}}},
         "effect 'e': 'Soft' is no value of the setting 'kind'; it takes one of soft, hard."},
        {{"e", {{"size", "1"}, {"size", "2"}}}, "effect 'e': the setting 'size' is given twice; keep one."},
    };
    for (const auto& test : cases) {
        SettingValues values;
        ovMemory::String error;
        EXPECT_FALSE(parse(test.effect, values, error));
        EXPECT_EQ(error, test.error);
    }
    SettingValues values;
    ovMemory::String error;
    EXPECT_FALSE(SettingValues::parse({"e", {{"x", "1"}}}, {}, values, error));
    EXPECT_EQ(error, "effect 'e': there is no setting 'x'; it has none.");
}

} // namespace

#include <gtest/gtest.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovVeldris/core/settings/SettingSample.h>
#include <ovVeldris/core/settings/SettingText.h>

// Its names stay its own where the folder is compiled as one.
namespace settingTextTest {

using namespace ovVeldris;
using ovMaths::Matrix;
using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using settingTesting::SettingSample;

namespace {

const Setting& row(const char* name) {
    return *SettingSample::settings().find(name);
}

} // namespace

TEST(SettingTextTest, valuesReadBackFromTheirText) {
    const struct {
        const char* setting;
        const char* text;
        SettingValue value;
        const char* written; ///< in its one form
    } CASES[] = {
        {"is-on", "0", false, "false"},
        {"is-on", "true", true, "true"},
        {"count", " 3 ", 3, "3"},
        {"angle", "1e2", 100.0f, "100"},
        {"angle", "0x", 0.0f, nullptr},
        {"gamma", "0.1", 0.1f, "0.1"},
        {"offset", "-1, 2.5", Vector(-1.0f, 2.5f), "-1,2.5"},
        {"color", "0,0.25,1", Vector(0.0f, 0.25f, 1.0f), "0,0.25,1"},
        {"look", "1,2,3,4,5,6,7,8,9", Matrix::newMat3(1, 2, 3, 4, 5, 6, 7, 8, 9), "1,2,3,4,5,6,7,8,9"},
        {"place", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16",
         Matrix::newMat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16),
         "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16"},
        {"fruit", "sour-cherry", String("sour-cherry"), "sour-cherry"},
        {"fruit", "SOUR_CHERRY", String("sour-cherry"), "sour-cherry"},
        {"title", " any, text=1", String(" any, text=1"), " any, text=1"},
    };
    for (const auto& test : CASES) {
        SettingValue value;
        const ovMemory::Result result = parseSettingValue(row(test.setting), test.text, nullptr, value);
        ASSERT_EQ(!!result, test.written != nullptr) << test.text << result.error;
        if (!result)
            continue;
        EXPECT_EQ(value, test.value) << test.text;
        EXPECT_EQ(toText(row(test.setting), value), test.written);
    }
}

TEST(SettingTextTest, otherTextsAreRefused) {
    const std::pair<const char*, const char*> CASES[] = {
        {"is-on", "yes"},     {"is-on", ""},
        {"count", "2.5"},     {"count", "99999999999"},
        {"count", "0"},       {"angle", "1,5"},
        {"angle", "60deg"},   {"angle", "nan"},
        {"angle", "1e99"},    {"offset", "1"},
        {"offset", "1,2,3"},  {"offset", "1,"},
        {"color", "0,0,2"},   {"color", "0,,0"},
        {"look", "1,2,3"},    {"look", "1,2,3,4,5,6,7,8,9,10"},
        {"fruit", "cherry"},  {"fruit", "sour cherry"},
        {"map", "a texture"}, {"map", "none"},
    };
    for (const auto& [setting, text] : CASES) {
        SettingValue value = 77;
        String error = parseSettingValue(row(setting), text, nullptr, value).error;
        const String hint = String(setting) == "fruit" ? " Did you mean 'sour-cherry'?" : "";
        EXPECT_EQ(error, "'" + String(text) + "' is no value of the setting '" + setting + "'; it takes " +
                             expectedText(row(setting)) + "." + hint);
        EXPECT_EQ(value, SettingValue(77));
    }
}

TEST(SettingTextTest, resourcesGoByTheirName) {
    ovGraphics::System graphics;
    ovGraphics::Camera* camera = graphics.getCameraManager()->createOrRetrieve("front");
    SettingValue value;
    ASSERT_EQ(parseSettingValue(row("eye"), "front", &graphics, value).error, "");
    EXPECT_EQ(value, SettingValue(camera));
    EXPECT_EQ(toText(row("eye"), value), "front");
    ASSERT_EQ(parseSettingValue(row("eye"), "none", &graphics, value).error, "");
    EXPECT_EQ(value, SettingValue(static_cast<ovGraphics::Camera*>(nullptr)));
    EXPECT_EQ(toText(row("eye"), value), "none");
    String error = parseSettingValue(row("eye"), "back", &graphics, value).error;
    EXPECT_EQ(error, "'back' is no value of the setting 'eye'; it takes the name of a camera, or none.");
}

TEST(SettingTextTest, rangesAreWords) {
    const struct {
        SettingRange range;
        const char* unit;
        const char* text;
    } CASES[] = {
        {{}, "", ""},
        {{}, "stops", "of stops"},
        {UNIT_RANGE, "", "from 0 to 1"},
        {NOT_NEGATIVE, "stops", "of at least 0 stops"},
        {POSITIVE, "", "above 0"},
        {{.maximum = 2.5f}, "", "of at most 2.5"},
        {{.maximum = 1.0f, .includesMaximum = false}, "", "below 1"},
        {{.minimum = 0.0f, .maximum = 1.0f, .includesMinimum = false}, "", "above 0 to 1"},
        {{.minimum = 0.0f, .maximum = 1.0f, .includesMaximum = false}, "", "from 0 to below 1"},
    };
    for (const auto& test : CASES) {
        Setting setting;
        setting.range = test.range;
        setting.unit = test.unit;
        EXPECT_EQ(rangeText(setting), test.text);
    }
}

TEST(SettingTextTest, settingsAreReadTogether) {
    const SettingText TEXTS[] = {{"gamma", "2"}, {"fruit", "apple"}, {"is-on", "false"}};
    Buffer<SettingAssignment> assignments;
    ASSERT_EQ(parseSettings(SettingSample::settings(), TEXTS, nullptr, assignments).error, "");
    ASSERT_EQ(assignments.size(), 3u);
    EXPECT_EQ(assignments[0].name, "gamma");
    EXPECT_EQ(assignments[0].value, SettingValue(2.0f));
    EXPECT_EQ(assignments[1].value, SettingValue(String("apple")));
}

TEST(SettingTextTest, settingsThatDoNotGoTogetherAreRefused) {
    const struct {
        Buffer<SettingText> texts;
        const char* error;
    } CASES[] = {
        {{{"angle", "2"}, {"count", "1"}, {"angle", "2"}}, "the setting 'angle' is given twice; keep one."},
        {{{"gamma", "1"}}, "the setting 'gamma' belongs to fruit=apple, and fruit=sour-cherry was chosen."},
        {{{"fruit", "SOUR_CHERRY"}, {"gamma", "1"}},
         "the setting 'gamma' belongs to fruit=apple, and fruit=sour-cherry was chosen."},
        {{{"gamma", "0"}, {"fruit", "apple"}},
         "'0' is no value of the setting 'gamma'; it takes a number above 0."},
        {{{"pear", "1"}},
         "there is no setting 'pear'; it has is-on, fruit, count, angle, gamma, offset, color, look, place, "
         "title, map, reader, eye, anchor."},
    };
    for (const auto& test : CASES) {
        Buffer<SettingAssignment> assignments;
        String error = parseSettings(SettingSample::settings(), test.texts, nullptr, assignments).error;
        EXPECT_EQ(error, test.error);
    }
}

TEST(SettingTextTest, aClassWithoutSettingsSaysSo) {
    ovMemory::Result result;
    EXPECT_EQ(findSetting(SettingTable::none(), "gamma", result), nullptr);
    EXPECT_EQ(result.place, "gamma");
    EXPECT_EQ(result.error, "there is no setting 'gamma'; it has none.");
}

} // namespace settingTextTest

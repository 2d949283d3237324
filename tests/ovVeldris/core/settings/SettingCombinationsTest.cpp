#include <gtest/gtest.h>
#include <ovVeldris/core/settings/SettingCombinations.h>
#include <ovVeldris/core/settings/SettingSample.h>

using namespace ovVeldris;
using ovMemory::Buffer;
using ovMemory::String;

namespace {

/// The combinations of a table, each as "name=value,name=value".
Buffer<String> texts(const SettingTable& settings) {
    Buffer<String> result;
    for (const auto& combination : finiteCombinations(settings)) {
        String& text = result.emplace_back();
        for (const SettingAssignment& assignment : combination)
            text.append(text.empty() ? "" : ",")
                .append(assignment.name)
                .append("=")
                .append(toText(*settings.find(assignment.name), assignment.value));
    }
    return result;
}

Setting flag(const char* name, bool byDefault) {
    Setting setting;
    setting.name = name;
    setting.defaultValue = byDefault;
    return setting;
}

} // namespace

TEST(SettingCombinationsTest, flagsAndEnumerationsThatWaitForLoadVary) {
    // The other twelve settings of the class are live or have numbers.
    EXPECT_EQ(texts(settingTesting::SettingSample::settings()),
              (Buffer<String>{"is-on=true,fruit=apple", "is-on=true,fruit=sour-cherry",
                              "is-on=false,fruit=apple", "is-on=false,fruit=sour-cherry"}));
}

TEST(SettingCombinationsTest, liveSettingsDoNotVary) {
    EXPECT_EQ(texts({flag("live", true)}), Buffer<String>{""});
    EXPECT_EQ(texts(SettingTable::none()), Buffer<String>{""});
}

TEST(SettingCombinationsTest, settingsVaryBesideTheirConditionOnly) {
    const SettingTable settings = {
        flag("a", false).atLoad(),
        flag("b", true).atLoad().with("a", "true"),
        flag("live", true),
        flag("c", false).atLoad().with("live", "false"),
    };
    EXPECT_EQ(texts(settings), (Buffer<String>{"a=false", "a=true,b=true", "a=true,b=false"}));
}

TEST(SettingCombinationsTest, ofLongTablesEachValueComesAlone) {
    Buffer<Setting> flags;
    for (const char* name : {"a", "b", "c", "d", "e", "f"})
        flags.push_back(flag(name, name[0] == 'b').atLoad());
    EXPECT_EQ(texts(SettingTable(flags)).size(), MAX_COMBINATIONS);
    flags.push_back(flag("g", false).atLoad());
    flags.push_back(flag("h", false).atLoad().with("a", "true"));
    flags.push_back(flag("i", false).atLoad().with("a", "false"));
    EXPECT_EQ(texts(SettingTable(flags)), (Buffer<String>{"", "a=true", "b=false", "c=true", "d=true",
                                                          "e=true", "f=true", "g=true", "i=true"}))
        << "h means nothing beside the default of a";
}

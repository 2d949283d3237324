#include <veldris/effects/EffectSpec.h>

#include <gtest/gtest.h>

namespace {

using veldris::EffectSpec;
using Effects = ovMemory::Buffer<EffectSpec>;

struct GoodCase {
    const char* text;
    Effects expected;
};

TEST(EffectSpecTest, readsListsOfEffects) {
    const GoodCase cases[] = {
        {"fxaa", {{"fxaa", {}}}},
        {"fxaa:", {{"fxaa", {}}}},
        {" fxaa ; ; tone-mapping ", {{"fxaa", {}}, {"tone-mapping", {}}}},
        {"a:x=1,y=2", {{"a", {{"x", "1"}, {"y", "2"}}}}},
        {"a: x = 1 , y = 2 ", {{"a", {{"x", "1"}, {"y", "2"}}}}},
        {"a:v=1,2,3,w=4", {{"a", {{"v", "1,2,3"}, {"w", "4"}}}}},
        {"a:v=1, 2,3;b:w=4,5", {{"a", {{"v", "1,2,3"}}}, {"b", {{"w", "4,5"}}}}},
        {"a:x=", {{"a", {{"x", ""}}}}},
        {"a:x=b:c", {{"a", {{"x", "b:c"}}}}},
    };
    for (const GoodCase& test : cases) {
        Effects effects;
        ovMemory::String error;
        EXPECT_TRUE(veldris::parseEffectList(test.text, effects, error)) << test.text << ": " << error;
        EXPECT_EQ(effects, test.expected) << test.text;
    }
}

TEST(EffectSpecTest, saysWhatIsWrong) {
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"", "the list of effects is empty; write for example \"tone-mapping:operator=aces\"."},
        {" ; ;", "the list of effects is empty; write for example \"tone-mapping:operator=aces\"."},
        {":", "an effect has no name before ''; write name:setting=value."},
        {":x=1", "an effect has no name before 'x=1'; write name:setting=value."},
        {"a:x", "effect 'a': 'x' is no setting; write name=value."},
        {"a:=1", "effect 'a': '=1' is no setting; write name=value."},
        {"ok;a:1,2", "effect 'a': '1' is no setting; write name=value."},
    };
    for (const auto& test : cases) {
        Effects effects = {{"before", {}}};
        ovMemory::String error;
        EXPECT_FALSE(veldris::parseEffectList(test.text, effects, error)) << test.text;
        EXPECT_EQ(error, test.error);
        EXPECT_TRUE(effects.empty());
    }
}

TEST(EffectSpecTest, textReadsBackAsTheSameEffect) {
    for (const EffectSpec& effect : Effects{{"a", {}}, {"b", {{"v", "1,2,3"}, {"w", "x"}}}}) {
        Effects read;
        ovMemory::String error;
        ASSERT_TRUE(veldris::parseEffectList(veldris::toText(effect), read, error)) << error;
        EXPECT_EQ(read, Effects{effect});
    }
}

} // namespace

#include <ovVeldris/scripts/veldrisWrap/SettingsBinding.h>

#include <ovVeldris/effects/EffectManager.h>
#include <scripts/veldrisWrap/VeldrisScripts.h>

namespace {

/// Beside a tone mapping 'tone' and a texture copy 'copy'.
class SettingsBindingTest : public VeldrisScripts {
protected:
    SettingsBindingTest() {
        evaluate(
            "m = ovVeldris.EffectManager.getInstance() tone = m:createOrRetrieve('tone', 'tone-mapping') "
            "copy = m:createOrRetrieve('copy', 'TEXTURE_COPY') "
            "texture = ovGraphics.TextureManager.getInstance():createOrRetrieve('picture')");
    }
    ~SettingsBindingTest() override {
        for (const char* name : {"tone", "copy"})
            getSystem().getEffectManager()->erase(name);
        getGraphics().getTextureManager()->erase("picture");
    }
};

} // namespace

TEST_F(SettingsBindingTest, valuesOfEachKindGoInAndOut) {
    EXPECT_EQ(evaluate("tone:set('operator', 'aces') return tone:get('operator')"), "aces");
    EXPECT_EQ(evaluate("tone:set('operator', 'REINHARD') return tone.operator"), "reinhard");
    EXPECT_EQ(evaluate("tone:set('use-luminance', false) return tone.use_luminance"), "false");
    EXPECT_EQ(evaluate("tone.use_luminance = true return tone:get('use-luminance')"), "true");
    EXPECT_EQ(evaluate("tone.max_white = ovMaths.Vector.newVec3(1, 2, 3) return tone.max_white._y"), "2.0");
    EXPECT_EQ(evaluate("tone.max_white = '4,5,6' return tone.max_white._z"), "6.0");
    EXPECT_EQ(
        evaluate("tone.max_white = {7, 8.5, 9} local v = tone.max_white return v._x .. ' ' .. v._y .. ' ' .. "
                 "v._z"),
        "7.0 8.5 9.0");
    EXPECT_EQ(
        evaluate("tone:set('max-white', setmetatable({1, 2, 3}, {__index = error, __len = error})) return "
                 "tone.max_white._z"),
        "3.0");
    EXPECT_EQ(evaluate("tone.look_transform = '1,0,0,0,1,0,0,0,2' return tone.look_transform:get(2, 2)"),
              "2.0");
    EXPECT_EQ(evaluate("local m = ovMaths.Matrix() m:set(0, 1, 7) tone.look_transform = m return "
                       "tone.look_transform:get(0, 1)"),
              "7.0");
    EXPECT_EQ(evaluate("tone.source_texture = texture return tone.source_texture == texture"), "true");
    EXPECT_EQ(evaluate("tone.source_texture = nil return tone.source_texture"), "nil");
    EXPECT_EQ(evaluate("tone.source_texture = 'picture' return tone.source_texture == texture"), "true");
    EXPECT_EQ(evaluate("tone.source_texture = 'none' return tone.source_texture"), "nil");
}

TEST_F(SettingsBindingTest, everySettingOfEveryKindCanBeReadAndSetToWhatItIs) {
    EXPECT_EQ(evaluate("for _, e in ipairs({tone, copy}) do for i = 0, e:getSettingCount() - 1 do "
                       "local name = e:getSettingName(i) local value = e:get(name) "
                       "if value ~= nil then e:set(name, value) e[name:gsub('-', '_')] = value end "
                       "assert(#e:getSettingHelp(name) > 0) end end return tone:getSettingName(1000)"),
              "nil");
}

TEST_F(SettingsBindingTest, wrongValuesAreErrorsThatNameTheRightOnes) {
    const std::string operators = "'ace' is no value of the setting 'operator'; it takes one of reinhard, "
                                  "hables, aces. Did you mean 'aces'?";
    const std::string names =
        "there is no setting 'operatr'; it has source-texture, operator, use-luminance, max-white, "
        "look-transform, toe-length, toe-strength, shoulder-length, shoulder-strength, shoulder-angle, "
        "gamma. "
        "Did you mean 'operator'?";
    const std::string whites = "' is no value of the setting 'max-white'; it takes three numbers, each above "
                               "0, as in 2,2,2.";
    const std::string flags = "' is no value of the setting 'use-luminance'; it takes true or false.";
    const std::pair<const char*, std::string> rows[] = {
        {"tone:set('operator', 'ace')", "set: " + operators},
        {"tone.operator = 'ace'", "operator: " + operators},
        {"tone.use_luminance = 3", "use_luminance: '3" + flags},
        {"tone.use_luminance = nil", "use_luminance: 'nil" + flags},
        {"tone.max_white = 3", "max_white: '3" + whites},
        {"tone.max_white = {1, 2}", "max_white: 'a table or a function" + whites},
        {"tone.max_white = {1, 2, 3, 4}", "max_white: 'a table or a function" + whites},
        {"tone.max_white = {1, 2, '3'}", "max_white: 'a table or a function" + whites},
        {"tone.max_white = {}", "max_white: 'a table or a function" + whites},
        {"tone.max_white = {x = 1, y = 2, z = 3}", "max_white: 'a table or a function" + whites},
        {"tone.max_white = {1, -2, 3}", "max_white: '1,-2,3" + whites},
        {"tone.max_white = print", "max_white: 'a table or a function" + whites},
        {"tone.use_luminance = {true}", "use_luminance: 'a table or a function" + flags},
        {"tone.source_texture = tone", "source_texture: 'ovVeldris.Effect' is no value of the setting "
                                       "'source-texture'; it takes the name of a texture, or none."},
        {"tone.operatr = 'aces'", "operatr: " + names},
        {"return tone.operatr", "operatr: " + names},
        {"return tone:get('operatr')", "get: " + names},
        {"return tone:getSettingHelp('operatr')", "getSettingHelp: " + names},
    };
    for (const auto& [text, message] : rows)
        EXPECT_EQ(evaluate(text), "error: test:1: ovVeldris.Effect." + message) << text;
    EXPECT_EQ(evaluate("return tone.operator"), "reinhard") << "nothing was set";
}

TEST_F(SettingsBindingTest, namesAreOfferedWithUnderscoresByKind) {
    const auto offeredOf = [](const char* type, const char* kind) {
        for (const auto& members :
             getSystem().getScriptsEngine()->getEnvironment()->getUserType(type)->getNamedMembers())
            if (members.kind == kind)
                return members.names;
        return ovMemory::Buffer<ovMemory::String>();
    };
    EXPECT_EQ(offeredOf("ovVeldris.Effect", "texture-copy"),
              (ovMemory::Buffer<ovMemory::String>{"source_texture", "source_sampler"}));
    const auto tone = offeredOf("ovVeldris.Effect", "tone-mapping");
    EXPECT_EQ(std::count(tone.begin(), tone.end(), "use_luminance"), 1);
    EXPECT_EQ(std::count(tone.begin(), tone.end(), "sun_position"), 0) << "another kind's";
    const auto blur = offeredOf("ovVeldris.ComplexEffect", "blur");
    EXPECT_EQ(std::count(blur.begin(), blur.end(), "radius"), 1);
    const auto material = offeredOf("ovVeldris.Material", "pbs");
    EXPECT_EQ(std::count(material.begin(), material.end(), "albedo_color"), 1);
}

#include <veldris/effects/EffectCatalog.h>

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/EffectType.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

namespace {

using veldris::EffectDescription;
using veldris::EffectSpec;
using veldris::SettingValues;

ovMemory::String dashed(ovMemory::StringView text) {
    ovMemory::String result(text);
    std::ranges::transform(result, result.begin(), [](unsigned char c) {
        return c == '_' ? '-' : static_cast<char>(std::tolower(c));
    });
    return result;
}

TEST(EffectCatalogTest, namesAreTheKindsTextsAndAreFound) {
    for (const EffectDescription& effect : veldris::effectCatalog()) {
        EXPECT_EQ(effect.name, dashed(ovVeldris::EffectTypeUtils::enumToString(effect.type)));
        ovMemory::String error;
        EXPECT_EQ(veldris::findEffect(effect.name, error), &effect);
        EXPECT_FALSE(effect.programVariants.empty());
    }
    ovMemory::String error;
    EXPECT_EQ(veldris::findEffect("tonemapping", error), nullptr);
    EXPECT_EQ(
        error,
        "there is no effect 'tonemapping'; the effects are image-environment, texture-copy, tone-mapping.");
}

TEST(EffectCatalogTest, defaultsAreValidValues) {
    for (const EffectDescription& effect : veldris::effectCatalog()) {
        for (const veldris::SettingDescription& setting : effect.settings) {
            SettingValues values;
            ovMemory::String error;
            EXPECT_TRUE(SettingValues::parse(
                {ovMemory::String(effect.name),
                 {{ovMemory::String(setting.name), ovMemory::String(setting.defaultText)}}},
                effect.settings, values, error))
                << error;
        }
    }
}

TEST(EffectCatalogTest, helpNamesEverySetting) {
    const ovMemory::String help = veldris::effectHelp();
    for (const EffectDescription& effect : veldris::effectCatalog()) {
        EXPECT_NE(help.find(effect.name), ovMemory::String::npos);
        for (const veldris::SettingDescription& setting : effect.settings)
            EXPECT_NE(help.find(setting.name), ovMemory::String::npos) << setting.name;
    }
}

/// A tone mapping with these settings applied, on a system that is not initialised.
class ToneMapping {
public:
    explicit ToneMapping(const ovMemory::Buffer<veldris::SettingText>& settings) {
        ovMemory::String error;
        const EffectDescription* description = veldris::findEffect("tone-mapping", error);
        SettingValues values;
        EXPECT_TRUE(SettingValues::parse({"tone-mapping", settings}, description->settings, values, error))
            << error;
        complaint = description->apply(effect, values);
    }

    ovVeldris::System system;
    ovVeldris::ToneMappingEffect effect{&system};
    ovMemory::String complaint;
};

TEST(EffectCatalogTest, toneMappingSettingsReachTheEffect) {
    const ToneMapping reinhard({{"max-white", "4,5,6"}, {"use-luminance", "false"}});
    EXPECT_EQ(reinhard.complaint, "");
    EXPECT_TRUE(reinhard.effect.getReinhardUsed());
    EXPECT_FALSE(reinhard.effect.getUseLuminance());
    EXPECT_EQ(reinhard.effect.getReinhardMaxWhite(), ovMaths::Vector(4.0f, 5.0f, 6.0f));

    const ToneMapping hables({{"operator", "hables"}, {"toe-length", "0.25"}, {"gamma", "2"}});
    EXPECT_TRUE(hables.effect.getHablesUsed());
    EXPECT_EQ(hables.effect.getHablesDescriptor().toeLength, 0.25f);
    EXPECT_EQ(hables.effect.getHablesDescriptor().gamma, 2.0f);
    EXPECT_EQ(hables.effect.getHablesDescriptor().shoulderStrength, 0.1f);

    const ToneMapping aces({{"operator", "aces"}, {"look-transform", "1,2,3,4,5,6,7,8,9"}});
    EXPECT_TRUE(aces.effect.getAcesUsed());
    EXPECT_EQ(aces.effect.getAcesLookTransform().getRow2(), ovMaths::Vector(7.0f, 8.0f, 9.0f, 0.0f));
}

TEST(EffectCatalogTest, imageEnvironmentSettingsReachTheEffectOrAreRefused) {
    using PROJECTION = ovVeldris::IMAGE_ENVIRONMENT_PROJECTION;
    const struct {
        ovMemory::Buffer<veldris::SettingText> settings;
        PROJECTION projection;
        const char* complaint;
    } cases[] = {
        {{}, PROJECTION::AUTO, ""},
        {{{"source-projection", "flat"}}, PROJECTION::FLAT, ""},
        {{{"source-projection", "cube"}}, PROJECTION::CUBE, ""},
        {{{"source-projection", "equirectangular"}, {"field-of-view", "179"}},
         PROJECTION::EQUIRECTANGULAR,
         ""},
        {{{"field-of-view", "0"}},
         PROJECTION::AUTO,
         "'field-of-view' is an angle from 1 to 179 degrees, and 0 was given."},
        {{{"field-of-view", "180"}},
         PROJECTION::AUTO,
         "'field-of-view' is an angle from 1 to 179 degrees, and 180 was given."},
        {{{"direction", "0,0,0"}}, PROJECTION::AUTO, "'direction' has no direction; give one such as 0,0,1."},
    };
    ovMemory::String error;
    const EffectDescription* description = veldris::findEffect("image-environment", error);
    ASSERT_NE(description, nullptr) << error;
    for (const auto& test : cases) {
        ovVeldris::System system;
        ovVeldris::ImageEnvironmentEffect effect(&system);
        SettingValues values;
        ASSERT_TRUE(
            SettingValues::parse({"image-environment", test.settings}, description->settings, values, error))
            << error;
        EXPECT_EQ(description->apply(effect, values), test.complaint);
        EXPECT_EQ(effect.getSourceProjection(), test.projection);
    }
}

TEST(EffectCatalogTest, settingsOfAnotherOperatorAreNotSilentlyDropped) {
    const struct {
        ovMemory::Buffer<veldris::SettingText> settings;
        const char* complaint;
    } cases[] = {
        {{{"operator", "aces"}, {"max-white", "1,1,1"}},
         "the setting 'max-white' belongs to operator=reinhard, and operator=aces was chosen."},
        {{{"gamma", "2"}},
         "the setting 'gamma' belongs to operator=hables, and operator=reinhard was chosen."},
        {{{"operator", "hables"}, {"look-transform", "1,0,0,0,1,0,0,0,1"}},
         "the setting 'look-transform' belongs to operator=aces, and operator=hables was chosen."},
    };
    for (const auto& test : cases)
        EXPECT_EQ(ToneMapping(test.settings).complaint, test.complaint);
}

} // namespace

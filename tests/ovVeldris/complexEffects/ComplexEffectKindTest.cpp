#include <ovVeldris/complexEffects/ComplexEffectKind.h>

#include <ovVeldris/complexEffects/ComplexEffectFixture.h>
#include <ovVeldris/core/settings/SettingCombinations.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>

using namespace ovVeldris;

namespace {
class ComplexEffectKindTest : public ComplexEffectFixture {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, ComplexEffectKindTest, bothLanguages(), languageName);

TEST_P(ComplexEffectKindTest, NamesAreTheTypesInLowerCase) {
    ASSERT_EQ(complexEffectKinds().size(), 2u);
    EXPECT_EQ(findComplexEffectKind(COMPLEX_EFFECT_TYPE::BLUR)->getName(), "blur");
    EXPECT_EQ(findComplexEffectKind(COMPLEX_EFFECT_TYPE::DOF)->getName(), "dof");
    EXPECT_EQ(findComplexEffectKind(COMPLEX_EFFECT_TYPE::UNKNOWN), nullptr);
    EXPECT_FALSE(findComplexEffectKind(COMPLEX_EFFECT_TYPE::BLUR)->readsDepth());
    EXPECT_TRUE(findComplexEffectKind(COMPLEX_EFFECT_TYPE::DOF)->readsDepth());
}

TEST_P(ComplexEffectKindTest, EveryTableHoldsForNewAndLoadedEffects) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        SCOPED_TRACE(kind.getName());
        const auto effect = kind.create(getSystem());
        EXPECT_EQ(effect->getType(), kind.type);
        EXPECT_EQ(&effect->getSettings(), &kind.settings());
        settingTesting::checkSettingTable(*effect, getGraphics());
        effect->setCompositorNode(&getNode());
        ASSERT_TRUE(effect->load());
        settingTesting::checkSettingTable(*effect, getGraphics());
    }
}

TEST_P(ComplexEffectKindTest, EveryCombinationOfSettingsLoads) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        for (const auto& combination : finiteCombinations(kind.settings())) {
            const auto effect = kind.create(getSystem());
            effect->setCompositorNode(&getNode());
            for (const SettingAssignment& assignment : combination)
                EXPECT_EQ(effect->setSetting(assignment.name, assignment.value).error, "");
            EXPECT_TRUE(effect->load()) << kind.getName();
        }
    }
    EXPECT_EQ(getGraphicsLogger().getText(), "") << "no warning of a compiler";
}

TEST_P(ComplexEffectKindTest, EveryKindTakesAPicture) {
    for (const ComplexEffectKind& kind : complexEffectKinds()) {
        const Setting* picture = kind.settings().find(ComplexEffectKind::PICTURE_SETTING);
        ASSERT_NE(picture, nullptr) << kind.getName();
        EXPECT_EQ(picture->kind, SETTING_KIND::TEXTURE);
        EXPECT_FALSE(picture->waitsForLoad);
    }
}

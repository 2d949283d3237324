#include <ovVeldris/effects/EffectKind.h>

#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/core/settings/SettingCombinations.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>
#include <ovVeldris/effects/EffectFixture.h>

using namespace ovVeldris;
using ovMemory::Buffer;
using ovMemory::String;

namespace {

class EffectKindTest : public EffectFixture {};

/// The text that follows from settings: program, defines and sources.
String programText(const Effect& effect) {
    const auto text = effect.getShader()->getProgram()->getText();
    return ovGraphics::shading::getFullText(text, ovGraphics::shading::STAGE::VERTEX) +
           ovGraphics::shading::getFullText(text, ovGraphics::shading::STAGE::PIXEL);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, EffectKindTest, bothLanguages(), languageName);

TEST_P(EffectKindTest, everyTableHoldsForANewEffect) {
    for (const EffectKind& kind : effectKinds()) {
        SCOPED_TRACE(kind.getName());
        const auto effect = kind.create(getSystem());
        EXPECT_EQ(effect->getType(), kind.type);
        EXPECT_EQ(&effect->getSettings(), &kind.settings());
        ovVeldris::testing::checkSettingTable(*effect, getGraphics());
    }
}

TEST_P(EffectKindTest, everyTableHoldsForALoadedEffect) {
    for (const EffectKind& kind : effectKinds()) {
        SCOPED_TRACE(kind.getName());
        const auto effect = kind.create(getSystem());
        ASSERT_TRUE(effect->load());
        ovVeldris::testing::checkSettingTable(*effect, getGraphics());
        effect->unload();
        ovVeldris::testing::checkSettingTable(*effect, getGraphics());
    }
}

TEST_P(EffectKindTest, everyCombinationOfSettingsLoads) {
    for (const EffectKind& kind : effectKinds()) {
        for (const auto& combination : finiteCombinations(kind.settings())) {
            const auto effect = kind.create(getSystem());
            for (const SettingAssignment& assignment : combination)
                EXPECT_EQ(effect->setSetting(assignment.name, assignment.value).error, "");
            EXPECT_TRUE(effect->load()) << kind.getName();
        }
    }
}

TEST_P(EffectKindTest, onlySettingsThatWaitForLoadSelectTheText) {
    for (const EffectKind& kind : effectKinds()) {
        const auto plain = kind.create(getSystem());
        ASSERT_TRUE(plain->load());
        for (const Setting& setting : kind.settings()) {
            // A cube, or no texture, chooses the text of an image environment; everything else is bound.
            if (setting.waitsForLoad || isResource(setting.kind))
                continue;
            const auto effect = kind.create(getSystem());
            for (const SettingValue& value : ovVeldris::testing::otherValues(setting, getGraphics()))
                EXPECT_EQ(effect->setSetting(setting.name, value).error, "");
            ASSERT_TRUE(effect->load());
            EXPECT_EQ(programText(*effect), programText(*plain)) << kind.getName() << setting.name;
        }
    }
}

TEST_P(EffectKindTest, namesAreTheTypesInLowerCaseAndAreFound) {
    const std::pair<EFFECT_TYPE, const char*> NAMES[] = {
        {EFFECT_TYPE::FILM_GRAIN, "film-grain"},
        {EFFECT_TYPE::FXAA, "fxaa"},
        {EFFECT_TYPE::IMAGE_ENVIRONMENT, "image-environment"},
        {EFFECT_TYPE::TEXTURE_COPY, "texture-copy"},
        {EFFECT_TYPE::TONE_MAPPING, "tone-mapping"},
    };
    for (const auto& [type, name] : NAMES) {
        const EffectKind* kind = findEffectKind(type);
        ASSERT_NE(kind, nullptr) << name;
        EXPECT_EQ(kind->getName(), name);
        String error;
        EXPECT_EQ(findEffectKind(name, error), kind);
    }
    String error;
    EXPECT_EQ(findEffectKind("tonemapping", error), nullptr);
    EXPECT_EQ(error, "there is no effect 'tonemapping'; the effects are film-grain, fxaa, image-environment, "
                     "texture-copy, tone-mapping. "
                     "Did you mean 'tone-mapping'?");
    EXPECT_EQ(findEffectKind(EFFECT_TYPE::UNKNOWN), nullptr);
}

TEST_P(EffectKindTest, everyKindTakesAPicture) {
    for (const EffectKind& kind : effectKinds()) {
        const Setting* picture = kind.settings().find(EffectKind::PICTURE_SETTING);
        ASSERT_NE(picture, nullptr) << kind.getName();
        EXPECT_EQ(picture->kind, SETTING_KIND::TEXTURE);
        EXPECT_FALSE(picture->waitsForLoad);
    }
}

TEST_P(EffectKindTest, onlyGrainThatIsDrawnAloneIsBlended) {
    for (const EffectKind& kind : effectKinds())
        EXPECT_EQ(kind.prepareBlending != nullptr, kind.type == EFFECT_TYPE::FILM_GRAIN) << kind.getName();
    const EffectKind& kind = *findEffectKind(EFFECT_TYPE::FILM_GRAIN);
    const auto effect = kind.create(getSystem());
    ovGraphics::BlendState state;
    EXPECT_FALSE(kind.prepareBlending(*effect, state));
    EXPECT_EQ(state.getDesc(), ovGraphics::BlendState().getDesc());
    EXPECT_EQ(effect->setSetting("blend-grain-in-target", true).error, "");
    EXPECT_TRUE(kind.prepareBlending(*effect, state));
    EXPECT_EQ(state.getDesc().targets[0].sourceFactor, ovGraphics::BLEND::DEST_COLOR);
}

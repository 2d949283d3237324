#include <ovVeldris/effects/EffectKind.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/core/settings/SettingCombinations.h>
#include <ovVeldris/core/settings/SettingTableChecks.h>
#include <ovVeldris/effects/EffectFixture.h>

using namespace ovVeldris;
using ovMemory::Buffer;
using ovMemory::String;

namespace {

class EffectKindTest : public EffectFixture {
protected:
    /// With the smallest tables, since everything is loaded here many times: no text holds their size.
    ovMemory::UniquePtr<Effect> makeSmall(const EffectKind& kind) {
        auto effect = kind.create(getSystem());
        for (const Setting& setting : kind.settings())
            if (setting.name.ends_with("-lut-width") || setting.name.ends_with("-lut-height"))
                setting.set(*effect, static_cast<int>(setting.range.minimum));
        return effect;
    }
};

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
        settingTesting::checkSettingTable(*effect, getGraphics());
    }
}

TEST_P(EffectKindTest, everyTableHoldsForALoadedEffect) {
    for (const EffectKind& kind : effectKinds()) {
        SCOPED_TRACE(kind.getName());
        const auto effect = kind.create(getSystem());
        ASSERT_TRUE(effect->load());
        settingTesting::checkSettingTable(*effect, getGraphics());
        effect->unload();
        settingTesting::checkSettingTable(*effect, getGraphics());
    }
}

TEST_P(EffectKindTest, everyCombinationOfSettingsLoads) {
    for (const EffectKind& kind : effectKinds()) {
        for (const auto& combination : finiteCombinations(kind.settings())) {
            const auto effect = makeSmall(kind);
            for (const SettingAssignment& assignment : combination)
                EXPECT_EQ(effect->setSetting(assignment.name, assignment.value).error, "");
            EXPECT_TRUE(effect->load()) << kind.getName();
        }
    }
}

// An effect that read garbage, or another device's object, would differ from one that has no picture.
TEST_P(EffectKindTest, picturesThatCannotBeReadAreBlack) {
    using ovGraphics::Texture;
    System other;
    ASSERT_TRUE(initializeOwn(other));
    ovGraphics::System* const foreign = other.getGraphicsEngine()->getGraphicsSystem();
    const auto makeSource = [](ovGraphics::System* graphics, ovGraphics::FORMAT format) {
        auto texture = Texture::create(graphics);
        texture->setFormat(format);
        texture->setCpuData(0, 0, Buffer<unsigned char>(4, 200));
        EXPECT_TRUE(texture->load());
        return texture;
    };
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    getGraphics().getCameraManager()->setActiveRenderCamera(camera.get());
    const auto black = makeTexture(FloatPicture(1, 1, {0.0f, 0.0f, 0.0f, 1.0f}));
    const auto integers = makeSource(&getGraphics(), ovGraphics::FORMAT::R8G8B8A8_UINT);
    const auto ofAnother = makeSource(foreign, ovGraphics::FORMAT::R8G8B8A8_UNORM);
    const auto unloaded = Texture::create(&getGraphics());
    for (const EffectKind& kind : effectKinds()) {
        if (kind.pictureSetting.empty())
            continue;
        const auto drawWith = [&](Texture* source) {
            const auto effect = kind.create(getSystem());
            effect->setSetting(kind.pictureSetting, source);
            EXPECT_TRUE(effect->load());
            return draw(*effect->getShader(), 8, 8);
        };
        const FloatPicture expected = drawWith(black.get());
        for (Texture* source : {integers.get(), ofAnother.get(), unloaded.get()})
            EXPECT_EQ(drawWith(source).pixels, expected.pixels) << kind.getName();
    }
    EXPECT_NE(getGraphicsLogger().getText().find("holds whole numbers"), String::npos);
}

TEST_P(EffectKindTest, onlySettingsThatWaitForLoadSelectTheText) {
    for (const EffectKind& kind : effectKinds()) {
        const auto plain = makeSmall(kind);
        ASSERT_TRUE(plain->load());
        for (const Setting& setting : kind.settings()) {
            // A cube, or no texture, chooses the text of an image environment; everything else is bound.
            if (setting.waitsForLoad || isResource(setting.kind))
                continue;
            const auto effect = makeSmall(kind);
            for (const SettingValue& value : settingTesting::otherValues(setting, getGraphics()))
                EXPECT_EQ(effect->setSetting(setting.name, value).error, "");
            ASSERT_TRUE(effect->load());
            EXPECT_EQ(programText(*effect), programText(*plain)) << kind.getName() << setting.name;
        }
    }
}

TEST_P(EffectKindTest, namesAreTheTypesInLowerCaseAndAreFound) {
    const std::pair<EFFECT_TYPE, const char*> NAMES[] = {
        {EFFECT_TYPE::ATMOSPHERE, "atmosphere"},
        {EFFECT_TYPE::FILM_GRAIN, "film-grain"},
        {EFFECT_TYPE::FXAA, "fxaa"},
        {EFFECT_TYPE::IMAGE_ENVIRONMENT, "image-environment"},
        {EFFECT_TYPE::SSAO, "ssao"},
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
    EXPECT_EQ(error, "there is no effect 'tonemapping'; the effects are atmosphere, film-grain, fxaa, "
                     "image-environment, ssao, texture-copy, tone-mapping. "
                     "Did you mean 'tone-mapping'?");
    EXPECT_EQ(findEffectKind(EFFECT_TYPE::UNKNOWN), nullptr);
}

TEST_P(EffectKindTest, everyKindTakesAPictureOrNone) {
    for (const EffectKind& kind : effectKinds()) {
        SCOPED_TRACE(kind.getName());
        EXPECT_EQ(kind.pictureSetting.empty(), kind.type == EFFECT_TYPE::SSAO);
        if (kind.pictureSetting.empty())
            continue;
        const Setting* picture = kind.settings().find(kind.pictureSetting);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(picture->kind, SETTING_KIND::TEXTURE);
        EXPECT_FALSE(picture->waitsForLoad);
    }
}

TEST_P(EffectKindTest, whatASceneGivesFitsTheSettings) {
    const auto kindOf = [](SCENE_INPUT input) {
        switch (input) {
        case SCENE_INPUT::CAMERA:
        case SCENE_INPUT::LIGHT_CAMERA:
            return SETTING_KIND::CAMERA;
        case SCENE_INPUT::LINEAR_DEPTH:
            return SETTING_KIND::FLAG;
        case SCENE_INPUT::TO_LIGHT:
            return SETTING_KIND::VECTOR;
        default:
            return SETTING_KIND::TEXTURE;
        }
    };
    for (const EffectKind& kind : effectKinds()) {
        for (const SceneReading& reading : kind.sceneReadings) {
            SCOPED_TRACE(kind.getName() + " " + String(reading.name));
            for (const SceneBinding& binding : reading.bindings) {
                const Setting* setting = kind.settings().find(binding.setting);
                ASSERT_NE(setting, nullptr) << binding.setting;
                EXPECT_EQ(setting->kind, kindOf(binding.input)) << binding.setting;
                // A resource cannot be written in a list of effects.
                EXPECT_FALSE(binding.mayBeWritten && isResource(setting->kind)) << binding.setting;
                EXPECT_TRUE(reading.reads(binding.input));
            }
        }
    }
}

TEST_P(EffectKindTest, scenesAreReadInTheseWays) {
    const auto waysOf = [](EFFECT_TYPE type) {
        String ways;
        for (const SceneReading& reading : findEffectKind(type)->sceneReadings) {
            ways += String(reading.name) + ":";
            for (const SceneBinding& binding : reading.bindings)
                ways += " " + String(binding.setting);
            ways += "\n";
        }
        return ways;
    };
    EXPECT_EQ(waysOf(EFFECT_TYPE::SSAO), "depth: camera depth-buffer linear-depth\n"
                                         "positions: camera g-buffer-position\n"
                                         "positions-and-normals: camera g-buffer-position g-buffer-normal\n");
    EXPECT_EQ(waysOf(EFFECT_TYPE::ATMOSPHERE),
              "depth: source-depth-texture sun-position\n"
              "depth-and-shadows: source-depth-texture sun-position shadow-texture shadow-camera\n");
    for (const EffectKind& kind : effectKinds())
        EXPECT_EQ(kind.readsScene(), kind.type == EFFECT_TYPE::SSAO || kind.type == EFFECT_TYPE::ATMOSPHERE);
}

TEST_P(EffectKindTest, whatChainsSetIsNotTheDefault) {
    for (const EffectKind& kind : effectKinds()) {
        for (const SettingAssignment& assignment : kind.chainSettings) {
            const Setting* setting = kind.settings().find(assignment.name);
            ASSERT_NE(setting, nullptr) << assignment.name;
            SettingValue value = assignment.value;
            EXPECT_EQ(acceptSettingValue(*setting, value).error, "");
            EXPECT_NE(value, setting->defaultValue) << assignment.name;
        }
    }
}

TEST_P(EffectKindTest, kindsBlendAsTheyAreSet) {
    const struct {
        EFFECT_TYPE type;
        const char* setting;
        ovGraphics::BLEND source;
        ovGraphics::BLEND destination;
    } BLENDING[] = {
        {EFFECT_TYPE::FILM_GRAIN, "blend-grain-in-target", ovGraphics::BLEND::DEST_COLOR,
         ovGraphics::BLEND::ONE},
        {EFFECT_TYPE::SSAO, "occlusion-drives-alpha", ovGraphics::BLEND::ZERO, ovGraphics::BLEND::SRC_ALPHA},
    };
    std::size_t count = 0;
    for (const EffectKind& kind : effectKinds())
        count += kind.prepareBlending != nullptr ? 1 : 0;
    EXPECT_EQ(count, std::size(BLENDING));
    for (const auto& row : BLENDING) {
        const EffectKind& kind = *findEffectKind(row.type);
        SCOPED_TRACE(kind.getName());
        const auto effect = kind.create(getSystem());
        ovGraphics::BlendState state;
        EXPECT_FALSE(kind.prepareBlending(*effect, state));
        EXPECT_EQ(state.getDesc(), ovGraphics::BlendState().getDesc());
        EXPECT_EQ(effect->setSetting(row.setting, true).error, "");
        EXPECT_TRUE(kind.prepareBlending(*effect, state));
        EXPECT_EQ(state.getDesc().targets[0].sourceFactor, row.source);
        EXPECT_EQ(state.getDesc().targets[0].destinationFactor, row.destination);
    }
}

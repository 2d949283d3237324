#include <veldris/effects/EffectPlan.h>

#include <gtest/gtest.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::SettingValue;
using veldris::PlannedEffect;

PlannedEffect planOne(const char* text) {
    Buffer<PlannedEffect> effects;
    String error;
    EXPECT_TRUE(veldris::planEffects(text, effects, error)) << error;
    return effects.size() == 1 ? effects.front() : PlannedEffect();
}

TEST(EffectPlanTest, settingsAreValuesForTheKind) {
    const PlannedEffect effect =
        planOne(" tone-mapping : operator=hables, gamma=2 ,use-luminance=0,toe-length=0.25");
    ASSERT_NE(effect.kind, nullptr);
    EXPECT_EQ(effect.kind->type, ovVeldris::EFFECT_TYPE::TONE_MAPPING);
    EXPECT_EQ(effect.text, "tone-mapping:operator=hables,gamma=2,use-luminance=0,toe-length=0.25");
    ASSERT_EQ(effect.settings.size(), 4u);
    EXPECT_EQ(effect.settings[0].name, "operator");
    EXPECT_EQ(effect.settings[0].value, SettingValue(String("hables")));
    EXPECT_EQ(effect.settings[1].value, SettingValue(2.0f));
    EXPECT_EQ(effect.settings[2].value, SettingValue(false));
}

TEST(EffectPlanTest, settingsOfTheViewGoToTheView) {
    const PlannedEffect effect = planOne("image-environment:field-of-view=90,source-projection=flat,"
                                         "direction=1,0,2");
    ASSERT_EQ(effect.settings.size(), 1u);
    EXPECT_EQ(effect.settings[0].name, "source-projection");
    EXPECT_EQ(effect.view.getFieldOfView(), 90.0f);
    EXPECT_EQ(effect.view.getDirection(), ovMaths::Vector(1.0f, 0.0f, 2.0f));
}

TEST(EffectPlanTest, scenesAreReadAsIsWritten) {
    EXPECT_EQ(planOne("ssao").reading->name, "depth");
    EXPECT_EQ(planOne("ssao:reads=positions").reading->name, "positions");
    EXPECT_EQ(planOne("atmosphere:reads=depth-and-shadows").reading->name, "depth-and-shadows");
    EXPECT_EQ(planOne("tone-mapping").reading, nullptr);
}

TEST(EffectPlanTest, whatChainsSetMayBeWrittenOtherwise) {
    const auto settingsOf = [](const char* text) {
        String settings;
        for (const ovVeldris::SettingAssignment& assignment : planOne(text).settings)
            settings.append(assignment.name).append(std::get<bool>(assignment.value) ? "=true," : "=false,");
        return settings;
    };
    EXPECT_EQ(settingsOf("ssao"), "occlusion-drives-alpha=true,");
    EXPECT_EQ(settingsOf("ssao:reads=depth,occlusion-drives-alpha=false"), "occlusion-drives-alpha=false,");
    EXPECT_EQ(settingsOf("atmosphere:display-sun=false"), "only-scatter-on-objects=true,display-sun=false,");
    EXPECT_EQ(settingsOf("texture-copy"), "");
    const auto chain = veldris::settingsInChain(*ovVeldris::findEffectKind(ovVeldris::EFFECT_TYPE::SSAO));
    EXPECT_EQ(chain.find("occlusion-drives-alpha")->defaultValue, SettingValue(true));
}

TEST(EffectPlanTest, effectsThatReadTheSceneStandFirst) {
    const auto take = [](const char* list, std::size_t count) {
        Buffer<PlannedEffect> effects;
        Buffer<PlannedEffect> ofScene;
        String error;
        EXPECT_TRUE(veldris::planEffects(list, effects, error)) << error;
        EXPECT_TRUE(veldris::takeSceneEffects(effects, ofScene, error)) << error;
        EXPECT_EQ(ofScene.size(), count) << list;
        String names;
        for (const Buffer<PlannedEffect>& part : {ofScene, effects})
            for (const PlannedEffect& effect : part)
                names += effect.text + ";";
        EXPECT_EQ(names, String(list) + ";");
    };
    take("ssao;atmosphere;ssao;tone-mapping;fxaa", 3);
    take("ssao", 1);
    take("tone-mapping", 0);

    Buffer<PlannedEffect> effects;
    Buffer<PlannedEffect> ofScene;
    String error;
    ASSERT_TRUE(veldris::planEffects("ssao;tone-mapping;fxaa;atmosphere", effects, error)) << error;
    EXPECT_FALSE(veldris::takeSceneEffects(effects, ofScene, error));
    EXPECT_EQ(error, "'atmosphere' reads the scene and 'tone-mapping', which stands before it, is drawn over "
                     "the finished picture: write 'atmosphere' first.");
}

TEST(EffectPlanTest, aPictureAloneIsNoScene) {
    Buffer<PlannedEffect> effects;
    veldris::ChainPlan plan;
    String error;
    ASSERT_TRUE(veldris::planEffects("tone-mapping;ssao:reads=positions-and-normals", effects, error));
    for (const bool raw : {false, true}) {
        veldris::ChainOptions options;
        options.raw = raw;
        EXPECT_FALSE(veldris::planChain(effects, options, plan, error));
        EXPECT_EQ(error, "'ssao' reads a scene (positions-and-normals) and there is a picture alone; veldris "
                         "render draws scenes.");
    }
}

TEST(EffectPlanTest, whatTheSceneKnowsIsNotWritten) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        const auto settings = veldris::settingsInChain(kind);
        EXPECT_EQ(settings.find("reads") != nullptr, kind.sceneReadings.size() > 1) << kind.getName();
        for (const ovVeldris::SceneReading& reading : kind.sceneReadings)
            for (const ovVeldris::SceneBinding& binding : reading.bindings)
                EXPECT_EQ(settings.find(binding.setting) != nullptr, binding.mayBeWritten) << binding.setting;
        EXPECT_EQ(settings.find("field-of-view") != nullptr,
                  kind.type == ovVeldris::EFFECT_TYPE::IMAGE_ENVIRONMENT)
            << "the view of a scene is the scene's";
    }
}

TEST(EffectPlanTest, whatIsWrongIsToldWithTheEffect) {
    const struct {
        const char* text;
        const char* error;
    } CASES[] = {
        {"sharpen", "there is no effect 'sharpen'; the effects are atmosphere, blur, dof, film-grain, fxaa, "
                    "image-environment, ssao, "
                    "texture-copy, tone-mapping."},
        {"texture-copy:strength=1", "effect 'texture-copy': there is no setting 'strength'; it has none."},
        {"texture-copy:source-texture=x",
         "effect 'texture-copy': there is no setting 'source-texture'; it has none."},
        {"image-environment:source-camera=x",
         "effect 'image-environment': there is no setting 'source-camera'; it has source-projection, "
         "direction, field-of-view."},
        {"texture-copy;tone-mapping:gamma=2",
         "effect 'tone-mapping': the setting 'gamma' belongs to operator=hables, and operator=reinhard was "
         "chosen."},
        {"tone-mapping:operator=aces,max-white=1,1,1",
         "effect 'tone-mapping': the setting 'max-white' belongs to operator=reinhard, and operator=aces was "
         "chosen."},
        {"tone-mapping:operator=hables,look-transform=1,0,0,0,1,0,0,0,1",
         "effect 'tone-mapping': the setting 'look-transform' belongs to operator=aces, and operator=hables "
         "was chosen."},
        {"tone-mapping:max-white=0,1,1", "effect 'tone-mapping': '0,1,1' is no value of the setting "
                                         "'max-white'; it takes three numbers, each "
                                         "above 0, as in 2,2,2."},
        {"tone-mapping:operator=hables,toe-length=0",
         "effect 'tone-mapping': '0' is no value of the setting 'toe-length'; it takes a number above 0 to "
         "1."},
        {"ssao:reads=normals",
         "effect 'ssao': 'normals' is no value of the setting 'reads'; it takes one of "
         "depth, positions, positions-and-normals. Did you mean 'positions-and-normals'?"},
        {"ssao:linear-depth=true",
         "effect 'ssao': there is no setting 'linear-depth'; it has reads, sampling-radius, "
         "max-occlusion-distance, strength, depth-bias, kernel-sample-count, occlusion-drives-alpha."},
        {"image-environment:field-of-view=0",
         "effect 'image-environment': '0' is no value of the setting 'field-of-view'; it takes a number from "
         "1 to 179 degrees."},
        {"image-environment:field-of-view=180",
         "effect 'image-environment': '180' is no value of the setting 'field-of-view'; it takes a number "
         "from 1 to 179 degrees."},
        {"image-environment:direction=0,0,0",
         "effect 'image-environment': 'direction' has no direction; give one such as 0,0,1."},
    };
    for (const auto& test : CASES) {
        Buffer<PlannedEffect> effects(1);
        String error;
        EXPECT_FALSE(veldris::planEffects(test.text, effects, error)) << test.text;
        EXPECT_EQ(error, test.error);
        EXPECT_TRUE(effects.empty());
    }
}

TEST(EffectPlanTest, everyExampleOfEveryKindIsRight) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        for (const ovVeldris::EffectExample& example : kind.examples) {
            Buffer<PlannedEffect> effects;
            veldris::ChainPlan plan;
            String error;
            EXPECT_TRUE(veldris::planEffects(veldris::listOfExample(kind, example), effects, error)) << error;
            EXPECT_TRUE(veldris::planChain(effects, {}, plan, error)) << error;
        }
    }
}

TEST(EffectPlanTest, examplesStandBehindAToneMappingWhereTheyNeedOne) {
    const auto list = [](ovVeldris::EFFECT_TYPE type, ovMemory::StringView settings) {
        return veldris::listOfExample(*ovVeldris::findEffectKind(type), {"", settings});
    };
    EXPECT_EQ(list(ovVeldris::EFFECT_TYPE::TEXTURE_COPY, ""), "texture-copy");
    EXPECT_EQ(list(ovVeldris::EFFECT_TYPE::TONE_MAPPING, "operator=aces"), "tone-mapping:operator=aces");
    EXPECT_EQ(list(ovVeldris::EFFECT_TYPE::FXAA, "preset=39"),
              "tone-mapping:operator=reinhard,max-white=6,6,6;fxaa:preset=39");
}

TEST(EffectPlanTest, fxaaIsGivenEncodedColors) {
    const auto plan = [](const char* list, veldris::PICTURE_CONTENT input, String& error) {
        Buffer<PlannedEffect> effects;
        veldris::ChainPlan result;
        veldris::ChainOptions options;
        options.input = input;
        options.output = veldris::PICTURE_CONTENT::SRGB_ENCODED;
        options.outputName = "the file";
        if (!veldris::planEffects(list, effects, error) ||
            !veldris::planChain(effects, options, result, error))
            return Buffer<veldris::ContentConversion>();
        EXPECT_EQ(result.content, veldris::PICTURE_CONTENT::SRGB_ENCODED);
        return result.conversions;
    };
    using enum veldris::PICTURE_CONTENT;
    using Conversions = Buffer<veldris::ContentConversion>;
    String error;
    EXPECT_EQ(plan("tone-mapping;fxaa:preset=12,min-contrast=0.5", SCENE_LINEAR, error),
              (Conversions{{1, DISPLAY_LINEAR, SRGB_ENCODED}}));
    EXPECT_EQ(plan("fxaa;fxaa", SRGB_ENCODED, error), Conversions());
    EXPECT_EQ(plan("texture-copy;fxaa", DISPLAY_LINEAR, error),
              (Conversions{{1, DISPLAY_LINEAR, SRGB_ENCODED}}));
    EXPECT_EQ(error, "");
    plan("fxaa", SCENE_LINEAR, error);
    EXPECT_EQ(error, "'fxaa' takes srgb-encoded colours and the input gives scene-linear ones: put a "
                     "tone-mapping between them, or use --raw.");
    plan("fxaa;tone-mapping", SRGB_ENCODED, error);
    EXPECT_EQ(error,
              "'tone-mapping' takes scene-linear colours and 'fxaa' gives srgb-encoded ones: take that "
              "step away, say with --input-content what the file holds, or use --raw.");
}

TEST(EffectPlanTest, effectsOfSeveralPassesStandInChains) {
    Buffer<PlannedEffect> effects;
    String error;
    ASSERT_TRUE(
        veldris::planEffects("blur:radius=12,alpha-planes=true;dof:near=1,focus=auto,far=9", effects, error))
        << error;
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[0].kind, nullptr);
    EXPECT_EQ(effects[0].getName(), "blur");
    ASSERT_EQ(effects[0].settings.size(), 2u);
    EXPECT_EQ(effects[0].settings[0].value, ovVeldris::SettingValue(12));
    EXPECT_EQ(effects[0].settings[1].value, ovVeldris::SettingValue(true));
    EXPECT_FALSE(effects[0].focusesOnScene);
    EXPECT_EQ(effects[1].getName(), "dof");
    EXPECT_TRUE(effects[1].focusesOnScene);
    EXPECT_EQ(effects[1].settings.size(), 2u) << "the focus comes with the scene";
    EXPECT_EQ(effects[1].text, "dof:near=1,focus=auto,far=9");

    const std::pair<const char*, const char*> REFUSED[] = {
        {"blur:radius=511",
         "effect 'blur': '511' is no value of the setting 'radius'; it takes a whole number "
         "from 0 to 510 pixels."},
        {"dof:focus=far",
         "effect 'dof': 'far' is no value of the setting 'focus'; it takes a number of at least 0 "
         "units of the view."},
        {"dof:linear-depth=true", "effect 'dof': there is no setting 'linear-depth'; it has near, focus, "
                                  "thickness, far, strength. Did you mean 'near'?"},
        {"blur:focus=auto", "effect 'blur': there is no setting 'focus'; it has radius, alpha-planes, "
                            "preserve-alpha."},
    };
    for (const auto& [text, message] : REFUSED) {
        EXPECT_FALSE(veldris::planEffects(text, effects, error));
        EXPECT_EQ(error, message);
    }
}

TEST(EffectPlanTest, effectsOfSeveralPassesNeedDepthAndMakeOpaque) {
    const struct {
        const char* list;
        bool hasDepth;
        bool keepsAlpha;
        const char* error;
    } CASES[] = {
        {"blur", false, false, ""},
        {"dof", true, false, ""},
        {"dof", false, false,
         "'dof' reads a scene (depth) and there is a picture alone; veldris render draws scenes."},
        {"blur:preserve-alpha=true", true, true, ""},
        {"blur", true, true,
         "'blur' makes pictures opaque, and --background lies behind what is not; add preserve-alpha=true to "
         "it."},
        {"texture-copy;dof", true, true,
         "'dof' makes pictures opaque, and --background lies behind what is not; leave one of them out."},
    };
    for (const auto& row : CASES) {
        Buffer<PlannedEffect> effects;
        veldris::ChainPlan plan;
        veldris::ChainOptions options;
        options.hasDepth = row.hasDepth;
        options.keepsAlpha = row.keepsAlpha;
        String error;
        ASSERT_TRUE(veldris::planEffects(row.list, effects, error)) << error;
        EXPECT_EQ(veldris::planChain(effects, options, plan, error), *row.error == '\0');
        EXPECT_EQ(error, row.error);
    }
}

TEST(EffectPlanTest, everyDefaultMayBeWritten) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        for (const ovVeldris::Setting& setting : veldris::settingsInChain(kind)) {
            String text =
                kind.getName() + ":" + String(setting.name) + "=" + toText(setting, setting.defaultValue);
            if (!setting.onlyWith.setting.empty())
                text.append(",").append(setting.onlyWith.setting).append("=").append(setting.onlyWith.value);
            Buffer<PlannedEffect> effects;
            String error;
            EXPECT_TRUE(veldris::planEffects(text, effects, error)) << error;
        }
    }
}

TEST(EffectPlanTest, chainsHaveTheirConversions) {
    Buffer<PlannedEffect> effects;
    String error;
    ASSERT_TRUE(veldris::planEffects("texture-copy;tone-mapping", effects, error)) << error;
    veldris::ChainOptions options;
    options.output = veldris::PICTURE_CONTENT::SRGB_ENCODED;
    veldris::ChainPlan plan;
    ASSERT_TRUE(veldris::planChain(effects, options, plan, error)) << error;
    EXPECT_EQ(plan.effects.size(), 2u);
    EXPECT_EQ(plan.content, veldris::PICTURE_CONTENT::DISPLAY_LINEAR);
    EXPECT_EQ(plan.output, veldris::PICTURE_CONTENT::SRGB_ENCODED);
    EXPECT_TRUE(plan.conversions.empty()) << "the one at the end is the writer's";

    ASSERT_TRUE(veldris::planEffects("texture-copy", effects, error)) << error;
    options.outputName = "the file";
    EXPECT_FALSE(veldris::planChain(effects, options, plan, error));
    EXPECT_EQ(error, "the file takes srgb-encoded colours and the input gives scene-linear ones: put a "
                     "tone-mapping between them, write an EXR or HDR file, or use --raw.");
    options.raw = true;
    ASSERT_TRUE(veldris::planChain(effects, options, plan, error)) << error;
    EXPECT_TRUE(plan.conversions.empty());
}

} // namespace

#include <ovVeldris/effects/EffectKind.h>

#include <ovVeldris/core/NearestName.h>
#include <ovVeldris/effects/FilmGrainEffect.h>
#include <ovVeldris/effects/FxaaEffect.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/SsaoEffect.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

namespace ovVeldris {

namespace {

using Content = std::optional<PICTURE_CONTENT>;

template <typename T>
EffectKind row(EFFECT_TYPE type, ovMemory::StringView summary, Content takes = {}, Content gives = {},
               const ovMemory::Buffer<EffectExample>& examples = {}) {
    const auto create = [](System* system) -> ovMemory::UniquePtr<Effect> { return T::create(system); };
    return {.type = type,
            .summary = summary,
            .takes = takes,
            .gives = gives,
            .create = create,
            .settings = &T::settings,
            .examples = examples};
}

EffectKind blending(EffectKind kind, bool (*prepareBlending)(const Effect&, ovGraphics::BlendState&)) {
    kind.prepareBlending = prepareBlending;
    return kind;
}

bool prepareGrainBlending(const Effect& effect, ovGraphics::BlendState& state) {
    if (!static_cast<const FilmGrainEffect&>(effect).getBlendGrainInTarget())
        return false;
    FilmGrainEffectUtils::prepareBlendStateForGrainBlending(&state);
    return true;
}

bool prepareOcclusionBlending(const Effect& effect, ovGraphics::BlendState& state) {
    if (!static_cast<const SsaoEffect&>(effect).getOcclusionDrivesAlpha())
        return false;
    SsaoEffectUtils::prepareBlendStateForAoBlending(&state);
    return true;
}

EffectKind atmosphereKind() {
    EffectKind kind =
        row<AtmosphereEffect>(EFFECT_TYPE::ATMOSPHERE, "lays the air between the eye and a scene",
                              PICTURE_CONTENT::SCENE_LINEAR, PICTURE_CONTENT::SCENE_LINEAR);
    const SceneBinding depth = {"source-depth-texture", SCENE_INPUT::DEPTH};
    const SceneBinding sun = {"sun-position", SCENE_INPUT::TO_LIGHT, true};
    kind.pictureSetting = "source-color-texture";
    kind.sceneReadings = {{"depth", {depth, sun}},
                          {"depth-and-shadows",
                           {depth,
                            sun,
                            {"shadow-texture", SCENE_INPUT::SHADOW_MAP},
                            {"shadow-camera", SCENE_INPUT::LIGHT_CAMERA}}}};
    // An environment behind a scene has its own air.
    kind.chainSettings = {{"only-scatter-on-objects", true}};
    return kind;
}

EffectKind ssaoKind() {
    EffectKind kind = blending(row<SsaoEffect>(EFFECT_TYPE::SSAO, "darkens corners of a scene",
                                               PICTURE_CONTENT::SCENE_LINEAR, PICTURE_CONTENT::SCENE_LINEAR),
                               prepareOcclusionBlending);
    const SceneBinding camera = {"camera", SCENE_INPUT::CAMERA};
    const SceneBinding positions = {"g-buffer-position", SCENE_INPUT::POSITIONS};
    kind.pictureSetting = {};
    kind.sceneReadings = {
        {"depth",
         {camera, {"depth-buffer", SCENE_INPUT::DEPTH}, {"linear-depth", SCENE_INPUT::LINEAR_DEPTH}}},
        {"positions", {camera, positions}},
        {"positions-and-normals", {camera, positions, {"g-buffer-normal", SCENE_INPUT::NORMALS}}}};
    kind.chainSettings = {{"occlusion-drives-alpha", true}};
    return kind;
}

} // namespace

const ovMemory::Buffer<EffectKind>& effectKinds() {
    static const ovMemory::Buffer<EffectKind> KINDS = {
        atmosphereKind(),
        blending(row<FilmGrainEffect>(EFFECT_TYPE::FILM_GRAIN, "adds the grain of film"),
                 prepareGrainBlending),
        row<FxaaEffect>(EFFECT_TYPE::FXAA, "smooths the stairs of edges", PICTURE_CONTENT::SRGB_ENCODED,
                        PICTURE_CONTENT::SRGB_ENCODED, {{"fxaa", "preset=39"}}),
        row<ImageEnvironmentEffect>(EFFECT_TYPE::IMAGE_ENVIRONMENT,
                                    "draws the view of a camera that the picture surrounds"),
        ssaoKind(),
        row<TextureCopyEffect>(EFFECT_TYPE::TEXTURE_COPY, "draws the picture unchanged", {}, {},
                               {{"texture-copy", ""}}),
        row<ToneMappingEffect>(
            EFFECT_TYPE::TONE_MAPPING, "maps scene light to the range of a display",
            PICTURE_CONTENT::SCENE_LINEAR, PICTURE_CONTENT::DISPLAY_LINEAR,
            {{"reinhard", "operator=reinhard,max-white=8,8,8"},
             {"reinhard-channels", "operator=reinhard,max-white=8,8,8,use-luminance=false"},
             {"hables", "operator=hables,toe-length=0.3,toe-strength=0.4,shoulder-length=0.8,"
                        "shoulder-strength=3,shoulder-angle=0"},
             {"hables-channels", "operator=hables,toe-length=0.3,toe-strength=0.4,shoulder-length=0.8,"
                                 "shoulder-strength=3,shoulder-angle=0,use-luminance=false"},
             {"aces", "operator=aces"},
             {"aces-bright", "operator=aces,look-transform=2,0,0,0,2,0,0,0,2"}}),
    };
    return KINDS;
}

ovMemory::String EffectKind::getName() const {
    return toSettingText(ovMemory::enumToText(type));
}

const EffectKind* findEffectKind(EFFECT_TYPE type) {
    for (const EffectKind& kind : effectKinds())
        if (kind.type == type)
            return &kind;
    return nullptr;
}

const EffectKind* findEffectKind(ovMemory::StringView name, ovMemory::String& error) {
    ovMemory::Buffer<ovMemory::String> names;
    ovMemory::String list;
    for (const EffectKind& kind : effectKinds()) {
        if (kind.getName() == name)
            return &kind;
        names.push_back(kind.getName());
        list.append(list.empty() ? "" : ", ").append(names.back());
    }
    error = "there is no effect '" + ovMemory::String(name) + "'; the effects are " + list + "." +
            nearestNameHint(name, {names.begin(), names.end()});
    return nullptr;
}

} // namespace ovVeldris

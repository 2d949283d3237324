#include <veldris/effects/EffectCatalog.h>

#include <fmt/format.h>
#include <numbers>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::Effect;
using ovVeldris::EFFECT_TYPE;

constexpr StringView OPERATOR = "operator";
constexpr StringView USE_LUMINANCE = "use-luminance";
constexpr StringView MAX_WHITE = "max-white";
constexpr StringView LOOK_TRANSFORM = "look-transform";

/// The numbers of the filmic curve, with the operator "hables".
struct CurveSetting {
    StringView name;
    float ovVeldris::ToneMappingHablesCurveDescriptor::*field;
    StringView defaultText;
    StringView help;
};

constexpr CurveSetting CURVE_SETTINGS[] = {
    {"toe-length", &ovVeldris::ToneMappingHablesCurveDescriptor::toeLength, "0.05",
     "length of the toe, 0 to 1"},
    {"toe-strength", &ovVeldris::ToneMappingHablesCurveDescriptor::toeStrength, "0.05",
     "how much the toe darkens, 0 to 1"},
    {"shoulder-length", &ovVeldris::ToneMappingHablesCurveDescriptor::shoulderLength, "0.05",
     "length of the shoulder, 0 to 1"},
    {"shoulder-strength", &ovVeldris::ToneMappingHablesCurveDescriptor::shoulderStrength, "0.1",
     "extra white range in stops"},
    {"shoulder-angle", &ovVeldris::ToneMappingHablesCurveDescriptor::shoulderAngle, "1",
     "overshoot of the shoulder"},
    {"gamma", &ovVeldris::ToneMappingHablesCurveDescriptor::gamma, "1", "power applied to the curve"},
};

/// @return a complaint when a setting was given that the chosen operator does not read
String checkOperatorSettings(const SettingValues& values) {
    const String& chosen = values.getText(OPERATOR);
    const auto complaint = [&](StringView setting, StringView owner) {
        return fmt::format("the setting '{}' belongs to operator={}, and operator={} was chosen.", setting,
                           owner, chosen);
    };
    if (values.wasGiven(MAX_WHITE) && chosen != "reinhard")
        return complaint(MAX_WHITE, "reinhard");
    if (values.wasGiven(LOOK_TRANSFORM) && chosen != "aces")
        return complaint(LOOK_TRANSFORM, "aces");
    for (const CurveSetting& setting : CURVE_SETTINGS) {
        if (values.wasGiven(setting.name) && chosen != "hables")
            return complaint(setting.name, "hables");
    }
    return {};
}

String applyToneMapping(Effect& effect, const SettingValues& values) {
    auto& toneMapping = static_cast<ovVeldris::ToneMappingEffect&>(effect);
    String complaint = checkOperatorSettings(values);
    if (!complaint.empty())
        return complaint;
    toneMapping.setUseLuminance(values.getBoolean(USE_LUMINANCE));
    if (values.getText(OPERATOR) == "reinhard")
        toneMapping.setAsReinhard(values.getVector(MAX_WHITE));
    if (values.getText(OPERATOR) == "aces")
        toneMapping.setAsAces(values.getMatrix(LOOK_TRANSFORM));
    if (values.getText(OPERATOR) == "hables") {
        ovVeldris::ToneMappingHablesCurveDescriptor curve;
        for (const CurveSetting& setting : CURVE_SETTINGS)
            curve.*setting.field = values.getNumber(setting.name);
        toneMapping.setAsHables(curve);
    }
    return {};
}

EffectDescription describeToneMapping() {
    EffectDescription effect;
    effect.name = "tone-mapping";
    effect.type = EFFECT_TYPE::TONE_MAPPING;
    effect.summary = "maps scene light to the range of a display";
    effect.takes = PICTURE_CONTENT::SCENE_LINEAR;
    effect.gives = PICTURE_CONTENT::DISPLAY_LINEAR;
    effect.settings = {
        {OPERATOR, SETTING_KIND::ENUMERATION, "reinhard", "the curve", {"reinhard", "hables", "aces"}},
        {USE_LUMINANCE, SETTING_KIND::BOOLEAN, "true", "map the luminance and keep the hue", {}},
        {MAX_WHITE, SETTING_KIND::VECTOR, "2,2,2", "reinhard: the smallest light that becomes white", {}},
        {LOOK_TRANSFORM,
         SETTING_KIND::MATRIX,
         "1,0,0,0,1,0,0,0,1",
         "aces: applied in ACEScg before the curve",
         {}},
    };
    for (const CurveSetting& setting : CURVE_SETTINGS)
        effect.settings.push_back(
            {setting.name, SETTING_KIND::NUMBER, setting.defaultText, setting.help, {}});
    effect.programVariants = {"operator=reinhard,use-luminance=true", "operator=reinhard,use-luminance=false",
                              "operator=hables,use-luminance=true",   "operator=hables,use-luminance=false",
                              "operator=aces,use-luminance=true",     "operator=aces,use-luminance=false"};
    effect.apply = applyToneMapping;
    effect.setSource = [](Effect& toneMapping, ovGraphics::Texture* source, const SettingValues&) {
        static_cast<ovVeldris::ToneMappingEffect&>(toneMapping).setSourceTexture(source);
    };
    return effect;
}

constexpr StringView SOURCE_PROJECTION = "source-projection";
constexpr StringView DIRECTION = "direction";
constexpr StringView FIELD_OF_VIEW = "field-of-view";

String applyImageEnvironment(Effect& effect, const SettingValues& values) {
    using ovVeldris::IMAGE_ENVIRONMENT_PROJECTION;
    const float angle = values.getNumber(FIELD_OF_VIEW);
    if (angle < 1.0f || angle > 179.0f)
        return fmt::format("'{}' is an angle from 1 to 179 degrees, and {} was given.", FIELD_OF_VIEW, angle);
    if (values.getVector(DIRECTION).getNormalizedVec3().getLengthVec3() == 0.0f)
        return fmt::format("'{}' has no direction; give one such as 0,0,1.", DIRECTION);
    const String& projection = values.getText(SOURCE_PROJECTION);
    auto& environment = static_cast<ovVeldris::ImageEnvironmentEffect&>(effect);
    if (projection == "flat")
        environment.setSourceProjection(IMAGE_ENVIRONMENT_PROJECTION::FLAT);
    else if (projection == "cube")
        environment.setSourceProjection(IMAGE_ENVIRONMENT_PROJECTION::CUBE);
    else if (projection == "equirectangular")
        environment.setSourceProjection(IMAGE_ENVIRONMENT_PROJECTION::EQUIRECTANGULAR);
    return {};
}

/// The picture as surroundings, seen by a camera of the picture's shape that the graphics system keeps.
void setSurroundings(Effect& effect, ovGraphics::Texture* source, const SettingValues& values) {
    ovGraphics::Camera* camera =
        source->getSystem()->getCameraManager()->createOrRetrieve("veldris command line");
    camera->lookAt(values.getVector(DIRECTION), {});
    camera->setPerspective(values.getNumber(FIELD_OF_VIEW) * std::numbers::pi_v<float> / 180.0f,
                           static_cast<float>(source->getWidth()) / static_cast<float>(source->getHeight()),
                           camera->getNear(), camera->getFar());
    auto& environment = static_cast<ovVeldris::ImageEnvironmentEffect&>(effect);
    environment.setSourceTexture(source);
    environment.setSourceCamera(camera);
}

EffectDescription describeImageEnvironment() {
    EffectDescription effect;
    effect.name = "image-environment";
    effect.type = EFFECT_TYPE::IMAGE_ENVIRONMENT;
    effect.summary = "draws the view of a camera that the picture surrounds";
    effect.settings = {
        {SOURCE_PROJECTION,
         SETTING_KIND::ENUMERATION,
         "auto",
         "how the picture is read; a picture is no cube, which draws black",
         {"auto", "flat", "cube", "equirectangular"}},
        {DIRECTION, SETTING_KIND::VECTOR, "0,0,1", "looked along; the middle of a panorama is 1,0,0", {}},
        {FIELD_OF_VIEW, SETTING_KIND::NUMBER, "60", "vertical angle of the view in degrees", {}},
    };
    effect.programVariants = {"source-projection=flat", "source-projection=cube",
                              "source-projection=equirectangular"};
    effect.apply = applyImageEnvironment;
    effect.setSource = setSurroundings;
    return effect;
}

EffectDescription describeTextureCopy() {
    EffectDescription effect;
    effect.name = "texture-copy";
    effect.type = EFFECT_TYPE::TEXTURE_COPY;
    effect.summary = "draws the picture unchanged";
    effect.programVariants = {""};
    effect.apply = [](Effect&, const SettingValues&) { return String(); };
    effect.setSource = [](Effect& copy, ovGraphics::Texture* source, const SettingValues&) {
        static_cast<ovVeldris::TextureCopyEffect&>(copy).setSourceTexture(source);
    };
    return effect;
}

} // namespace

const ovMemory::Buffer<EffectDescription>& effectCatalog() {
    static const ovMemory::Buffer<EffectDescription> CATALOG = {describeImageEnvironment(),
                                                                describeTextureCopy(), describeToneMapping()};
    return CATALOG;
}

const EffectDescription* findEffect(StringView name, String& error) {
    String names;
    for (const EffectDescription& effect : effectCatalog()) {
        if (effect.name == name)
            return &effect;
        names.append(names.empty() ? "" : ", ").append(effect.name);
    }
    error = fmt::format("there is no effect '{}'; the effects are {}.", name, names);
    return nullptr;
}

String effectHelp() {
    String text = "Effects of --effects \"NAME[:SETTING=VALUE,...][;NAME...]\":\n";
    for (const EffectDescription& effect : effectCatalog()) {
        text += fmt::format("\n  {}  {}\n", effect.name, effect.summary);
        text +=
            fmt::format("      takes {}, gives {}\n", effect.takes ? toText(*effect.takes) : "any colours",
                        effect.gives ? toText(*effect.gives) : "the same");
        for (const SettingDescription& setting : effect.settings) {
            text += fmt::format("      {:<18} {} (default {})\n", setting.name, setting.help,
                                setting.defaultText);
            if (!setting.choices.empty())
                text += fmt::format("      {:<18} one of {}\n", "", fmt::join(setting.choices, ", "));
        }
    }
    return text;
}

} // namespace veldris

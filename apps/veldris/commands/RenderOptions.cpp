#include <veldris/commands/RenderOptions.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <ovVeldris/core/NearestName.h>
#include <veldris/commands/Commands.h>
#include <veldris/commands/PictureOutput.h>

namespace veldris {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr const char* TRANSPARENT = "transparent";

/// @param example of the numbers, and of what else the option takes
bool readVector(StringView option, const String& text, StringView example, Vector& vector, String& error) {
    const auto numbers = parseNumbers(text);
    if (numbers && numbers->size() == 3) {
        vector = {(*numbers)[0], (*numbers)[1], (*numbers)[2]};
        return true;
    }
    error = fmt::format("{} '{}' is not three numbers such as {}.", option, text, example);
    return false;
}

bool readScene(const RenderOptions& options, SceneSettings& scene, String& error) {
    if (!readPictureSize(options.size, scene.width, scene.height, error))
        return false;
    scene.shadows = options.shadows;
    const bool hasOwnSky = options.environment == BUILT_IN_SKY || isSkyChoice(options.environment);
    scene.ground = options.ground > 0 || (options.ground == 0 && hasOwnSky && options.background.empty());
    // A photographed environment has its own sun, unless a light is asked for; the program's skies are made
    // for one.
    scene.lightBesideEnvironment =
        options.shadows || options.ground > 0 || !options.light.empty() || hasOwnSky;
    scene.samples = options.samples;
    if (!checkSamples(options.samples, error))
        return false;
    if (!options.lightColor.empty() &&
        !readVector("--light-color", options.lightColor, "3,2.8,2.5", scene.lightColor.emplace(), error))
        return false;
    if (options.light.empty())
        return true;
    Vector direction;
    if (!readVector("--light", options.light, "0.5,-1,0.5", direction, error))
        return false;
    if (direction.getNormalizedVec3() == Vector()) {
        error = "--light has no direction; give another vector than zero.";
        return false;
    }
    scene.lightDirection = fromFileSpace(direction);
    return true;
}

/// A background is no part of the scene: no effect may change it.
bool readBackground(const RenderOptions& options, RenderPlan& plan, String& error) {
    plan.scene.transparent = !options.background.empty();
    if (options.background.empty() || options.background == TRANSPARENT ||
        readVector("--background", options.background, "0.2,0.4,0.6, or transparent",
                   plan.background.emplace(), error))
        return true;
    error += ovVeldris::nearestNameHint(options.background, {TRANSPARENT});
    return false;
}

/// The effects, and the conversions between them and the file.
bool readEffects(const RenderOptions& options, RenderPlan& plan, String& error) {
    Buffer<PlannedEffect> effects;
    ChainOptions chain;
    if (!planPictureEffects(options.effects, options.output, effects, chain, error) ||
        !takeSceneEffects(effects, plan.scene.effects, error))
        return false;
    chain.hasDepth = true;
    chain.keepsAlpha = plan.scene.transparent;
    plan.scene.keepsDepth = std::ranges::any_of(effects, [](const PlannedEffect& effect) {
        return effect.complexKind && effect.complexKind->readsDepth();
    });
    return planChain(std::move(effects), chain, plan.chain, error);
}

/// The atmosphere, where it is the environment. Its air is laid over everything else that reads the scene.
bool readSky(const RenderOptions& options, RenderPlan& plan, String& error) {
    if (!isSkyChoice(options.environment))
        return true;
    if (!readSkyChoice(options.environment, plan.sky.emplace(), error))
        return false;
    plan.sky->sun.azimuth += static_cast<double>(options.environmentRotation);
    PlannedEffect air = planAirOverScene(*plan.sky);
    if (std::ranges::find(plan.scene.effects, air.kind, &PlannedEffect::kind) != plan.scene.effects.end()) {
        error =
            "the environment atmosphere lays its own air over the scene; take the effect 'atmosphere' away.";
        return false;
    }
    plan.scene.effects.push_back(std::move(air));
    return true;
}

} // namespace

bool makePlan(const RenderOptions& options, RenderPlan& plan, String& error) {
    if (!readScene(options, plan.scene, error) || !readBackground(options, plan, error) ||
        !readEffects(options, plan, error) || !readSky(options, plan, error))
        return false;
    if (options.camera.empty())
        return true;
    const auto camera = parseCamera(options.camera, error);
    plan.camera = camera.value_or(CameraChoice());
    if (!camera)
        error += ovVeldris::nearestNameHint(options.camera, {"file"});
    return camera.has_value();
}

bool checkSceneOptions(RenderOptions options, String& error) {
    RenderPlan plan;
    String ofSceneLight;
    options.output = "picture.png";
    if (makePlan(options, plan, error))
        return true;
    options.output = "picture.exr";
    plan = {};
    if (!makePlan(options, plan, ofSceneLight))
        return false;
    error.clear();
    return true;
}

void addSceneOptions(CLI::App& command, RenderOptions& options) {
    command.add_option("--size", options.size, "WIDTHxHEIGHT in pixels")->capture_default_str();
    command.add_option("--samples", options.samples, "samples of a pixel: 1, 4, 9, 16, ...")
        ->check(CLI::Range(1, 1024))
        ->capture_default_str();
    command.add_option(
        "--camera", options.camera,
        "AZIMUTH,ELEVATION[,ZOOM] around the model in degrees (default: 30,15), "
        "X,Y,Z,TARGET-X,TARGET-Y,TARGET-Z in the metres and axes of the model's file (+y up, its front "
        "towards +z), or file for the model's own");
    command
        .add_option("--environment", options.environment,
                    "panorama, cross or strip (EXR, HDR, PNG, JPEG), a name with {face} for six faces, a "
                    "cube (.dds, .ktx2) "
                    "such as bake writes, sky for the built-in one, "
                    "atmosphere:sun=ELEVATION,AZIMUTH[,SETTING=VALUE...] for "
                    "a clear day with settings of --air of veldris sky, or none")
        ->capture_default_str();
    addEnvironmentOptions(command, options.reading);
    command
        .add_option("--environment-rotation", options.environmentRotation,
                    "degrees by which the environment is turned to the right")
        ->capture_default_str();
    command.add_option(
        "--light", options.light,
        "X,Y,Z where the light shines to, in the axes of the model's file (default: the model's "
        "light, or from above and beside the camera)");
    command.add_option("--light-color", options.lightColor,
                       "R,G,B, linear (default: the model's hue, or white)");
    command.add_flag("--shadows", options.shadows, "let the light cast shadows");
    command.add_flag(
        "--ground,!--no-ground", options.ground,
        "let the model stand on a ground of which its shadow alone is seen (default: in front of the "
        "built-in sky)");
    command.add_option("--background", options.background,
                       "what is behind the model instead of the environment: R,G,B, linear, which no effect "
                       "changes, or transparent");
    command.add_option("--effects", options.effects,
                       "effects over the picture, as of veldris apply, behind those that read the scene "
                       "(default: none for EXR and HDR, which hold scene "
                       "light, otherwise " +
                           String(DEFAULT_TONE_MAPPING) + ")");
}

} // namespace veldris

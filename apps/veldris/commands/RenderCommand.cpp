// veldris render: a model with physically based materials, as a picture.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovImages/Panorama.h>
#include <ovVeldris/core/NearestName.h>
#include <veldris/ImageFiles.h>
#include <veldris/bake/CubeBaking.h>
#include <veldris/commands/PictureOutput.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/console/OutputFile.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/materials/MaterialFile.h>
#include <veldris/scene/BuiltInSky.h>
#include <veldris/scene/EnvironmentLight.h>
#include <veldris/scene/MissingTextures.h>
#include <veldris/scene/ModelLight.h>
#include <veldris/scene/ModelReading.h>
#include <veldris/scene/SceneCamera.h>
#include <veldris/scene/ScenePicture.h>
#include <veldris/sky/SkyEnvironment.h>

namespace veldris {

namespace {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

constexpr const char* BUILT_IN_SKY = "sky";
constexpr const char* NO_ENVIRONMENT = "none";
constexpr unsigned int SKY_WIDTH = 512;
constexpr const char* TRANSPARENT = "transparent";

struct RenderOptions {
    String model;
    String materials;
    String output;
    String camera;
    String light;
    String lightColor;
    String background;
    String environment = BUILT_IN_SKY;
    float environmentRotation = 0.0f; ///< degrees
    EnvironmentReading reading = {};
    String size = "1280x720";
    String effects; ///< empty: DEFAULT_TONE_MAPPING, or none for scene light
    unsigned int samples = 4;
    bool shadows = false;
    int ground = 0; ///< above 0: yes; below: no; 0: where the built-in sky is to be seen
    DrawingOptions drawing;
};

/// What the options say, checked before anything is read.
struct RenderPlan {
    SceneSettings scene;
    CameraChoice camera;
    ChainPlan chain;
    std::optional<Vector> background; ///< to be laid behind the picture
    std::optional<SkyChoice> sky;     ///< the environment, where it is the atmosphere
};

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

bool makePlan(const RenderOptions& options, RenderPlan& plan, String& error) {
    if (!readScene(options, plan.scene, error) || !readBackground(options, plan, error) ||
        !readEffects(options, plan, error) || !readSky(options, plan, error))
        return false;
    error = checkOutput(options.output).error;
    if (!error.empty())
        return false;
    if (options.camera.empty())
        return true;
    const auto camera = parseCamera(options.camera, error);
    plan.camera = camera.value_or(CameraChoice());
    if (!camera)
        error += ovVeldris::nearestNameHint(options.camera, {"file"});
    return camera.has_value();
}

/// The user's environment as the library reads panoramas; the empty picture with one line in error.
ovImages::Image readPanorama(Console& console, const RenderOptions& options, String& error) {
    console.step("decoding");
    EnvironmentInput input;
    EnvironmentReading reading = options.reading;
    reading.decoding.progress = console.getShare();
    if (!readEnvironment(options.environment, reading, input, error))
        return {};
    console.warnEach(input.warnings);
    console.step("conversion");
    ovImages::Image panorama;
    // A map's middle row has four faces, so this keeps the size of the cube's texels.
    if (input.isCube && !bakePanorama(input, 2 * input.image.getWidth(), panorama, error, console.getShare()))
        return {};
    if (!input.isCube) {
        panorama = std::move(input.image);
        // In photographs what lies to the right has the larger column; the library's longitudes grow towards
        // +z, which for an eye that looks along +x lies to the left.
        ovImages::mirrorPanorama(panorama);
    }
    // To the right, which is towards smaller longitudes.
    ovImages::turnPanorama(panorama,
                           -ovImages::getColumnsOfTurn(panorama.getWidth(), options.environmentRotation));
    return panorama;
}

/// The built-in sky or an image; null without an error for "none".
ovMemory::UniquePtr<EnvironmentLight> makeEnvironment(Console& console, Session& session,
                                                      const RenderOptions& options,
                                                      const Vector& lightDirection, String& error) {
    if (options.environment == NO_ENVIRONMENT)
        return nullptr;
    const ovImages::Image panorama = options.environment == BUILT_IN_SKY
                                         ? drawSkyPanorama(SKY_WIDTH, -lightDirection.getNormalizedVec3())
                                         : readPanorama(console, options, error);
    if (panorama.isEmpty())
        return nullptr;
    console.step("filtering");
    String warning;
    auto light = EnvironmentLight::create(session, panorama.view(), warning, error, console.getShare());
    console.warn(warning);
    return light;
}

/// What lights a scene from all around and stands behind it.
struct Surroundings {
    ovMemory::UniquePtr<EnvironmentLight> image; ///< null for none, and for the atmosphere
    ovMemory::UniquePtr<SkyEnvironment> sky;

    const EnvironmentLight* getLight() const { return sky ? &sky->getLight() : image.get(); }
    ovGraphics::Texture* getBehind() const { return sky ? sky->getBehind() : nullptr; }
};

/// Draws the atmosphere as the camera's height shows it; its sun is the light that nobody chose otherwise.
bool makeSky(Console& console, Session& session, const RenderPlan& plan, const ovVeldris::Model& model,
             SceneSettings& scene, Surroundings& surroundings, String& error) {
    const auto camera = ovGraphics::Camera::create(&session.getGraphics());
    const float aspect = static_cast<float>(scene.width) / static_cast<float>(scene.height);
    if (!placeCamera(plan.camera, model.getBoundingBox(), &model, aspect, *camera, error))
        return false;
    console.step("filtering");
    String warning;
    surroundings.sky = SkyEnvironment::create(session, *plan.sky, camera->getPosition().y, warning, error,
                                              console.getShare());
    console.warn(warning);
    if (!surroundings.sky)
        return false;
    scene.lightDirection = scene.lightDirection.value_or(surroundings.sky->getSunDirection());
    scene.lightColor = scene.lightColor.value_or(surroundings.sky->getSunColor());
    return true;
}

/// @param scene gets the sun of an atmosphere
bool makeSurroundings(Console& console, Session& session, const RenderOptions& options,
                      const RenderPlan& plan, const ovVeldris::Model& model, SceneSettings& scene,
                      Surroundings& surroundings, String& error) {
    if (plan.sky)
        return makeSky(console, session, plan, model, scene, surroundings, error);
    const Vector lightDirection =
        scene.lightDirection.value_or(model.getMaterials().front().material->getLightDirection());
    surroundings.image = makeEnvironment(console, session, options, lightDirection, error);
    return error.empty();
}

/// Takes over what the user's file says of the model's materials.
bool readMaterials(Console& console, Session& session, const RenderOptions& options,
                   const ovVeldris::Model& model, String& error) {
    if (options.materials.empty())
        return true;
    ovMemory::Buffer<DeclarationProblem> problems;
    const auto read = readMaterialFile(options.materials, session.getSystem(), problems);
    if (!problems.empty() && problems.front().line == 0) { // it cannot even be read
        error = problems.front().message;
        return false;
    }
    for (const DeclarationProblem& problem : problems)
        console.warn(fmt::format("{}:{}: {}", options.materials, problem.line, problem.message));
    if (read.empty()) {
        error = fmt::format("the file '{}' has no material that can be used; veldris check {} tells more.",
                            options.materials, options.materials);
        return false;
    }
    const auto own = materialsOf(model);
    Buffer<StringView> names;
    for (const ovVeldris::PbsMaterial* material : own)
        names.push_back(material->getName());
    for (const ovVeldris::PbsMaterial* material : read) {
        if (std::find(own.begin(), own.end(), material) == own.end())
            console.warn(fmt::format("the material '{}' of '{}' is none of the model's.{}",
                                     material->getName(), options.materials,
                                     ovVeldris::nearestNameHint(material->getName(), names)));
    }
    const String folder = std::filesystem::path(options.materials).parent_path().native();
    console.warnEach(loadMissingTextures(own, folder, &console.getProgress()));
    return true;
}

/// Lights the model's materials, and adds its parts with their shadows to a scene.
bool addModel(ScenePicture& picture, ovVeldris::Model& model) {
    for (ovVeldris::PbsMaterial* material : materialsOf(model))
        picture.light(*material);
    if (!model.loadMaterials())
        return false;
    model.addTo(picture.getSolid(), picture.getBlended());
    for (const ovVeldris::ModelMaterial& own : model.getMaterials()) {
        if (!picture.prepareSurface(*own.material, own.alphaMode))
            return false;
    }
    picture.fitShadow(model.getBoundingBox());
    return true;
}

/// A model's picture before the effects over it, and what they may read beside it.
struct DrawnModel {
    ovMemory::UniquePtr<ovGraphics::Texture> picture; ///< null on failure
    ovMemory::UniquePtr<ovGraphics::Texture> depth;   ///< null where no effect reads it
    ovMemory::UniquePtr<ovGraphics::Camera> camera;
    float middle = 0.0f; ///< distance of the middle of the model along the view

    PictureScene getScene() const { return {depth.get(), camera.get(), middle}; }
};

/// @return no picture with one line in error when it cannot be drawn
DrawnModel drawModel(Console& console, Session& session, const RenderOptions& options, const RenderPlan& plan,
                     PictureReport& report, String& error) {
    const ovVeldris::ModelLoadResult loaded = readModel(console, session, options.model);
    error = loaded.error;
    if (!loaded)
        return {};
    ovVeldris::Model& model = *loaded.model;
    if (model.getParts().empty()) {
        error = "the model '" + options.model + "' has nothing to draw.";
        return {};
    }
    giveModelLight(model);
    if (!readMaterials(console, session, options, model, error))
        return {};
    SceneSettings scene = plan.scene;
    Surroundings surroundings;
    if (!makeSurroundings(console, session, options, plan, model, scene, surroundings, error))
        return {};
    console.step("programs");
    const auto picture = ScenePicture::create(session, scene, error);
    if (!picture || !picture->setEnvironment(surroundings.getLight(), surroundings.getBehind()) ||
        !addModel(*picture, model) ||
        !placeCamera(plan.camera, model.getBoundingBox(), &model, picture->getAspect(), picture->getCamera(),
                     error)) {
        error += session.getLogger().take();
        return {};
    }
    console.step("drawing");
    picture->setProgress(console.getShare());
    String warning;
    DrawnModel drawn;
    drawn.picture = picture->draw(warning, error);
    console.warn(warning);
    report.passes = picture->getTimings();
    drawn.depth = picture->takeDepth();
    const ovGraphics::Camera& camera = picture->getCamera();
    drawn.middle =
        (model.getBoundingBox().getCenter() - camera.getPosition()).dotProductVec3(camera.getDirection());
    drawn.camera = picture->takeCamera();
    return drawn;
}

/// Everything that needs the device, which is closed again at the end.
bool render(Console& console, const RenderOptions& options, const RenderPlan& plan, PictureReport& report,
            String& error) {
    console.step("device");
    Session session(&console.getProgress());
    if (!session.open(options.drawing, error))
        return false;
    DrawnModel model = drawModel(console, session, options, plan, report, error);
    if (!model.picture)
        return false;
    const ChainResult result = runChain(session, std::move(model.picture), plan.chain, model.getScene());
    error = result.error;
    if (!result)
        return false;
    console.warnEach(session.getLogger().takeLines());
    console.step("writing");
    if (plan.background)
        layBehind(*result.image, *plan.background, result.content);
    String warning;
    if (!writePicture(options.output, result.image->view(), false, warning, error))
        return false;
    console.warn(warning);
    addToReport(result, session, report);
    console.step("closing");
    return true;
}

int runRender(Console& console, RenderOptions options) {
    RenderPlan plan;
    String error;
    InputFile inputs[3];
    if (!makePlan(options, plan, error) || !inputs[0].open(options.model, console, error) ||
        !inputs[1].open(options.environment, console, error) ||
        !inputs[2].open(options.materials, console, error))
        return console.fail(error);
    if (isStandardOutput(options.output))
        console.leaveOutputToData();
    PictureReport report;
    if (!render(console, options, plan, report, error))
        return console.fail(error);
    JsonObject object;
    object.text("output", options.output).number("width", report.width).number("height", report.height);
    printPictureReport(console, options.drawing, report, {options.output}, std::move(object));
    return 0;
}

} // namespace

void addRenderCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App* render =
        program.add_subcommand("render", "draw a model (.glb, .gltf) with physically based materials");
    render->add_option("MODEL", options->model, "model to read; - reads standard input")->required();
    render
        ->add_option("-o,--output", options->output,
                     "image to write; its extension chooses the format, and png:- writes to standard output")
        ->required();
    render->add_option("--size", options->size, "WIDTHxHEIGHT in pixels")->capture_default_str();
    render->add_option("--samples", options->samples, "samples of a pixel: 1, 4, 9, 16, ...")
        ->check(CLI::Range(1, 1024))
        ->capture_default_str();
    render->add_option(
        "--camera", options->camera,
        "AZIMUTH,ELEVATION[,ZOOM] around the model in degrees (default: 30,15), "
        "X,Y,Z,TARGET-X,TARGET-Y,TARGET-Z in the metres and axes of the model's file (+y up, its front "
        "towards +z), or file for the model's own");
    render->add_option("--materials", options->materials,
                       "materials to use instead, as veldris materials writes them");
    render
        ->add_option("--environment", options->environment,
                     "panorama, cross or strip (EXR, HDR, PNG, JPEG), a name with {face} for six faces, a "
                     "cube (.dds, .ktx2) "
                     "such as bake writes, sky for the built-in one, "
                     "atmosphere:sun=ELEVATION,AZIMUTH[,SETTING=VALUE...] for "
                     "a clear day with settings of --air of veldris sky, or none")
        ->capture_default_str();
    addEnvironmentOptions(*render, options->reading);
    render
        ->add_option("--environment-rotation", options->environmentRotation,
                     "degrees by which the environment is turned to the right")
        ->capture_default_str();
    render->add_option(
        "--light", options->light,
        "X,Y,Z where the light shines to, in the axes of the model's file (default: the model's "
        "light, or from above and beside the camera)");
    render->add_option("--light-color", options->lightColor,
                       "R,G,B, linear (default: the model's hue, or white)");
    render->add_flag("--shadows", options->shadows, "let the light cast shadows");
    render->add_flag(
        "--ground,!--no-ground", options->ground,
        "let the model stand on a ground of which its shadow alone is seen (default: in front of the "
        "built-in sky)");
    render->add_option("--background", options->background,
                       "what is behind the model instead of the environment: R,G,B, linear, which no effect "
                       "changes, or transparent");
    render->add_option("--effects", options->effects,
                       "effects over the picture, as of veldris apply, behind those that read the scene "
                       "(default: none for EXR and HDR, which hold scene "
                       "light, otherwise " +
                           String(DEFAULT_TONE_MAPPING) + ")");
    addTimeOption(*render, options->drawing.time);
    addDrawingOptions(*render, options->drawing);
    render->footer("Example: veldris render helmet.glb --light 0.3,-1,-0.5 --shadows -o helmet.png");
    render->callback([options, &command] {
        command = [options](Console& console) { return runRender(console, *options); };
    });
}

} // namespace veldris

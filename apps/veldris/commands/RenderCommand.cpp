// veldris render: a model with physically based materials, as a picture.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovImages/Panorama.h>
#include <ovResources/Files.h>
#include <ovVeldris/core/NearestName.h>
#include <veldris/ImageFiles.h>
#include <veldris/bake/CubeBaking.h>
#include <veldris/commands/PictureOutput.h>
#include <veldris/commands/RenderOptions.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/console/OutputFile.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/materials/MaterialFile.h>
#include <veldris/projects/ProjectSubject.h>
#include <veldris/projects/SettingOptions.h>
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

constexpr unsigned int SKY_WIDTH = 512;

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
bool makeSky(Console& console, Session& session, const RenderPlan& plan, const SceneSubject& subject,
             SceneSettings& scene, Surroundings& surroundings, String& error) {
    const auto camera = ovGraphics::Camera::create(&session.getGraphics());
    const float aspect = static_cast<float>(scene.width) / static_cast<float>(scene.height);
    if (!placeCamera(plan.camera, subject.getBoundingBox(), subject.getModel(), aspect, *camera, error))
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
                      const RenderPlan& plan, const SceneSubject& subject, SceneSettings& scene,
                      Surroundings& surroundings, String& error) {
    if (plan.sky)
        return makeSky(console, session, plan, subject, scene, surroundings, error);
    const Vector lightDirection =
        scene.lightDirection.value_or(subject.getMaterials().front().material->getLightDirection());
    surroundings.image = makeEnvironment(console, session, options, lightDirection, error);
    return error.empty();
}

/// Takes over what the user's file says of the subject's materials.
bool readMaterials(Console& console, Session& session, const RenderOptions& options,
                   const SceneSubject& subject, String& error) {
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
    Buffer<ovVeldris::PbsMaterial*> own;
    Buffer<StringView> names;
    for (const SubjectMaterial& surface : subject.getMaterials()) {
        own.push_back(surface.material);
        names.push_back(surface.material->getName());
    }
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

/// Lights the subject's materials, and adds its surfaces with their shadows to a scene.
bool addSubject(ScenePicture& picture, const SceneSubject& subject) {
    const Buffer<SubjectMaterial> materials = subject.getMaterials();
    for (const SubjectMaterial& own : materials)
        picture.light(*own.material);
    for (const SubjectMaterial& own : materials)
        if (!own.material->load())
            return false;
    subject.addTo(picture.getSolid(), picture.getBlended());
    for (const SubjectMaterial& own : materials)
        if (!picture.prepareSurface(*own.material, own.alphaMode))
            return false;
    picture.fitShadow(subject.getBoundingBox());
    return true;
}

/// The model or the project that the options name; null with one line in error.
ovMemory::UniquePtr<SceneSubject> readSubject(Console& console, Session& session,
                                              const RenderOptions& options, String& error) {
    if (!options.project.empty()) {
        ProjectFiles files;
        Buffer<String> warnings;
        console.step("decoding");
        if (!ProjectFiles::find(options.project, files, error))
            return nullptr;
        auto subject = ProjectSubject::load(session, files, warnings, error);
        console.warnEach(warnings);
        return subject;
    }
    ovVeldris::ModelLoadResult loaded = readModel(console, session, options.model);
    error = loaded.error;
    if (!loaded)
        return nullptr;
    if (loaded.model->getParts().empty()) {
        error = "the model '" + options.model + "' has nothing to draw.";
        return nullptr;
    }
    giveModelLight(*loaded.model);
    return std::make_unique<ModelSubject>(std::move(loaded.model));
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
    const auto subject = readSubject(console, session, options, error);
    if (!subject || !readMaterials(console, session, options, *subject, error))
        return {};
    SceneSettings scene = plan.scene;
    Surroundings surroundings;
    if (!makeSurroundings(console, session, options, plan, *subject, scene, surroundings, error))
        return {};
    console.step("programs");
    const auto picture = ScenePicture::create(session, scene, error);
    if (!picture || !picture->setEnvironment(surroundings.getLight(), surroundings.getBehind()) ||
        !addSubject(*picture, *subject) ||
        !placeCamera(plan.camera, subject->getBoundingBox(), subject->getModel(), picture->getAspect(),
                     picture->getCamera(), error)) {
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
        (subject->getBoundingBox().getCenter() - camera.getPosition()).dotProductVec3(camera.getDirection());
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
    if (!makePlan(options, plan, error) || !(error = checkOutput(options.output).error).empty() ||
        !inputs[0].open(options.model, console, error) ||
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

/// Takes over the options that a project keeps. @return false after a line of failure
bool takeProjectSettings(Console& console, const RenderOptions& options, CLI::App& render) {
    if (options.project.empty())
        return true;
    ProjectFiles files;
    String error;
    if (!ProjectFiles::find(options.project, files, error)) {
        console.fail(error);
        return false;
    }
    ovMemory::Buffer<char> bytes;
    if (!ovResources::readFile(files.settings, bytes)) // most projects keep none
        return true;
    Buffer<String> problems;
    const auto settings = readSettings({bytes.data(), bytes.size()}, problems);
    for (const String& problem : problems)
        console.warn(fmt::format("{}:{}", files.settings, problem));
    for (const String& problem : applySettings(settings, files.folder, render))
        console.warn(fmt::format("{}: {}", files.settings, problem));
    return true;
}

} // namespace

void addRenderCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App* render =
        program.add_subcommand("render", "draw a model (.glb, .gltf) with physically based materials");
    CLI::Option* const model =
        render->add_option("MODEL", options->model, "model to read; - reads standard input");
    render
        ->add_option(
            "--project", options->project,
            "project to draw instead of a model: NAME.ovs, as veldris project and the library save it; "
            "options that are not given are those that it keeps")
        ->excludes(model);
    render
        ->add_option("-o,--output", options->output,
                     "image to write; its extension chooses the format, and png:- writes to standard output")
        ->required();
    render->add_option("--materials", options->materials,
                       "materials to use instead, as veldris materials writes them");
    addSceneOptions(*render, *options);
    addTimeOption(*render, options->drawing.time);
    addDrawingOptions(*render, options->drawing);
    render->footer("Example: veldris render helmet.glb --light 0.3,-1,-0.5 --shadows -o helmet.png");
    render->callback([options, render, &command] {
        if (options->model.empty() && options->project.empty())
            throw CLI::RequiredError("MODEL");
        command = [options, render](Console& console) {
            return takeProjectSettings(console, *options, *render) ? runRender(console, *options) : 1;
        };
    });
}

} // namespace veldris

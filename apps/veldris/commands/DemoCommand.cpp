// veldris demo: a built-in scene through every effect, as a gallery of pictures.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovResources/Files.h>
#include <ovVeldris/core/NearestName.h>
#include <veldris/ImageFiles.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/demo/DemoScene.h>
#include <veldris/demo/EffectPictures.h>
#include <veldris/demo/EnvironmentScenes.h>
#include <veldris/demo/FocusScenes.h>
#include <veldris/demo/GalleryPage.h>
#include <veldris/demo/MaterialScenes.h>
#include <veldris/demo/SceneEffectScenes.h>
#include <veldris/demo/SkyScenes.h>
#include <veldris/demo/poster/PosterScene.h>
#include <veldris/effects/EffectChain.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;

constexpr const char* SOURCE_FILE = "scene-clipped.png";
constexpr const char* SCENE_FILE = "scene.exr"; // what the commands of the page read

struct DemoOptions {
    String folder = "out/demo";
    String only; ///< the name of a picture; empty: all
    unsigned int width = 960;
    unsigned int height = 540;
    DrawingOptions drawing;
};

/// A picture as the gallery shows it. Scene light is clipped on purpose: that is the "before" of a tone
/// mapping.
bool writeGalleryPicture(const String& path, const ovImages::ImageView& picture, String& error) {
    String clippingIsWanted;
    return writePicture(path, picture, false, clippingIsWanted, error);
}

/// The effects of one list, over a picture of scene light.
bool planScene(ovMemory::StringView text, ChainPlan& plan, String& error) {
    Buffer<PlannedEffect> effects;
    return planEffects(text, effects, error) && planChain(std::move(effects), {}, plan, error);
}

/// Pictures of scenes that share what they are made of.
struct SceneSet {
    Buffer<ovMemory::StringView> (*names)();
    bool (*draw)(Session& session, unsigned int width, unsigned int height, ovMemory::StringView only,
                 const TakePicture& take, String& error);
};
constexpr SceneSet SCENE_SETS[] = {{materialPictureNames, drawMaterialPictures},
                                   {environmentPictureNames, drawEnvironmentPictures},
                                   {sceneEffectPictureNames, drawSceneEffectPictures},
                                   {focusPictureNames, drawFocusPictures},
                                   {skyPictureNames, drawSkyPictures},
                                   {posterNames, drawPoster}};

/// The names of all pictures.
Buffer<ovMemory::StringView> pictureNames() {
    Buffer<ovMemory::StringView> names;
    const auto add = [&](const Buffer<ovMemory::StringView>& some) {
        names.insert(names.end(), some.begin(), some.end());
    };
    add(effectPictureNames());
    for (const SceneSet& set : SCENE_SETS)
        add(set.names());
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds())
        for (const ovVeldris::EffectExample& example : kind.examples)
            names.push_back(example.name);
    return names;
}

/// Tells which share of all pictures the entries are.
void tellShare(Session& session, const Buffer<GalleryEntry>& entries) {
    if (session.getProgress())
        session.getProgress()->share(static_cast<double>(entries.size()) /
                                     static_cast<double>(pictureNames().size()));
}

bool drawExample(Session& session, const ovImages::ImageView& scene, const ovVeldris::EffectKind& kind,
                 const ovVeldris::EffectExample& example, const DemoOptions& options,
                 Buffer<GalleryEntry>& entries, String& error) {
    const String list = listOfExample(kind, example);
    ChainPlan plan;
    if (!planScene(list, plan, error))
        return false;
    const ChainResult result = runChain(session, scene, plan);
    if (!result) {
        error = result.error;
        return false;
    }
    const String file = String(example.name) + ".png";
    const String command =
        fmt::format("veldris apply {} --effects \"{}\" -o {}{}", SCENE_FILE, list, example.name,
                    plan.output == PICTURE_CONTENT::SCENE_LINEAR ? ".exr" : ".png");
    GalleryEntry entry{list, String(kind.summary), command, "", file, {}};
    // Where nothing changed, a picture of before would tell nothing.
    if (!std::ranges::equal(result.image->getBytes(), scene.bytes))
        entry.beforeFile = SOURCE_FILE;
    for (const EffectTiming& timing : result.timings)
        entry.passes.push_back({timing.effect, timing.milliseconds});
    entries.push_back(entry);
    tellShare(session, entries);
    return writeGalleryPicture(options.folder + "/" + file, result.image->view(), error);
}

bool isWanted(const DemoOptions& options, ovMemory::StringView name) {
    return options.only.empty() || options.only == name;
}

/// The examples of every kind of effect.
bool drawExamples(Session& session, const ovImages::ImageView& scene, const DemoOptions& options,
                  Buffer<GalleryEntry>& entries, String& error) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds())
        for (const ovVeldris::EffectExample& example : kind.examples)
            if (isWanted(options, example.name) &&
                !drawExample(session, scene, kind, example, options, entries, error))
                return false;
    return true;
}

/// The entry of a picture that no other command draws.
GalleryEntry demoEntry(ovMemory::StringView name, ovMemory::StringView caption) {
    const String command = fmt::format("veldris demo --only {} --out .", name);
    GalleryEntry entry{String(name), String(caption), command, "", String(name) + ".png", {}};
    std::ranges::replace(entry.title, '-', ' ');
    return entry;
}

/// The pictures that compare settings of an effect.
bool drawComparisons(Session& session, const ovImages::ImageView& scene, const DemoOptions& options,
                     Buffer<GalleryEntry>& entries, String& error) {
    const auto write = [&](EffectPicture& picture, String& reason) {
        entries.push_back(demoEntry(picture.name, picture.caption));
        for (const EffectTiming& timing : picture.timings)
            entries.back().passes.push_back({timing.effect, timing.milliseconds});
        tellShare(session, entries);
        return writeGalleryPicture(options.folder + "/" + entries.back().afterFile, picture.image.view(),
                                   reason);
    };
    return drawEffectPictures(session, scene, options.only, write, error);
}

bool drawScenes(Session& session, const DemoOptions& options, Buffer<GalleryEntry>& entries, String& error) {
    const auto write = [&](MaterialPicture& picture, String& reason) {
        ChainPlan plan;
        if (!planScene(picture.effects, plan, reason))
            return false;
        const ChainResult mapped = runChain(session, std::move(picture.texture), plan);
        reason = mapped.error;
        entries.push_back(demoEntry(picture.name, picture.caption));
        for (const ovGraphics::PassTiming& pass : picture.passes)
            entries.back().passes.push_back({pass.name, pass.milliseconds});
        tellShare(session, entries);
        return mapped && writeGalleryPicture(options.folder + "/" + entries.back().afterFile,
                                             mapped.image->view(), reason);
    };
    // Where none of a kind is wanted, what its pictures share is not made either.
    const auto isAnyWanted = [&](const Buffer<ovMemory::StringView>& names) {
        return std::ranges::any_of(names, [&](ovMemory::StringView name) { return isWanted(options, name); });
    };
    return std::ranges::all_of(SCENE_SETS, [&](const SceneSet& set) {
        return !isAnyWanted(set.names()) ||
               set.draw(session, options.width, options.height, options.only, write, error);
    });
}

bool drawGallery(Session& session, const DemoOptions& options, Buffer<GalleryEntry>& entries, String& error) {
    const ovImages::Image scene = drawDemoScene(options.width, options.height);
    String ignored;
    if (!writeGalleryPicture(options.folder + "/" + SOURCE_FILE, scene.view(), error) ||
        !writePicture(options.folder + "/" + SCENE_FILE, scene.view(), false, ignored, error))
        return false;
    if (!drawExamples(session, scene.view(), options, entries, error) ||
        !drawComparisons(session, scene.view(), options, entries, error) ||
        !drawScenes(session, options, entries, error))
        return false;
    if (!options.only.empty())
        return true; // the page shows all
    const auto& graphics = session.getGraphics();
    const String page = galleryPage({graphics.getDeviceInfo()->renderer, options.drawing.language,
                                     String(graphics.getPassTimingMethod()), options.width, options.height},
                                    entries);
    error = ovResources::writeFileAtomically(options.folder + "/index.html",
                                             ovMemory::BufferView<const char>(page))
                .error;
    return error.empty();
}

JsonObject entryReport(const GalleryEntry& entry) {
    Buffer<JsonObject> passes;
    for (const GalleryPass& pass : entry.passes)
        passes.push_back(JsonObject().text("pass", pass.name).number("milliseconds", pass.milliseconds));
    return JsonObject().text("title", entry.title).text("file", entry.afterFile).array("passes", passes);
}

void printReport(Console& console, const DemoOptions& options, const Buffer<GalleryEntry>& entries,
                 Session& session) {
    const String page =
        options.folder + (options.only.empty() ? "/index.html" : "/" + entries.front().afterFile);
    if (!options.drawing.json) {
        for (const GalleryEntry& entry : entries)
            if (options.drawing.timings && !entry.passes.empty())
                console.print(fmt::format("{}: {}", entry.title, passesText(entry.passes)));
        if (options.only.empty())
            console.print(fmt::format("{} pictures in {}", entries.size(), options.folder));
        console.print(page);
        return;
    }
    const auto& programs = session.getGraphics().getProgramLibrary().getStatistics();
    Buffer<JsonObject> pictures;
    for (const GalleryEntry& entry : entries)
        pictures.push_back(entryReport(entry));
    console.print(JsonObject()
                      .text("page", page)
                      .array("pictures", pictures)
                      .number("programsCompiled", static_cast<double>(programs.compiled))
                      .number("programsFromCache", static_cast<double>(programs.fromDisk))
                      .number("programsMilliseconds", programs.milliseconds)
                      .toText());
}

/// Whether a picture has the name that was asked for. @return false with one line in error
bool checkName(const DemoOptions& options, String& error) {
    const Buffer<ovMemory::StringView> names = pictureNames();
    if (options.only.empty() || std::ranges::find(names, options.only) != names.end())
        return true;
    error = fmt::format("there is no picture '{}'; there are {}.{}", options.only, fmt::join(names, ", "),
                        ovVeldris::nearestNameHint(options.only, names));
    return false;
}

int runDemo(Console& console, DemoOptions options) {
    String error;
    if (!checkName(options, error))
        return console.fail(error);
    std::error_code status;
    std::filesystem::create_directories(options.folder, status);
    if (status)
        return console.fail(fmt::format("could not make the folder '{}': {}; name another with --out.",
                                        options.folder, status.message()));
    error = ovResources::checkWritable(options.folder + "/index.html").error;
    if (!error.empty())
        return console.fail(error);
    DrawingOptions measured = options.drawing;
    measured.timings = true; // the page shows them
    console.step("device");
    Session session(&console.getProgress());
    if (!session.open(measured, error))
        return console.fail(error);
    console.step("drawing the gallery");
    Buffer<GalleryEntry> entries;
    if (!drawGallery(session, options, entries, error))
        return console.fail(error);
    console.warnEach(session.getLogger().takeLines());
    printReport(console, options, entries, session);
    return 0;
}

} // namespace

void addDemoCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<DemoOptions>();
    CLI::App* demo =
        program.add_subcommand("demo", "draw the built-in scene through every effect, as a gallery");
    demo->add_option("--out", options->folder, "folder of the pictures and the page")->capture_default_str();
    demo->add_option("--only", options->only,
                     "draw this picture alone, by the name of its file without .png");
    demo->add_option("--width", options->width, "pixels")
        ->check(CLI::Range(16, 16384))
        ->capture_default_str();
    demo->add_option("--height", options->height, "pixels")
        ->check(CLI::Range(16, 16384))
        ->capture_default_str();
    addDrawingOptions(*demo, options->drawing);
    demo->callback([options, &command] {
        command = [options](Console& console) { return runDemo(console, *options); };
    });
}

} // namespace veldris

// veldris sky: the atmosphere alone, as a view or a panorama, or a day of them.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numbers>
#include <ovImages/Panorama.h>
#include <veldris/bake/EnvironmentInput.h>
#include <veldris/commands/PictureOutput.h>
#include <veldris/console/Console.h>
#include <veldris/console/OutputFile.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/sky/AirSettings.h>
#include <veldris/sky/ContactSheet.h>
#include <veldris/sky/SkyPicture.h>
#include <veldris/sky/SkyPlace.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

constexpr StringView FRAME_FIELD = "{frame}";
constexpr float AIR_HEIGHT = 100e3f; // metres
constexpr float MOST_SAMPLES = 1024;

struct SkyOptions {
    String output;
    String sun;
    SunWay way; ///< empty places: no sequence
    int frames = 0;
    String contactSheet;
    float cameraHeight = 200.0f; ///< metres, as of a hill: at eye level the horizon has no haze
    bool panorama = false;
    String size; ///< empty: as for the form
    unsigned int samples = 4;
    String view; ///< empty: towards the sun, the horizon in the lower third
    float fieldOfView = 60.0f;
    String air;
    String effects;
    DrawingOptions drawing;
};

/// What the options say, checked before the device is opened.
struct SkyPlan {
    Buffer<SkyPlace> suns;  ///< one for each frame
    Buffer<String> outputs; ///< likewise; none when the contact sheet is all
    bool isSequence = false;
    SkyView view;
    Buffer<ovVeldris::SettingAssignment> air;
    ChainPlan chain;
    ChainPlan sheetChain;
};

bool readSuns(const SkyOptions& options, SkyPlan& plan, String& error) {
    SunWay way = options.way;
    plan.isSequence = !way.from.empty() || !way.to.empty() || options.frames > 0;
    if (plan.isSequence != options.sun.empty()) {
        error = plan.isSequence
                    ? "--sun stands for one picture and --from, --to and --frames for a sequence; give "
                      "one of them."
                    : "there is no sun; give --sun ELEVATION,AZIMUTH, or --from, --to and --frames.";
        return false;
    }
    if (!plan.isSequence)
        return readSkyPlace("--sun", options.sun, plan.suns.emplace_back(), error);
    if (way.from.empty() || way.to.empty() || options.frames == 0) {
        error = "a sequence takes all three of --from, --to and --frames.";
        return false;
    }
    way.frames = static_cast<unsigned int>(options.frames);
    return planSunWay(way, plan.suns, error);
}

bool readOutputs(const SkyOptions& options, SkyPlan& plan, String& error) {
    const bool hasField = options.output.find(FRAME_FIELD) != String::npos;
    if (!options.contactSheet.empty() && !plan.isSequence)
        error = "--contact-sheet shows a sequence; give --from, --to and --frames.";
    else if (options.output.empty() && options.contactSheet.empty())
        error = plan.isSequence ? "there is nothing to write; give --output with {frame} in its name, or "
                                  "--contact-sheet."
                                : "there is nothing to write; give --output.";
    else if (plan.suns.size() > 1 && !options.output.empty() && !hasField)
        error = fmt::format("the name '{}' would be that of all {} frames; put {{frame}} into it, such as "
                            "sky-{{frame}}.png.",
                            options.output, plan.suns.size());
    else if (hasField && !plan.isSequence)
        error = fmt::format("the name '{}' has a {{frame}}, and there is one picture; give --from, --to and "
                            "--frames.",
                            options.output);
    for (std::size_t i = 0; error.empty() && !options.output.empty() && i < plan.suns.size(); ++i)
        plan.outputs.push_back(fillField(options.output, FRAME_FIELD, fmt::format("{:04}", i + 1)));
    return error.empty();
}

bool planFile(const SkyOptions& options, const String& output, ChainPlan& plan, String& error) {
    Buffer<PlannedEffect> effects;
    ChainOptions chain;
    if (!planPictureEffects(options.effects, output, effects, chain, error) ||
        !planChain(std::move(effects), chain, plan, error))
        return false;
    error = checkOutput(output).error;
    return error.empty();
}

bool readView(const SkyOptions& options, SkyPlan& plan, String& error) {
    SkyView& view = plan.view;
    const StringView size = !options.size.empty() ? StringView(options.size)
                            : options.panorama    ? "1024x512"
                                                  : "1280x720";
    if (!readPictureSize(size, view.width, view.height, error) || !checkSamples(options.samples, error))
        return false;
    view.samples = options.samples;
    if (options.panorama && view.width != 2ul * view.height) {
        error = fmt::format("a panorama is twice as wide as high; '{}' is not.", size);
        return false;
    }
    view.fieldOfView = options.fieldOfView;
    // A plane through the eye that is level is seen where the tangent of the angle to it says.
    const double half = 0.5 * options.fieldOfView * std::numbers::pi / 180.0;
    constexpr double LOWER_THIRD = 1.0 / 3.0; // of the way from the middle to the lower edge
    SkyPlace middle = plan.suns[plan.suns.size() / 2];
    middle.elevation = std::atan(LOWER_THIRD * std::tan(half)) * 180.0 / std::numbers::pi;
    if (!options.view.empty() && !readSkyPlace("--view", options.view, middle, error))
        return false;
    view.direction = directionOf(middle);
    return true;
}

/// The parser's ranges let NaN pass.
bool checkNumbers(const SkyOptions& options, String& error) {
    const std::pair<StringView, double> numbers[] = {{"--camera-height", options.cameraHeight},
                                                     {"--latitude", options.way.latitude},
                                                     {"--field-of-view", options.fieldOfView}};
    for (const auto& [option, number] : numbers) {
        if (std::isfinite(number))
            continue;
        error = fmt::format("{} {} is no finite number.", option, number);
        return false;
    }
    return true;
}

bool makePlan(const SkyOptions& options, SkyPlan& plan, String& error) {
    if (!checkNumbers(options, error) || !readSuns(options, plan, error) ||
        !readOutputs(options, plan, error) || !readView(options, plan, error) ||
        !planAir(options.air, plan.air, error))
        return false;
    return (plan.outputs.empty() || planFile(options, plan.outputs.front(), plan.chain, error)) &&
           (options.contactSheet.empty() || planFile(options, options.contactSheet, plan.sheetChain, error));
}

/// A frame, scene-linear, of four floats.
ovImages::Image drawFrame(const SkyOptions& options, const SkyPlan& plan, const SkyPlace& sun,
                          SkyPicture& sky, String& error) {
    if (!sky.setSun(directionOf(sun), error))
        return {};
    if (options.panorama) {
        ovImages::Image panorama =
            sky.drawPanorama(plan.view.height, plan.view.samples, SkyPicture::SUN::AS_SET, error);
        ovImages::mirrorPanorama(panorama); // as photographs run
        return panorama;
    }
    auto texture = sky.drawView(plan.view, error);
    auto picture = texture ? downloadPicture(std::move(texture)) : nullptr;
    return picture ? std::move(*picture) : ovImages::Image();
}

/// Runs the effects over a picture and writes it.
bool writeFrame(Console& console, Session& session, const ovImages::ImageView& picture,
                const ChainPlan& chain, const String& output, PictureReport& report, String& error) {
    const ChainResult result = runChain(session, picture, chain);
    error = result.error;
    String warning;
    if (!result || !writePicture(output, result.image->view(), false, warning, error))
        return false;
    console.warn(warning);
    addToReport(result, session, report);
    return true;
}

bool drawFrames(Console& console, Session& session, const SkyOptions& options, const SkyPlan& plan,
                PictureReport& report, String& error) {
    const auto sky = SkyPicture::create(session, plan.air, options.cameraHeight, error);
    if (!sky)
        return false;
    console.step("drawing");
    ContactSheet sheet(static_cast<unsigned int>(plan.suns.size()), plan.view.width, plan.view.height);
    for (std::size_t i = 0; i < plan.suns.size(); ++i) {
        const ovImages::Image frame = drawFrame(options, plan, plan.suns[i], *sky, error);
        if (frame.isEmpty())
            return false;
        report.passes = sky->takeTimings();
        if (!plan.outputs.empty() &&
            !writeFrame(console, session, frame.view(), plan.chain, plan.outputs[i], report, error))
            return false;
        if (!options.contactSheet.empty())
            sheet.add(frame.view());
        console.getShare()(static_cast<double>(i + 1) / static_cast<double>(plan.suns.size()));
    }
    return options.contactSheet.empty() || writeFrame(console, session, sheet.getImage().view(),
                                                      plan.sheetChain, options.contactSheet, report, error);
}

void printReport(Console& console, const SkyOptions& options, const SkyPlan& plan,
                 const PictureReport& report) {
    Buffer<JsonObject> frames;
    for (std::size_t i = 0; i < plan.suns.size(); ++i) {
        JsonObject& frame = frames.emplace_back();
        if (!plan.outputs.empty())
            frame.text("output", plan.outputs[i]);
        frame.number("elevation", plan.suns[i].elevation).number("azimuth", plan.suns[i].azimuth);
    }
    JsonObject object;
    object.number("width", plan.view.width).number("height", plan.view.height).array("frames", frames);
    Buffer<String> outputs = plan.outputs;
    if (!options.contactSheet.empty()) {
        object.text("contactSheet", options.contactSheet);
        outputs.push_back(options.contactSheet);
    }
    printPictureReport(console, options.drawing, report, outputs, std::move(object));
}

int runSky(Console& console, const SkyOptions& options) {
    SkyPlan plan;
    String error;
    if (!makePlan(options, plan, error))
        return console.fail(error);
    if (isStandardOutput(options.output) || isStandardOutput(options.contactSheet))
        console.leaveOutputToData();
    if (options.cameraHeight >= AIR_HEIGHT)
        console.warn(
            "the camera stands above the air, which ends at 100 km; from there all but the sun is black.");
    console.step("device");
    Session session(&console.getProgress());
    PictureReport report;
    if (!session.open(options.drawing, error) || !drawFrames(console, session, options, plan, report, error))
        return console.fail(error);
    console.warnEach(session.getLogger().takeLines());
    printReport(console, options, plan, report);
    return 0;
}

void addSunOptions(CLI::App& sky, SkyOptions& options) {
    constexpr int MOST_FRAMES = 10000;
    sky.add_option(
        "--sun", options.sun,
        "ELEVATION,AZIMUTH of the sun in degrees; the azimuth grows clockwise from north, which is "
        "the middle of a panorama");
    sky.add_option(
        "--from", options.way.from,
        "first place of the sun in a sequence: ELEVATION,AZIMUTH, or the solar time HH:MM, at 12:00 of "
        "which the sun is highest");
    sky.add_option("--to", options.way.to, "last place of the sun, likewise");
    sky.add_option("--frames", options.frames, "pictures of the sequence, evenly from the first to the last")
        ->check(CLI::Range(1, MOST_FRAMES));
    sky.add_option("--latitude", options.way.latitude, "degrees to the north, of times")
        ->check(CLI::Range(-90.0, 90.0))
        ->capture_default_str();
    sky.add_option("--day", options.way.dayOfYear, "day of the year, of times (81: the equinox)")
        ->check(CLI::Range(1, 366))
        ->capture_default_str();
    sky.add_option("--contact-sheet", options.contactSheet,
                   "picture to write with the whole sequence, small");
}

void addViewOptions(CLI::App& sky, SkyOptions& options) {
    sky.add_option("--camera-height", options.cameraHeight, "metres above the ground; below 1 it is 1")
        ->capture_default_str();
    sky.add_flag("--panorama", options.panorama, "draw all around, as bake and render --environment read it");
    sky.add_option("--size", options.size,
                   "WIDTHxHEIGHT in pixels (default: 1280x720, of a panorama 1024x512)");
    sky.add_option("--samples", options.samples, "samples of a pixel: 1, 4, 9, 16, ...")
        ->check(CLI::Range(1, static_cast<int>(MOST_SAMPLES)))
        ->capture_default_str();
    sky.add_option(
        "--view", options.view,
        "ELEVATION,AZIMUTH in degrees that is looked along (default: towards the sun, in the middle "
        "of a sequence, with the horizon in the lower third)");
    sky.add_option("--field-of-view", options.fieldOfView, "vertical angle of the view in degrees")
        ->check(CLI::Range(1.0, 170.0))
        ->capture_default_str();
    sky.add_option("--air", options.air, "SETTING=VALUE,... of the air, see below");
    sky.add_option("--effects", options.effects,
                   "effects over the picture, as of veldris apply (default: none for EXR and HDR, which hold "
                   "scene light, otherwise " +
                       String(DEFAULT_TONE_MAPPING) + ")");
}

} // namespace

void addSkyCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<SkyOptions>();
    CLI::App* sky =
        program.add_subcommand("sky", "draw the sky of a clear day, or a panorama of it to light with");
    sky->add_option("-o,--output", options->output,
                    "image to write; its extension chooses the format, and png:- writes to standard output. "
                    "{frame} in its name stands for the number of a frame from 0001 on");
    addSunOptions(*sky, *options);
    addViewOptions(*sky, *options);
    addTimeOption(*sky, options->drawing.time);
    addDrawingOptions(*sky, options->drawing);
    sky->footer(
        airHelp() +
        "\nExamples: veldris sky --sun 5,0 -o evening.png; "
        "veldris sky --sun 40,60 --panorama -o sky.exr; "
        "veldris sky --from 5:00 --to 19:00 --frames 15 --contact-sheet day.png -o \"day-{frame}.png\"");
    sky->callback(
        [options, &command] { command = [options](Console& console) { return runSky(console, *options); }; });
}

} // namespace veldris

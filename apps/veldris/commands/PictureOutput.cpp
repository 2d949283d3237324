#include <veldris/commands/PictureOutput.h>

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <veldris/console/Console.h>
#include <veldris/console/OutputFile.h>

namespace veldris {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

/// Reads a whole number from 1 off the front of a text.
bool takePixels(StringView& text, unsigned int& pixels) {
    const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), pixels);
    if (status != std::errc() || pixels == 0)
        return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

} // namespace

bool readPictureSize(StringView text, unsigned int& width, unsigned int& height, String& error) {
    StringView rest = text;
    unsigned int columns = 0;
    unsigned int rows = 0;
    if (takePixels(rest, columns) && rest.starts_with('x')) {
        rest.remove_prefix(1);
        if (takePixels(rest, rows) && rest.empty()) {
            width = columns;
            height = rows;
            return true;
        }
    }
    error = fmt::format("the size '{}' is not WIDTHxHEIGHT in pixels, such as 1280x720.", text);
    return false;
}

bool checkSamples(unsigned int samples, String& error) {
    const double side = std::sqrt(samples);
    if (side == std::floor(side))
        return true;
    error = fmt::format("--samples {} is no square of a whole number; 1, 4, 9 and 16 are.", samples);
    return false;
}

bool planPictureEffects(StringView effects, const String& output, Buffer<PlannedEffect>& planned,
                        ChainOptions& chain, String& error) {
    if (!contentOfFormat(output, chain.output, error))
        return false;
    chain.outputName = "the file '" + output + "'";
    chain.input = PICTURE_CONTENT::SCENE_LINEAR;
    const bool holdsSceneLight = !chain.output;
    const StringView list = effects.empty() && !holdsSceneLight ? DEFAULT_TONE_MAPPING : effects;
    planned.clear();
    return list.empty() || planEffects(list, planned, error);
}

void addToReport(const ChainResult& result, Session& session, PictureReport& report) {
    report.width = result.image->getWidth();
    report.height = result.image->getHeight();
    report.timingMethod = session.getGraphics().getPassTimingMethod();
    for (const EffectTiming& timing : result.timings)
        report.passes.push_back({timing.effect, timing.milliseconds});
}

void printPictureReport(Console& console, const DrawingOptions& options, const PictureReport& report,
                        const Buffer<String>& outputs, JsonObject object) {
    const Buffer<JsonObject> steps = options.timings ? console.reportSteps() : Buffer<JsonObject>();
    Buffer<JsonObject> passes;
    for (const ovGraphics::PassTiming& pass : report.passes) {
        if (!options.json)
            console.print(
                fmt::format("{:10.3f} ms  {} ({})", pass.milliseconds, pass.name, report.timingMethod));
        passes.push_back(JsonObject().text("pass", pass.name).number("milliseconds", pass.milliseconds));
    }
    if (!options.json) {
        for (const String& output : outputs)
            printPath(console, output);
        return;
    }
    if (options.timings)
        object.array("steps", steps).text("timingMethod", report.timingMethod).array("passes", passes);
    console.print(object.toText());
}

} // namespace veldris

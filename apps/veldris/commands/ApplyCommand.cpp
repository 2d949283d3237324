// veldris apply: a chain of effects over one image.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovImages/CompositeEncoder.h>
#include <veldris/ImageFiles.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/console/OutputFile.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/effects/EffectHelp.h>

namespace veldris {

namespace {

using ovMemory::String;

struct ApplyOptions {
    String input;
    String output;
    String effects;
    String inputContent;
    ovImages::DecodeOptions reading;
    bool raw = false;
    DrawingOptions drawing;
};

/// What is told of a picture that was written.
struct ApplyReport {
    unsigned int width = 0;
    unsigned int height = 0;
    String content;
    String timingMethod;
    ovMemory::Buffer<EffectTiming> passes;
};

void printReport(Console& console, const ApplyOptions& options, const ApplyReport& result) {
    const ovMemory::Buffer<JsonObject> steps =
        options.drawing.timings ? console.reportSteps() : ovMemory::Buffer<JsonObject>();
    if (!options.drawing.json) {
        for (const EffectTiming& pass : result.passes)
            console.print(
                fmt::format("{:10.3f} ms  {} ({})", pass.milliseconds, pass.effect, result.timingMethod));
        printPath(console, options.output);
        return;
    }
    ovMemory::Buffer<JsonObject> passes;
    for (const EffectTiming& pass : result.passes)
        passes.push_back(JsonObject().text("effect", pass.effect).number("milliseconds", pass.milliseconds));
    JsonObject report;
    report.text("output", options.output)
        .number("width", result.width)
        .number("height", result.height)
        .text("content", result.content);
    if (options.drawing.timings)
        report.array("steps", steps).text("timingMethod", result.timingMethod).array("passes", passes);
    console.print(report.toText());
}

/// Everything of the options that can be checked before the image is read and the device opened.
bool readOptions(const ApplyOptions& options, ovMemory::Buffer<PlannedEffect>& effects, ChainOptions& chain,
                 String& error) {
    if (!planEffects(options.effects, effects, error) ||
        !contentOfFormat(options.output, chain.output, error))
        return false;
    error = checkOutput(options.output).error;
    if (!error.empty())
        return false;
    chain.outputName = "the file '" + options.output + "'";
    chain.raw = options.raw;
    return true;
}

/// Everything that needs the device, which is closed again at the end.
bool drawAndWrite(Console& console, const ApplyOptions& options, ovImages::Image input, const ChainPlan& plan,
                  ApplyReport& report, String& error) {
    console.step("device");
    Session session(&console.getProgress());
    if (!session.open(options.drawing, error))
        return false;
    console.step("drawing");
    ChainResult result =
        runChainForFile(session, std::move(input), plan, formOfFile(options.output), options.raw);
    error = result.error;
    if (!result)
        return false;
    console.warnEach(session.getLogger().takeLines());
    console.warn(result.warning);

    console.step("writing");
    String warning;
    if (!writePicture(options.output, result.image->view(), options.raw, warning, error))
        return false;
    console.warn(warning);
    report = {result.image->getWidth(), result.image->getHeight(),
              options.raw ? String("raw") : toText(plan.output),
              String(session.getGraphics().getPassTimingMethod()), std::move(result.timings)};
    console.step("closing");
    return true;
}

int runApply(Console& console, ApplyOptions options) {
    ovMemory::Buffer<PlannedEffect> effects;
    ChainOptions chain;
    String error;
    InputFile standardInput;
    if (!readOptions(options, effects, chain, error) || !standardInput.open(options.input, console, error))
        return console.fail(error);
    if (isStandardOutput(options.output))
        console.leaveOutputToData();

    console.step("decoding");
    options.reading.progress = console.getShare();
    ovImages::DecodeResult input = ovImages::CompositeEncoder().decodeFile(options.input, options.reading);
    if (!input)
        return console.fail(input.error);
    console.warn(input.warning);
    chain.input = ovVeldris::contentFromText(options.inputContent).value_or(contentOf(input.image->view()));
    ChainPlan plan;
    ApplyReport report;
    if (!planChain(std::move(effects), chain, plan, error) ||
        !drawAndWrite(console, options, std::move(*input.image), plan, report, error))
        return console.fail(error);
    printReport(console, options, report);
    return 0;
}

} // namespace

void addApplyCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<ApplyOptions>();
    CLI::App* apply = program.add_subcommand("apply", "run effects over an image (PNG, JPEG, EXR, HDR)");
    apply->add_option("IMAGE", options->input, "image to read; - reads standard input")->required();
    apply->add_option("--effects", options->effects, "effects in order, see below")->required();
    apply
        ->add_option("-o,--output", options->output,
                     "image to write; its extension chooses the format, and png:- writes to standard output. "
                     "PNG and JPEG get srgb-encoded colours of 8 bits, EXR and HDR linear ones as floats")
        ->required();
    apply
        ->add_option(
            "--input-content", options->inputContent,
            "what the input's numbers mean (default: srgb-encoded of JPEG and PNG, scene-linear of EXR, "
            "HDR and PNG that tells a gamma of 1)")
        ->check(CLI::IsMember({"scene-linear", "display-linear", "srgb-encoded"}));
    addReadingOptions(*apply, options->reading);
    apply->add_flag(
        "--raw", options->raw,
        "numbers in, numbers out: no colour conversions and no checks of them; of PNG and JPEG 0 to "
        "255 are 0 to 1");
    addTimeOption(*apply, options->drawing.time);
    addDrawingOptions(*apply, options->drawing);
    apply->footer(effectHelp() + "\nExample: veldris apply sky.exr --effects "
                                 "\"tone-mapping:operator=reinhard,max-white=4,4,4\" -o sky.png");
    apply->callback([options, &command] {
        command = [options](Console& console) { return runApply(console, *options); };
    });
}

} // namespace veldris

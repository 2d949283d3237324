#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <malloc.h>
#include <span>
#include <veldris/bake/EnvironmentInput.h>
#include <veldris/console/Console.h>
#include <veldris/usage/HelpText.h>
#include <veldris/usage/UsageMistakes.h>

namespace veldris {

namespace {

using ovMemory::StringView;

constexpr int WRONG_USAGE = 2;

// Pictures of tens of megabytes come and go. By default the C library gives each back to the system at once,
// which clears the pages of the next one by one: a sixth of the time of a large picture.
void keepFreedMemory() {
    constexpr int LARGEST_PICTURE = 256 << 20; // bytes
    constexpr int KEPT = 1 << 30;
    mallopt(M_MMAP_THRESHOLD, LARGEST_PICTURE);
    mallopt(M_TRIM_THRESHOLD, KEPT);
}

} // namespace

void addDeviceOptions(CLI::App& command, DrawingOptions& options) {
    command.add_option("--language", options.language, "shader language that is compiled: glsl or hlsl")
        ->check(CLI::IsMember({"glsl", "hlsl"}))
        ->capture_default_str();
    command.add_option("--device", options.device,
                       "\"software\", or a device's number as 'veldris info' lists them");
    command.add_option(
        "--cache", options.cache,
        "folder of compiled programs (default: veldris in the user's cache folder, as 'veldris info' tells)");
    command.add_flag("--no-cache", options.noCache, "keep no compiled programs on disk");
}

void addJsonOption(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "print the result for machines");
}

void addTimingsOption(CLI::App& command, bool& timings) {
    command.add_flag("--timings", timings, "measure every step");
}

void addTimeOption(CLI::App& command, double& seconds) {
    constexpr double LONGEST = 1e9; // thirty years
    command
        .add_option("--time", seconds,
                    "seconds of a film that effects which change with the time are drawn at, such as grain")
        ->check([](const std::string& text) {
            double value = 0.0;
            // Of the parser's own ranges NaN is a part.
            const bool isTime = CLI::detail::lexical_cast(text, value) && value >= 0.0 && value <= LONGEST;
            return isTime ? std::string() : "'" + text + "' is no time; give seconds from 0 to 1e9";
        })
        ->capture_default_str();
}

void addDrawingOptions(CLI::App& command, DrawingOptions& options) {
    addDeviceOptions(command, options);
    addTimingsOption(command, options.timings);
    addJsonOption(command, options.json);
}

void addReadingOptions(CLI::App& command, ovImages::DecodeOptions& options) {
    command.add_option("--layer", options.layer,
                       "layer of an EXR file to read (default: the one without a name, or the only one)");
    command.add_flag("--strict", options.strict,
                     "refuse pictures with stray bytes or broken metadata instead of warning");
}

void addEnvironmentOptions(CLI::App& command, EnvironmentReading& reading) {
    command
        .add_option("--input-layout", reading.layout,
                    "panorama, cross (4:3 or 3:4), strip (1:6 or 6:1) or faces ({face} in the name) "
                    "(default: what an EXR file says, or else by the shape)")
        ->check(CLI::IsMember({"panorama", "cross", "strip", "faces"}));
    addReadingOptions(command, reading.decoding);
}

namespace {

void addCommands(CLI::App& program, Command& command) {
    addApplyCommand(program, command);
    addBakeCommand(program, command);
    addCheckCommand(program, command);
    addCompletionCommand(program, command);
    addDemoCommand(program, command);
    addHelpCommand(program, command);
    addInfoCommand(program, command);
    addManualCommand(program, command);
    addMaterialsCommand(program, command);
    addProjectCommand(program, command);
    addRenderCommand(program, command);
    addRunCommand(program, command);
    addSamplesCommand(program, command);
    addShadersCommand(program, command);
    addSkyCommand(program, command);
}

} // namespace

int runProgram(int argumentCount, const char* const* arguments, std::chrono::steady_clock::time_point start) {
    keepFreedMemory();
    const std::span<const char* const> given(arguments + 1, arguments + std::max(argumentCount, 1));
    // Before anything is parsed: what the parser refuses is told in the same form.
    Console console(std::ranges::find(given, StringView("--json")) != given.end(), start);
    CLI::App program(
        "Draws models with physically based materials under skies, runs effects over pictures and "
        "bakes environments; without a display, on a GPU or in software.",
        "veldris");
    program.set_version_flag("--version", OV_VERSION);
    program.require_subcommand(1);
    program.set_help_all_flag("--help-all", "help of every subcommand");

    // Parsing only chooses what to run. Nothing runs inside the parser, whose exceptions would otherwise mix
    // with ours.
    Command command;
    addCommands(program, command);
    wrapHelp(program);
    try {
        program.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return console.finish(program.exit(error)); // help, or the version
        // The parser's own statuses differ from error to error; scripts need to know only that the call was
        // wrong.
        console.fail(usageMistake(program, given, error.what()));
        return WRONG_USAGE;
    }
    return console.finish(command(console));
}

} // namespace veldris

#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <malloc.h>

namespace veldris {

namespace {
constexpr int FAILED = 1;
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

void addDrawingOptions(CLI::App& command, DrawingOptions& options) {
    command.add_option("--language", options.language, "shader language that is compiled: glsl or hlsl")
        ->check(CLI::IsMember({"glsl", "hlsl"}))
        ->capture_default_str();
    command.add_option("--device", options.device,
                       "\"software\", or a device's number as 'veldris info' lists them");
    command.add_option("--cache", options.cache,
                       "folder of compiled programs (default: " + defaultCacheFolder() + ")");
    command.add_flag("--no-cache", options.noCache, "keep no compiled programs on disk");
    command.add_flag("--timings", options.timings, "measure every pass");
    command.add_flag("--json", options.json, "print the result for machines");
}

int fail(ovMemory::StringView message) {
    fmt::print(stderr, "veldris: {}\n", message);
    return FAILED;
}

void warn(ovMemory::StringView message) {
    if (!message.empty())
        fmt::print(stderr, "veldris: warning: {}\n", message);
}

int runProgram(int argumentCount, const char* const* arguments) {
    keepFreedMemory();
    CLI::App program("OrvaneVeldris on the command line: effects over images, headless or on a GPU.",
                     "veldris");
    program.set_version_flag("--version", OV_VERSION);
    program.require_subcommand(1);
    program.set_help_all_flag("--help-all", "help of every subcommand");

    // Parsing only chooses what to run. Nothing runs inside the parser, whose exceptions would otherwise mix
    // with ours.
    Command command;
    addApplyCommand(program, command);
    addBakeCommand(program, command);
    addCheckCommand(program, command);
    addDemoCommand(program, command);
    addInfoCommand(program, command);
    addMaterialsCommand(program, command);
    addRenderCommand(program, command);
    addShadersCommand(program, command);
    try {
        program.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        // The parser's own statuses differ from error to error; scripts need to know only that the call was
        // wrong. Help ends here too, with 0.
        return program.exit(error) == 0 ? 0 : WRONG_USAGE;
    }
    return command();
}

} // namespace veldris

// veldris run: a script over the whole library, or a prompt.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovResources/Files.h>
#include <ovScripts/Environment.h>
#include <ovScripts/Reference.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <unistd.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/scripting/Prompt.h>
#include <veldris/scripting/ScriptLogger.h>
#include <veldris/scripting/Watchdog.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovScripts::FunctionParameter;

constexpr std::size_t MEGABYTE = 1'000'000;
// What a script gets to end by the error of its limit, which says where it was, before the process is ended.
constexpr double SECONDS_TO_END = 1.0;

struct RunOptions {
    String script;
    ovMemory::Buffer<String> arguments;
    DrawingOptions drawing;
    ovScripts::EnvironmentOptions environment;
    std::size_t memoryMegabytes = 0;
    bool reference = false;
};

// As the interpreter's own program has them: arg[0] is the script, arg[1] the first argument.
constexpr const char* SET_ARGUMENTS = "local name, rest = ..., {select(2, ...)} arg = rest arg[0] = name";

bool setArguments(ovScripts::Environment& environment, const RunOptions& options,
                  ovMemory::Buffer<FunctionParameter>& arguments) {
    for (const String& argument : options.arguments)
        arguments.emplace_back(argument);
    ovMemory::Buffer<FunctionParameter> all = {FunctionParameter(options.script)};
    all.insert(all.end(), arguments.begin(), arguments.end());
    ovScripts::Script script;
    script.setName("arg");
    script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
    script.setSources(SET_ARGUMENTS);
    return script.load() && environment.execute(script, all);
}

bool loadScript(Console& console, const RunOptions& options, ovScripts::Script& script, String& error) {
    InputFile standardInput;
    String path = options.script;
    if (!standardInput.open(path, console, error))
        return false;
    ovMemory::Buffer<char> sources;
    if (const ovMemory::Result read = ovResources::readFile(path, sources); !read) {
        error = read.error;
        return false;
    }
    script.setName(options.script == "-" ? "standard input" : options.script);
    script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
    script.setSources({sources.data(), sources.size()});
    if (!script.load())
        error = script.getLastCompilationResult()._failureMessage;
    return error.empty();
}

String explain(const ovScripts::ExecutionResult& result) {
    return result.traceback.empty() ? result.error : result.error + '\n' + result.traceback;
}

int runScript(Console& console, const RunOptions& options, ovScripts::Environment& environment) {
    ovScripts::Script script;
    String error;
    if (!loadScript(console, options, script, error))
        return console.fail(error);
    ovMemory::Buffer<FunctionParameter> arguments;
    if (!setArguments(environment, options, arguments) || !environment.execute(script, arguments))
        return console.fail(explain(environment.getLastExecutionResult()));
    return 0;
}

// Ends the process at once: whatever is running does not come back, so that nothing can be put in order.
void endProcess(double seconds) {
    const String line = fmt::format(
        "veldris: the time limit of {} s is reached in a call that does not come back; look for a search "
        "with a pattern that explodes or an endless finaliser.\n",
        seconds);
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
    ::_exit(1);
}

int runIn(Console& console, const RunOptions& options, ovVeldris::System& system) {
    ovVeldris::ScriptsEngine& engine = *system.getScriptsEngine();
    engine.initialize(options.environment);
    ovScripts::Environment& environment = *engine.getEnvironment();
    if (environment.getInterpreter() == ovScripts::INTERPRETER::UNKNOWN)
        return console.fail("the memory limit is too low for an environment; raise --memory-limit.");
    console.step(options.script.empty() ? "" : "running");
    const int status =
        options.script.empty() ? runPrompt(console, environment) : runScript(console, options, environment);
    // What its scripts own and their threads end while log and graphics still live.
    engine.shutdown();
    return status;
}

// Without a device: what is declared does not depend on one.
int printReference(Console& console) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    console.print(
        "# What scripts see\n\nMade by `veldris run --reference` of the declarations that calls are checked "
        "against; [scripting.md](scripting.md) explains it.\n\n" +
        ovScripts::describeDeclarations(*engine.getEnvironment()));
    return 0;
}

int runRun(Console& console, RunOptions options) {
    if (options.reference)
        return printReference(console);
    options.environment.memoryLimit = options.memoryMegabytes * MEGABYTE;
    options.environment.isInterruptible = options.script.empty() && isatty(STDIN_FILENO);
    ovMemory::UniquePtr<Watchdog> watchdog;
    if (options.environment.timeLimit > 0)
        watchdog = std::make_unique<Watchdog>(options.environment.timeLimit + SECONDS_TO_END,
                                              [limit = options.environment.timeLimit] { endProcess(limit); });
    ScriptLogger logger(console);
    Session session(&console.getProgress());
    String error;
    if (!session.openSingleton(options.drawing, error))
        return console.fail(error);
    session.getSystem().getLogManager()->setReceiver(&logger);
    const int status = runIn(console, options, session.getSystem());
    console.warnEach(session.getLogger().takeLines());
    return status;
}

void addLimits(CLI::App& run, RunOptions& options) {
    run.add_option("--time-limit", options.environment.timeLimit,
                   "seconds after which the script ends with an error")
        ->check(CLI::PositiveNumber);
    run.add_option("--memory-limit", options.memoryMegabytes, "megabytes that the script may hold")
        ->check(CLI::PositiveNumber);
    run.add_flag("--files-and-processes", options.environment.filesAndProcesses,
                 "open Lua's libraries io, os and package: files, processes, native modules");
    run.add_flag("--debug-library", options.environment.debugLibrary,
                 "open Lua's library debug, with which a script can break the interpreter");
}

// @param words what the command line has behind the options of veldris
void takeScript(const std::vector<std::string>& words, RunOptions& options) {
    if (words.empty())
        return;
    options.script = words.front();
    if (options.script.starts_with('-') && options.script != "-")
        throw CLI::ExtrasError("run", {options.script});
    options.arguments.assign(words.begin() + 1, words.end());
}

} // namespace

void addRunCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<RunOptions>();
    CLI::App* run = program.add_subcommand("run", "run a Lua script over the whole library, or a prompt");
    run->add_option("SCRIPT", options->script, "Lua script; - for standard input (default: a prompt)")
        ->expected(0); // for the help alone: a script that is taken here would not end what veldris reads
    addLimits(*run, *options);
    run->add_flag("--reference", options->reference,
                  "print every name that scripts see, as Markdown, and end");
    addDeviceOptions(*run, options->drawing);
    // The first that is no option, and everything behind it, belongs to the script.
    run->prefix_command();
    run->footer(
        "What follows SCRIPT are its arguments, in it ... and arg; options of veldris stand before SCRIPT. "
        "Scripts see the library by the names that docs/scripting.md lists. An uncaught error ends the run "
        "with "
        "its traceback and the status 1.");
    run->callback([options, run, &command] {
        takeScript(run->remaining(), *options);
        command = [options](Console& console) { return runRun(console, *options); };
    });
}

} // namespace veldris

// veldris check: everything that is wrong with a file of material declarations.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/materials/DeclarationCheck.h>

namespace veldris {

namespace {

using ovMemory::String;

struct CheckOptions {
    String file;
    bool json = false;
};

void printJson(Console& console, const CheckOptions& options, const DeclarationFile& file) {
    ovMemory::Buffer<JsonObject> problems;
    for (const DeclarationProblem& problem : file.problems)
        problems.push_back(JsonObject().number("line", problem.line).text("message", problem.message));
    console.print(JsonObject()
                      .text("file", options.file)
                      .number("materials", static_cast<double>(file.entries.size()))
                      .array("problems", problems)
                      .toText());
}

void printText(Console& console, const CheckOptions& options, const DeclarationFile& file) {
    for (const DeclarationProblem& problem : file.problems)
        console.print(toText(options.file, problem));
    if (file.problems.empty())
        console.print(fmt::format("{}: no problems; materials: {}", options.file, file.entries.size()));
}

// Without a session: a file can be checked on a machine that has no device.
int runCheck(Console& console, CheckOptions options) {
    DeclarationFile file;
    String error;
    const String name = options.file == "-" ? "standard input" : options.file;
    InputFile standardInput;
    if (!standardInput.open(options.file, console, error) || !checkDeclarationFile(options.file, file, error))
        return console.fail(error);
    options.file = name;
    const auto print = options.json ? printJson : printText;
    print(console, options, file);
    // A status that scripts and hooks of version control can act on.
    return file.problems.empty() ? 0 : 1;
}

} // namespace

void addCheckCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* check = program.add_subcommand("check", "list every problem of a file of materials");
    check->add_option("FILE", options->file, "file of material declarations (JSON)")->required();
    addJsonOption(*check, options->json);
    check->footer("Prints FILE:LINE: and what is wrong there; the exit status is 1 if anything is.");
    check->callback([options, &command] {
        command = [options](Console& console) { return runCheck(console, *options); };
    });
}

} // namespace veldris

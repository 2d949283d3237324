// veldris help: the help of a subcommand.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <veldris/console/Console.h>
#include <veldris/usage/HelpText.h>
#include <veldris/usage/UsageMistakes.h>

namespace veldris {

namespace {

constexpr int WRONG_NAME = 2;

int runHelp(Console& console, CLI::App& program, const ovMemory::Buffer<ovMemory::String>& names) {
    ovMemory::String error;
    const CLI::App* app = findSubcommand(program, names, error);
    if (!app) {
        console.fail(error);
        return WRONG_NAME;
    }
    console.print(helpOf(*app));
    return 0;
}

} // namespace

void addHelpCommand(CLI::App& program, Command& command) {
    auto names = std::make_shared<ovMemory::Buffer<ovMemory::String>>();
    CLI::App* help = program.add_subcommand("help", "show the help of a subcommand");
    help->add_option("SUBCOMMAND", *names, "its name, as bake, or bake prefilter");
    help->callback([names, &program, &command] {
        command = [names, &program](Console& console) { return runHelp(console, program, *names); };
    });
}

} // namespace veldris

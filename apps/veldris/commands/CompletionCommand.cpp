// veldris completion and manual: what shells and man know of the program, from its own description.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <veldris/console/Console.h>
#include <veldris/usage/Completion.h>
#include <veldris/usage/ManualPage.h>

namespace veldris {

void addCompletionCommand(CLI::App& program, Command& command) {
    auto shell = std::make_shared<ovMemory::String>();
    CLI::App* completion =
        program.add_subcommand("completion", "print a script that completes words in a shell");
    completion->add_option("SHELL", *shell, "bash or zsh")->required()->check(CLI::IsMember({"bash", "zsh"}));
    completion->footer("Example: source <(veldris completion bash)");
    completion->callback([shell, &program, &command] {
        command = [shell, &program](Console& console) {
            const CommandDescription described = describe(program);
            console.print(*shell == "bash" ? bashCompletion(described) : zshCompletion(described));
            return 0;
        };
    });
}

void addManualCommand(CLI::App& program, Command& command) {
    CLI::App* manual = program.add_subcommand("manual", "print the manual page");
    manual->footer("Example: veldris manual >veldris.1; man ./veldris.1");
    manual->callback([&program, &command] {
        command = [&program](Console& console) {
            console.print(manualPage(describe(program), OV_VERSION));
            return 0;
        };
    });
}

} // namespace veldris

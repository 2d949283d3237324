#include <veldris/usage/ProgramDescription.h>

#include <CLI/CLI.hpp>
#include <veldris/usage/HelpText.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

/// The values of an option whose type is written as TEXT:{glsl,hlsl}.
Buffer<String> choicesOf(StringView type) {
    Buffer<String> choices;
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    if (open == StringView::npos || close == StringView::npos)
        return choices;
    StringView list = type.substr(open + 1, close - open - 1);
    while (!list.empty()) {
        const StringView choice = list.substr(0, list.find(','));
        choices.emplace_back(choice);
        list.remove_prefix(std::min(choice.size() + 1, list.size()));
    }
    return choices;
}

OptionDescription describeOption(const CLI::Option& option) {
    OptionDescription described;
    for (const String& name : option.get_lnames())
        described.longNames.push_back("--" + name);
    for (const String& name : option.get_snames())
        described.shortName = "-" + name;
    if (option.get_positional())
        described.place = option.get_name(true, false);
    described.help = option.get_description();
    described.takesValue = option.get_items_expected_max() > 0;
    described.isRequired = option.get_required();
    described.choices = choicesOf(option.get_type_name());
    described.defaultValue = option.get_default_str();
    return described;
}

} // namespace

CommandDescription describe(const CLI::App& program) {
    CommandDescription described{
        commandPath(program), program.get_description(), program.get_footer(), {}, {}};
    for (const CLI::Option* option : program.get_options())
        described.options.push_back(describeOption(*option));
    for (const CLI::App* subcommand : program.get_subcommands([](const CLI::App*) { return true; }))
        described.subcommands.push_back(describe(*subcommand));
    return described;
}

} // namespace veldris

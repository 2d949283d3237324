#include <veldris/usage/UsageMistakes.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovVeldris/core/NearestName.h>
#include <veldris/usage/HelpText.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

/// The command that shows the help of an app.
String helpCommandOf(const CLI::App& app) {
    const String path = commandPath(app);
    const std::size_t space = path.find(' ');
    return space == String::npos ? path + " help" : path.substr(0, space) + " help" + path.substr(space);
}

Buffer<const CLI::App*> subcommandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::App* findByName(const CLI::App& app, StringView name) {
    for (const CLI::App* subcommand : subcommandsOf(app))
        if (subcommand->get_name() == name)
            return subcommand;
    return nullptr;
}

String listOf(const Buffer<String>& names) {
    return fmt::format("{}", fmt::join(names, ", "));
}

Buffer<String> subcommandNames(const CLI::App& app) {
    Buffer<String> names;
    for (const CLI::App* subcommand : subcommandsOf(app))
        names.push_back(subcommand->get_name());
    return names;
}

String unknownSubcommand(const CLI::App& app, StringView name) {
    const Buffer<String> names = subcommandNames(app);
    return fmt::format("{} has no subcommand '{}'; it has {}.{}", commandPath(app), name, listOf(names),
                       ovVeldris::nearestNameHint(name, {names.begin(), names.end()}));
}

String unknownOption(const CLI::App& app, StringView name) {
    Buffer<String> names;
    for (const CLI::Option* option : app.get_options())
        for (const String& longName : option->get_lnames())
            names.push_back("--" + longName);
    return fmt::format("{} has no option '{}'; '{}' lists them.{}", commandPath(app), name,
                       helpCommandOf(app), ovVeldris::nearestNameHint(name, {names.begin(), names.end()}));
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isOption(StringView argument) {
    return argument.size() > 1 && argument[0] == '-' && (argument[1] == '-' || isLetter(argument[1]));
}

/// The name of an argument that is an option: without its value.
StringView nameOf(StringView argument) {
    return argument[1] == '-' ? argument.substr(0, argument.find('=')) : argument.substr(0, 2);
}

} // namespace

String usageMistake(const CLI::App& program, ovMemory::BufferView<const char* const> arguments,
                    StringView parserMessage) {
    const CLI::App* app = &program;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const StringView argument = arguments[i];
        if (argument == "--")
            break;
        if (isOption(argument)) {
            const StringView name = nameOf(argument);
            const CLI::Option* option = app->get_option_no_throw(String(name));
            if (!option)
                return unknownOption(*app, name);
            if (takesValue(*option) && name.size() == argument.size())
                ++i; // its value, which may begin with a dash
            continue;
        }
        if (const CLI::App* subcommand = findByName(*app, argument))
            app = subcommand;
        else if (!subcommandsOf(*app).empty())
            return unknownSubcommand(*app, argument);
    }
    if (!subcommandsOf(*app).empty())
        return fmt::format("{} needs a subcommand: {}; '{}' tells more.", commandPath(*app),
                           listOf(subcommandNames(*app)), helpCommandOf(*app));
    return fmt::format("{}: {}; '{}' tells more.", commandPath(*app), parserMessage, helpCommandOf(*app));
}

CLI::App* findSubcommand(CLI::App& program, const Buffer<String>& names, String& error) {
    CLI::App* app = &program;
    for (const String& name : names) {
        if (!findByName(*app, name)) {
            error = subcommandsOf(*app).empty() ? fmt::format("{} has no subcommands; '{}' shows its help.",
                                                              commandPath(*app), helpCommandOf(*app))
                                                : unknownSubcommand(*app, name);
            return nullptr;
        }
        app = app->get_subcommand(name);
    }
    return app;
}

} // namespace veldris

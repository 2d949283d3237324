#include <veldris/usage/Completion.h>

#include <fmt/format.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

/// Commands in one list, parents first.
void flatten(const CommandDescription& command, Buffer<const CommandDescription*>& all) {
    all.push_back(&command);
    for (const CommandDescription& subcommand : command.subcommands)
        flatten(subcommand, all);
}

Buffer<const CommandDescription*> allCommands(const CommandDescription& program) {
    Buffer<const CommandDescription*> all;
    flatten(program, all);
    return all;
}

StringView lastWord(StringView path) {
    return path.substr(path.rfind(' ') + 1);
}

Buffer<String> namesOf(const OptionDescription& option) {
    Buffer<String> names = option.longNames;
    if (!option.shortName.empty())
        names.push_back(option.shortName);
    return names;
}

/// How a shell names the words of the line.
struct LineWords {
    StringView first; ///< place of the word behind the program's
    StringView last;  ///< place of the word that is completed
    StringView at;    ///< the word at the place i
};

/// The head of both scripts: "called" becomes the command that the words lead to.
String followWords(const Buffer<const CommandDescription*>& commands, const LineWords& words) {
    const String& program = commands.front()->path;
    String cases;
    for (const CommandDescription* command : commands)
        if (command->path != program)
            cases += fmt::format("        \"{0}\") called=\"{0}\" ;;\n", command->path);
    return fmt::format("_{0}() {{\n"
                       "    local called={0} i\n"
                       "    for ((i = {1}; i < {2}; ++i)); do\n"
                       "        case \"$called {3}\" in\n{4}"
                       "        esac\n"
                       "    done\n",
                       program, words.first, words.last, words.at, cases);
}

/// What may follow a command: subcommands, choices that stand by their place, and options.
String wordsOf(const CommandDescription& command) {
    Buffer<String> words;
    for (const CommandDescription& subcommand : command.subcommands)
        words.emplace_back(lastWord(subcommand.path));
    for (const OptionDescription& option : command.options) {
        const Buffer<String> more = option.place.empty() ? option.longNames : option.choices;
        words.insert(words.end(), more.begin(), more.end());
    }
    return fmt::format("{}", fmt::join(words, " "));
}

String bashValues(const CommandDescription& command) {
    String cases;
    for (const OptionDescription& option : command.options) {
        if (!option.takesValue)
            continue;
        for (const String& name : namesOf(option))
            cases += fmt::format("    \"{} {}\") words=\"{}\" ;;\n", command.path, name,
                                 fmt::join(option.choices, " "));
    }
    return cases;
}

/// Text within single quotes and brackets of a specification of zsh.
String zshText(StringView text) {
    String escaped;
    for (const char character : text) {
        if (character == '\'')
            escaped += "'\\''";
        else if (character == '[' || character == ']' || character == ':' || character == '\\')
            escaped.append(1, '\\').append(1, character);
        else
            escaped += character;
    }
    return escaped;
}

String zshAction(const OptionDescription& option) {
    return option.choices.empty() ? "_files" : fmt::format("({})", fmt::join(option.choices, " "));
}

String zshArguments(const CommandDescription& command) {
    String lines;
    for (const OptionDescription& option : command.options) {
        const String value = option.takesValue ? ":value:" + zshAction(option) : "";
        for (const String& name : namesOf(option))
            lines += fmt::format(" \\\n            '{}{}[{}]{}'", name,
                                 option.takesValue && name.starts_with("--") ? "=" : "", zshText(option.help),
                                 value);
    }
    String words;
    for (const CommandDescription& subcommand : command.subcommands)
        words.append(words.empty() ? "" : " ").append(lastWord(subcommand.path));
    String places = "_files";
    for (const OptionDescription& option : command.options)
        if (!option.place.empty() && !option.choices.empty())
            places = zshAction(option);
    return lines +
           fmt::format(" \\\n            '*:argument:{}'", words.empty() ? places : "(" + words + ")");
}

} // namespace

String bashCompletion(const CommandDescription& program) {
    const auto commands = allCommands(program);
    String script =
        fmt::format("# Completion of {0} for bash, made by '{0} completion bash'.\n", program.path);
    script += followWords(commands, {"1", "COMP_CWORD", "${COMP_WORDS[i]}"});
    script += "    local word=${COMP_WORDS[COMP_CWORD]} words=\"\"\n"
              "    case \"$called ${COMP_WORDS[COMP_CWORD - 1]}\" in\n";
    for (const CommandDescription* command : commands)
        script += bashValues(*command);
    script += "    *) case \"$called\" in\n";
    for (const CommandDescription* command : commands)
        script += fmt::format("        \"{}\") words=\"{}\" ;;\n", command->path, wordsOf(*command));
    // Without a word that fits, the shell's own completion of files takes over.
    return script + fmt::format("        esac ;;\n"
                                "    esac\n"
                                "    COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
                                "}}\n"
                                "complete -o default -F _{0} {0}\n",
                                program.path);
}

String zshCompletion(const CommandDescription& program) {
    const auto commands = allCommands(program);
    String script = fmt::format("#compdef {0}\n# Completion of {0} for zsh, made by '{0} completion zsh'.\n",
                                program.path);
    script += followWords(commands, {"2", "CURRENT", "$words[i]"}) + "    case \"$called\" in\n";
    for (const CommandDescription* command : commands)
        script +=
            fmt::format("    \"{}\")\n        _arguments{} ;;\n", command->path, zshArguments(*command));
    return script + fmt::format("    esac\n}}\n_{} \"$@\"\n", program.path);
}

} // namespace veldris

#include <veldris/scripting/Prompt.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <optional>
#include <ovScripts/Environment.h>
#include <unistd.h>
#include <veldris/console/Console.h>

// Last: it is a header of C that includes nothing of its own before.
#include <editline/readline.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

constexpr const char* FIRST_PROMPT = "> ";
constexpr const char* NEXT_PROMPT = ">> ";
// What the interpreter says of a text that only lacks its end.
constexpr StringView UNFINISHED = "near <eof>";

// The line editor and signals take plain functions, which find the environment here.
ovScripts::Environment* promptEnvironment =
    nullptr; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

char* nextCompletion(const char* text, int index) {
    static ovMemory::Buffer<String> names;
    if (index == 0)
        names = promptEnvironment->getCompletions(text);
    const auto position = static_cast<std::size_t>(index);
    return position < names.size() ? strdup(names[position].c_str()) : nullptr;
}

char** complete(const char* text, int, int) {
    rl_attempted_completion_over = 1; // no names of files
    return rl_completion_matches(text, nextCompletion);
}

/// Lines of a terminal or of a pipe.
class Lines {
public:
    explicit Lines(ovScripts::Environment& environment)
        : _isTerminal(isatty(STDIN_FILENO)) {
        promptEnvironment = &environment;
        rl_attempted_completion_function = complete;
        rl_completion_append_character = '\0'; // a dot or a bracket follows more often than a blank
        static char breaks[] = " \t\n\"'(){}[]=+-*/,;<>~#%^&|";
        rl_completer_word_break_characters = breaks;
    }

    bool isTerminal() const { return _isTerminal; }

    std::optional<String> read(const char* prompt) const {
        String line;
        if (!_isTerminal)
            return std::getline(std::cin, line) ? std::optional(line) : std::nullopt;
        const std::unique_ptr<char, decltype(&std::free)> typed(readline(prompt), &std::free);
        if (!typed)
            return std::nullopt;
        if (*typed)
            add_history(typed.get());
        return String(typed.get());
    }

private:
    bool _isTerminal;
};

ovScripts::Script compiled(const String& text) {
    ovScripts::Script script;
    script.setName("prompt");
    script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
    script.setSources(text);
    script.load();
    return script;
}

// An expression is run so that its values are printed.
ovScripts::Script compiledLine(const String& text) {
    ovScripts::Script expression =
        compiled("local function show(first, ...) if first ~= nil then print(first) end "
                 "if select('#', ...) > 0 then show(...) end end show(" +
                 text + "\n)");
    return expression.isLoaded() ? expression : compiled(text);
}

bool isUnfinished(const ovScripts::Script& script) {
    return !script.isLoaded() && script.getLastCompilationResult()._failureMessage.ends_with(UNFINISHED);
}

/// While it lives, the keys that end a program (Ctrl-C) only end the line that runs, with its threads.
class InterruptKeys {
public:
    InterruptKeys() {
        _before = std::signal(SIGINT, [](int) { promptEnvironment->interrupt(); });
    }
    ~InterruptKeys() { std::signal(SIGINT, _before); }
    InterruptKeys(const InterruptKeys&) = delete;
    InterruptKeys& operator=(const InterruptKeys&) = delete;

private:
    void (*_before)(int);
};

bool execute(ovScripts::Environment& environment, const ovScripts::Script& script) {
    if (!environment.getOptions().isInterruptible)
        return environment.execute(script);
    const InterruptKeys keys;
    const bool done = environment.execute(script);
    if (environment.isInterrupted())
        environment.restartLimits();
    return done;
}

// @return whether there was no error
bool runLine(Console& console, ovScripts::Environment& environment, const ovScripts::Script& script) {
    if (!script.isLoaded())
        console.fail(script.getLastCompilationResult()._failureMessage);
    else if (!execute(environment, script))
        console.fail(environment.getLastExecutionResult().error);
    else
        return true;
    return false;
}

} // namespace

int runPrompt(Console& console, ovScripts::Environment& environment) {
    const Lines lines(environment);
    bool areAllDone = true;
    String text;
    while (const std::optional<String> line = lines.read(text.empty() ? FIRST_PROMPT : NEXT_PROMPT)) {
        text += *line + '\n';
        const ovScripts::Script script = compiledLine(text);
        if (isUnfinished(script))
            continue;
        text.clear();
        areAllDone &= runLine(console, environment, script);
    }
    if (!text.empty())
        areAllDone &= runLine(console, environment, compiled(text));
    return areAllDone || lines.isTerminal() ? 0 : 1;
}

} // namespace veldris

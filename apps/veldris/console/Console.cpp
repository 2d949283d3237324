#include <veldris/console/Console.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

constexpr int FAILED = 1;

// Not fmt::print, which throws where a stream is full: finish() tells that once.
void writeLine(std::FILE* stream, const String& line) {
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetterAt(StringView text, std::size_t place) {
    return place < text.size() && std::isalnum(static_cast<unsigned char>(text[place]));
}

/// A message without its quoted names and numbers. An apostrophe between letters is no quote.
String kindOf(StringView message) {
    String kind;
    bool isQuoted = false;
    for (std::size_t i = 0; i < message.size(); ++i) {
        const bool isMark = message[i] == '\'' || message[i] == '"';
        if (isMark && !isLetterAt(message, isQuoted ? i + 1 : i - 1))
            isQuoted = !isQuoted;
        else if (!isQuoted && !isDigit(message[i]))
            kind += message[i];
    }
    return kind;
}

} // namespace

Console::Console(bool isJson, Progress::Clock::time_point start)
    : _isJson(isJson)
    , _progress(!isJson && isatty(STDERR_FILENO), start) {}

int Console::fail(StringView message) {
    _progress.clearLine();
    _tellWarnings();
    const String named = _named(message);
    writeLine(stderr,
              _isJson ? JsonObject().text("error", named).toText() : fmt::format("veldris: {}", named));
    return FAILED;
}

void Console::warn(StringView message) {
    if (message.empty())
        return;
    String kind = kindOf(message);
    const auto known = std::ranges::find(_warnings, kind, &Warning::kind);
    if (known == _warnings.end())
        _warnings.push_back({std::move(kind), _named(message)});
    else
        ++known->count;
}

void Console::warnEach(const ovMemory::Buffer<String>& messages) {
    for (const String& message : messages)
        warn(message);
}

ovMemory::Buffer<JsonObject> Console::reportSteps() {
    ovMemory::Buffer<JsonObject> steps;
    for (const StepTime& step : _progress.getSteps()) {
        if (!_isJson)
            print(fmt::format("{:10.3f} ms  {}", step.milliseconds, step.name));
        steps.push_back(JsonObject().text("step", step.name).number("milliseconds", step.milliseconds));
    }
    return steps;
}

void Console::callFile(StringView path, StringView name) {
    _names.emplace_back(fmt::format("'{}'", path), name);
}

void Console::print(StringView line) {
    _progress.clearLine();
    writeLine(_outputIsData ? stderr : stdout, String(line));
}

int Console::finish(int status) {
    _tellWarnings();
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (isWritten)
        return status;
    const int code = errno;
    std::clearerr(stdout);
    return fail(fmt::format("standard output could not be written: {}; free space or write elsewhere.",
                            std::generic_category().message(code)));
}

String Console::_named(StringView message) const {
    String named(message);
    for (const auto& [path, name] : _names)
        for (std::size_t at = named.find(path); at != String::npos; at = named.find(path, at + name.size()))
            named.replace(at, path.size(), name);
    return named;
}

void Console::_tellWarnings() {
    _progress.clearLine();
    for (const Warning& warning : _warnings) {
        if (_isJson)
            writeLine(stderr,
                      JsonObject().text("warning", warning.example).number("count", warning.count).toText());
        else if (warning.count == 1)
            writeLine(stderr, fmt::format("veldris: warning: {}", warning.example));
        else
            writeLine(stderr, fmt::format("veldris: warning: {} ({} more of this kind)", warning.example,
                                          warning.count - 1));
    }
    _warnings.clear();
}

} // namespace veldris

#include <ovLog/ConsoleLogger.h>

#include <exception>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

namespace ovLog {

struct ConsoleLogger::Output {
    ovMemory::UniquePtr<spdlog::sinks::sink> sink;
};

namespace {

ovMemory::UniquePtr<spdlog::sinks::sink> makeSink(CONSOLE_STREAM stream) {
    if (stream == CONSOLE_STREAM::STANDARD_OUTPUT)
        return std::make_unique<spdlog::sinks::stdout_sink_mt>();
    return std::make_unique<spdlog::sinks::stderr_sink_mt>();
}

ovMemory::String indentFurtherLines(StringView message) {
    ovMemory::String text;
    for (const char character : message) {
        text += character;
        if (character == '\n')
            text += "    ";
    }
    return text;
}

} // namespace

ConsoleLogger::ConsoleLogger(CONSOLE_STREAM stream)
    : _output(new Output{makeSink(stream)}) {
    // A sink and not a logger of the library's: loggers are registered by name for the whole process, and a
    // host may use the same library.
    _output->sink->set_pattern("[%n] %v");
}

ConsoleLogger::~ConsoleLogger() = default;

void ConsoleLogger::log(StringView message, StringView sender) {
    try {
        const bool hasLines = message.find('\n') != StringView::npos;
        const ovMemory::String indented = hasLines ? indentFurtherLines(message) : ovMemory::String();
        const StringView text = hasLines ? StringView(indented) : message;
        _output->sink->log(spdlog::details::log_msg({sender.data(), sender.size()}, spdlog::level::info,
                                                    {text.data(), text.size()}));
    } catch (const std::exception&) {
        // A console that cannot be written to leaves nowhere to report it.
    }
}

} // namespace ovLog

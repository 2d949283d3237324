#include <veldris/usage/HelpText.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

constexpr std::size_t DEFAULT_WIDTH = 100;
constexpr std::size_t LEAST_WIDTH = 40; // narrower, the columns of options leave no room for their texts
constexpr std::size_t OPTION_COLUMN = 28;

/// Where the text of the last column of a line begins.
std::size_t lastColumnOf(StringView line, std::size_t width) {
    const std::size_t indentation = std::min(line.find_first_not_of(' '), line.size());
    // A gap that far to the right would leave a column of single words.
    const std::size_t gap = line.substr(0, width / 2).rfind("  ");
    return gap == StringView::npos ? indentation : std::max(indentation, gap + 2);
}

void appendWrapped(String& wrapped, StringView line, std::size_t width) {
    line = line.substr(0, line.find_last_not_of(' ') + 1);
    const std::size_t column = lastColumnOf(line, width);
    wrapped.append(line.substr(0, column));
    line.remove_prefix(column);
    std::size_t used = column;
    bool startsLine = true;
    while (!line.empty()) {
        // A word with the space before it.
        StringView word = line.substr(0, line.find(' ', 1));
        line.remove_prefix(word.size());
        if (!startsLine && used + word.size() > width) {
            wrapped.append("\n").append(column, ' ');
            word.remove_prefix(1);
            used = column;
        }
        startsLine = false;
        wrapped.append(word);
        used += word.size();
    }
}

/// Breaks the lines of what the parser's library writes.
class WrappedHelp final : public CLI::Formatter {
public:
    WrappedHelp() { column_width(OPTION_COLUMN); }
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        return wrapText(CLI::Formatter::make_help(app, std::move(name), mode), helpWidth());
    }

protected:
    /// A space more, so that the gap before the text is one even behind a name that nearly fills the column.
    std::string make_option_opts(const CLI::Option* option) const override {
        return CLI::Formatter::make_option_opts(option) + " ";
    }
};

void setHelp(CLI::App& app, const std::shared_ptr<CLI::FormatterBase>& formatter) {
    app.formatter(formatter);
    for (CLI::App* subcommand : app.get_subcommands([](CLI::App*) { return true; }))
        setHelp(*subcommand, formatter);
}

} // namespace

String wrapText(StringView text, std::size_t width) {
    String wrapped;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        appendWrapped(wrapped, text.substr(0, end), width);
        if (end == StringView::npos)
            break;
        wrapped += '\n';
        text.remove_prefix(end + 1);
    }
    return wrapped;
}

std::size_t helpWidth() {
    std::size_t width = 0;
    if (const char* columns = std::getenv("COLUMNS"))
        std::from_chars(columns, columns + std::strlen(columns), width);
    winsize window = {};
    if (width == 0 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0)
        width = window.ws_col;
    return width == 0 ? DEFAULT_WIDTH : std::max(width, LEAST_WIDTH);
}

String commandPath(const CLI::App& app) {
    return app.get_parent() ? commandPath(*app.get_parent()) + " " + app.get_name() : app.get_name();
}

String helpOf(const CLI::App& app) {
    // Not app.help(), which shows the help of the subcommand that was chosen: help itself.
    String text = app.get_formatter()->make_help(&app, commandPath(app), CLI::AppFormatMode::Normal);
    text.pop_back();
    return text;
}

void wrapHelp(CLI::App& program) {
    setHelp(program, std::make_shared<WrappedHelp>());
}

} // namespace veldris

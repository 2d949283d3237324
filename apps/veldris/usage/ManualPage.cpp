#include <veldris/usage/ManualPage.h>

#include <fmt/format.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

/// Text of a page: hyphens that stay hyphens, and no line that is taken for a request.
String roff(StringView text) {
    String escaped;
    bool startsLine = true;
    for (const char character : text) {
        if (startsLine && (character == '.' || character == '\''))
            escaped += "\\&";
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else
            escaped += character;
        startsLine = character == '\n';
    }
    return escaped;
}

String bold(StringView text) {
    return "\\fB" + roff(text) + "\\fR";
}

String optionText(const OptionDescription& option) {
    String names = option.place.empty() ? "" : "\\fI" + roff(option.place) + "\\fR";
    for (const String& name : option.longNames)
        names.append(names.empty() ? "" : ", ").append(bold(name));
    if (!option.shortName.empty())
        names.append(", ").append(bold(option.shortName));
    if (option.takesValue && option.place.empty())
        names += option.choices.empty()
                     ? " \\fIVALUE\\fR"
                     : fmt::format(" {}", roff(fmt::format("{}", fmt::join(option.choices, "|"))));
    String text = ".TP\n" + names + "\n" + roff(option.help);
    if (!option.defaultValue.empty())
        text += " (default: " + roff(option.defaultValue) + ")";
    return text + "\n";
}

String usageOf(const CommandDescription& command) {
    String usage = bold(command.path);
    for (const OptionDescription& option : command.options)
        if (!option.place.empty())
            usage += (option.isRequired ? " \\fI" : " [\\fI") + roff(option.place) +
                     (option.isRequired ? "\\fR" : "\\fR]");
    return usage + (command.subcommands.empty() ? " [\\fIOPTION\\fR]..." : " \\fISUBCOMMAND\\fR...");
}

void appendCommand(const CommandDescription& command, String& page) {
    page +=
        fmt::format(".SS \"{}\"\n{}\n.PP\n{}\n", roff(command.path), usageOf(command), roff(command.help));
    for (const OptionDescription& option : command.options)
        page += optionText(option);
    if (!command.footer.empty())
        page += ".PP\n.nf\n" + roff(command.footer) + "\n.fi\n";
    for (const CommandDescription& subcommand : command.subcommands)
        appendCommand(subcommand, page);
}

} // namespace

String manualPage(const CommandDescription& program, StringView version) {
    String page = fmt::format(".TH VELDRIS 1 \"\" \"{0} {1}\"\n.SH NAME\n{0} \\- {2}\n.SH SYNOPSIS\n{3}\n",
                              program.path, version, roff(program.help), usageOf(program));
    page += ".SH OPTIONS\n";
    for (const OptionDescription& option : program.options)
        page += optionText(option);
    page += ".SH SUBCOMMANDS\n";
    for (const CommandDescription& subcommand : program.subcommands)
        appendCommand(subcommand, page);
    return page + ".SH EXIT STATUS\n0 when the work is done, 1 when it failed, 2 when the call was wrong.\n";
}

} // namespace veldris

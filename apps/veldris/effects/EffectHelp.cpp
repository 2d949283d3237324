#include <veldris/effects/EffectHelp.h>

#include <fmt/format.h>
#include <veldris/effects/EffectPlan.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

String contentText(const std::optional<PICTURE_CONTENT>& content, StringView otherwise) {
    return content ? toText(*content) : String(otherwise);
}

String settingHelp(const ovVeldris::EffectKind& kind, const ovVeldris::Setting& setting) {
    constexpr int NAME_WIDTH = 18;
    String text = fmt::format("      {:<{}} {}", setting.name, NAME_WIDTH, setting.help);
    const String range = rangeText(setting);
    if (!range.empty())
        text += ", " + range;
    text += fmt::format(" (default {})\n",
                        isOfScene(kind, setting) ? "the scene's" : toText(setting, setting.defaultValue));
    if (!setting.choices.empty())
        text += fmt::format("      {:<{}} one of {}\n", "", NAME_WIDTH, fmt::join(setting.choices, ", "));
    if (!setting.onlyWith.setting.empty())
        text += fmt::format("      {:<{}} with {}={} only\n", "", NAME_WIDTH, setting.onlyWith.setting,
                            setting.onlyWith.value);
    return text;
}

} // namespace

String effectHelp() {
    String text = "Effects of --effects \"NAME[:SETTING=VALUE,...][;NAME...]\":\n";
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        text += fmt::format("\n  {}  {}\n", kind.getName(), kind.summary);
        text += fmt::format("      takes {}, gives {}\n", contentText(kind.takes, "any colours"),
                            contentText(kind.gives, "the same"));
        if (kind.readsScene())
            text += "      of veldris render alone, before effects over the picture: it reads the scene\n";
        for (const ovVeldris::Setting& setting : settingsInChain(kind))
            text += settingHelp(kind, setting);
    }
    return text;
}

} // namespace veldris

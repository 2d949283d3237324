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

/// @param byDefault of the setting, as text
String settingHelp(const ovVeldris::Setting& setting, const String& byDefault) {
    constexpr int NAME_WIDTH = 18;
    String text = fmt::format("      {:<{}} {}", setting.name, NAME_WIDTH, setting.help);
    const String range = rangeText(setting);
    if (!range.empty())
        text += ", " + range;
    text += fmt::format(" (default {})\n", byDefault);
    if (!setting.choices.empty())
        text += fmt::format("      {:<{}} one of {}\n", "", NAME_WIDTH, fmt::join(setting.choices, ", "));
    if (!setting.onlyWith.setting.empty())
        text += fmt::format("      {:<{}} with {}={} only\n", "", NAME_WIDTH, setting.onlyWith.setting,
                            setting.onlyWith.value);
    return text;
}

String kindHelp(const ovVeldris::EffectKind& kind) {
    String text;
    if (kind.readsScene())
        text += "      of veldris render alone, before effects over the picture: it reads the scene\n";
    for (const ovVeldris::Setting& setting : settingsInChain(kind))
        text += settingHelp(setting, isOfScene(kind, setting) ? String("the scene's")
                                                              : toText(setting, setting.defaultValue));
    return text;
}

String kindHelp(const ovVeldris::ComplexEffectKind& kind) {
    String text;
    if (kind.readsDepth())
        text +=
            "      of veldris render alone: it reads the scene's depth; focus=auto is the model's middle\n";
    for (const ovVeldris::Setting& setting : settingsInChain(kind))
        text += settingHelp(setting, toText(setting, setting.defaultValue));
    return text;
}

} // namespace

String effectHelp() {
    String text = "Effects of --effects \"NAME[:SETTING=VALUE,...][;NAME...]\":\n";
    for (const ChainKind& kind : chainKinds()) {
        text += fmt::format("\n  {}  {}\n", kind.getName(), kind.getSummary());
        text += fmt::format("      takes {}, gives {}\n", contentText(kind.takes(), "any colours"),
                            contentText(kind.gives(), "the same"));
        text += kind.single ? kindHelp(*kind.single) : kindHelp(*kind.complex);
    }
    return text;
}

} // namespace veldris

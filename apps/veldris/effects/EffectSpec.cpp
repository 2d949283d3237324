#include <veldris/effects/EffectSpec.h>

namespace veldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;

StringView trimmed(StringView text) {
    const std::size_t first = text.find_first_not_of(" \t\n");
    if (first == StringView::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\n") - first + 1);
}

/// Cuts text at the first separator: returns what stands before it and leaves what stands behind it.
StringView cutAt(StringView& text, char separator) {
    const std::size_t place = text.find(separator);
    const StringView head = text.substr(0, place);
    text = place == StringView::npos ? StringView() : text.substr(place + 1);
    return head;
}

bool parseSettings(StringView text, EffectSpec& effect, String& error) {
    while (!text.empty()) {
        const StringView piece = trimmed(cutAt(text, ','));
        const std::size_t equals = piece.find('=');
        const StringView name = trimmed(piece.substr(0, equals));
        // Vectors have commas too. A piece without '=' can only be more of the value before it.
        if (equals == StringView::npos && !effect.settings.empty()) {
            effect.settings.back().value.append(",").append(piece);
            continue;
        }
        if (equals == StringView::npos || name.empty()) {
            error = "effect '" + effect.name + "': '" + String(piece) + "' is no setting; write name=value.";
            return false;
        }
        effect.settings.push_back({String(name), String(trimmed(piece.substr(equals + 1)))});
    }
    return true;
}

} // namespace

bool parseEffectList(StringView text, ovMemory::Buffer<EffectSpec>& effects, String& error) {
    effects.clear();
    ovMemory::Buffer<EffectSpec> parsed;
    while (!trimmed(text).empty()) {
        StringView piece = trimmed(cutAt(text, ';'));
        // A semicolon at the end, or two of them, are no mistakes worth an error.
        if (piece.empty())
            continue;
        EffectSpec effect;
        effect.name = trimmed(cutAt(piece, ':'));
        if (effect.name.empty()) {
            error =
                "an effect has no name before '" + String(trimmed(piece)) + "'; write name:setting=value.";
            return false;
        }
        if (!parseSettings(trimmed(piece), effect, error))
            return false;
        parsed.push_back(std::move(effect));
    }
    if (parsed.empty()) {
        error = "the list of effects is empty; write for example \"tone-mapping:operator=aces\".";
        return false;
    }
    effects = std::move(parsed);
    return true;
}

String toText(const EffectSpec& effect) {
    String text = effect.name;
    char separator = ':';
    for (const SettingText& setting : effect.settings) {
        text.append(1, separator).append(setting.name).append("=").append(setting.value);
        separator = ',';
    }
    return text;
}

} // namespace veldris

#include <veldris/effects/ChainKinds.h>

#include <algorithm>
#include <ovVeldris/core/NearestName.h>

namespace veldris {

using ovMemory::String;
using ovVeldris::PICTURE_CONTENT;

// Blurred colours mean what they meant.
std::optional<PICTURE_CONTENT> ChainKind::takes() const {
    return single ? single->takes : std::nullopt;
}
std::optional<PICTURE_CONTENT> ChainKind::gives() const {
    return single ? single->gives : std::nullopt;
}

ovMemory::Buffer<ChainKind> chainKinds() {
    ovMemory::Buffer<ChainKind> kinds;
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds())
        kinds.push_back({.single = &kind});
    for (const ovVeldris::ComplexEffectKind& kind : ovVeldris::complexEffectKinds())
        kinds.push_back({.complex = &kind});
    std::ranges::sort(kinds, {}, &ChainKind::getName);
    return kinds;
}

std::optional<ChainKind> findChainKind(ovMemory::StringView name, String& error) {
    ovMemory::Buffer<String> names;
    String list;
    for (const ChainKind& kind : chainKinds()) {
        names.push_back(kind.getName());
        if (names.back() == name)
            return kind;
        list.append(list.empty() ? "" : ", ").append(names.back());
    }
    error = "there is no effect '" + String(name) + "'; the effects are " + list + "." +
            ovVeldris::nearestNameHint(name, {names.begin(), names.end()});
    return std::nullopt;
}

} // namespace veldris

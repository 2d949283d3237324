#include <ovImages/detail/ExrChannels.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <map>

namespace ovImages::detail {

namespace {

using String = ovMemory::String;
using StringView = ovMemory::StringView;

// The parts that a channel can play, with the names that say so.
enum class ROLE : unsigned int { RED, GREEN, BLUE, ALPHA, LUMINANCE, RED_CHROMA, BLUE_CHROMA, OTHER };

ROLE getRole(StringView baseName) {
    struct Entry {
        StringView name;
        ROLE role;
    };
    constexpr std::array<Entry, 11> ENTRIES = {{{"r", ROLE::RED},
                                                {"red", ROLE::RED},
                                                {"g", ROLE::GREEN},
                                                {"green", ROLE::GREEN},
                                                {"b", ROLE::BLUE},
                                                {"blue", ROLE::BLUE},
                                                {"a", ROLE::ALPHA},
                                                {"alpha", ROLE::ALPHA},
                                                {"y", ROLE::LUMINANCE},
                                                {"ry", ROLE::RED_CHROMA},
                                                {"by", ROLE::BLUE_CHROMA}}};
    // Programs write "R", "r" and "red".
    String lower(baseName);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto found =
        std::find_if(ENTRIES.begin(), ENTRIES.end(), [&](const Entry& e) { return e.name == lower; });
    return found == ENTRIES.end() ? ROLE::OTHER : found->role;
}

class Layer {
public:
    void add(const String& fullName, StringView baseName) {
        const ROLE role = getRole(baseName);
        String& slot = _byRole[static_cast<std::size_t>(role)];
        if (slot.empty())
            slot = fullName;
        // Alpha does not count: a mask beside one channel of data does not make the choice ambiguous.
        if (role != ROLE::ALPHA) {
            ++_countWithoutAlpha;
            _last = fullName;
        }
    }

    std::size_t countWithoutAlpha() const { return _countWithoutAlpha; }

    // Undecided when the layer has neither RGB nor luminance.
    ExrSelection selectColors() const {
        if (_has(ROLE::RED) && _has(ROLE::GREEN) && _has(ROLE::BLUE))
            return _withAlpha({_name(ROLE::RED), _name(ROLE::GREEN), _name(ROLE::BLUE)});
        if (!_has(ROLE::LUMINANCE))
            return {};
        if (!_has(ROLE::RED_CHROMA) || !_has(ROLE::BLUE_CHROMA))
            return _withAlpha({_name(ROLE::LUMINANCE)});
        ExrSelection selection =
            _withAlpha({_name(ROLE::LUMINANCE), _name(ROLE::RED_CHROMA), _name(ROLE::BLUE_CHROMA)});
        selection.isLuminanceChroma = true;
        return selection;
    }

    // The only channel there is, with alpha if any.
    ExrSelection selectSingle() const {
        if (_countWithoutAlpha == 1)
            return _withAlpha({_last});
        if (_countWithoutAlpha == 0 && _has(ROLE::ALPHA))
            return {{_name(ROLE::ALPHA)}, {}, false};
        return {};
    }

private:
    bool _has(ROLE role) const { return !_name(role).empty(); }
    const String& _name(ROLE role) const { return _byRole[static_cast<std::size_t>(role)]; }

    ExrSelection _withAlpha(ovMemory::Buffer<String> channels) const {
        if (_has(ROLE::ALPHA))
            channels.push_back(_name(ROLE::ALPHA));
        return {std::move(channels), {}, false};
    }

    std::array<String, 8> _byRole;
    std::size_t _countWithoutAlpha = 0;
    String _last;
};

using Layers = std::map<String, Layer, std::less<>>;

Layers groupByLayer(ovMemory::BufferView<const String> names) {
    Layers layers;
    for (const String& name : names) {
        // Layers may nest, and the part behind the last point is the channel.
        const std::size_t dot = name.rfind('.');
        const bool hasLayer = dot != String::npos;
        const String layer = hasLayer ? name.substr(0, dot) : String();
        layers[layer].add(name, hasLayer ? StringView(name).substr(dot + 1) : StringView(name));
    }
    return layers;
}

ExrSelection selectOnlyColored(const Layers& layers) {
    ExrSelection found;
    for (const auto& [name, layer] : layers) {
        ExrSelection selection = layer.selectColors();
        if (selection.channels.empty())
            continue;
        // Two layers with colours: any choice would be a guess, and the user can name one.
        if (!found.channels.empty())
            return {};
        found = std::move(selection);
        found.layer = name;
    }
    return found;
}

ExrSelection selectNamed(const Layers& layers, StringView name) {
    const auto found = layers.find(name);
    if (found == layers.end())
        return {};
    ExrSelection selection = found->second.selectColors();
    if (selection.channels.empty())
        selection = found->second.selectSingle();
    selection.layer = name;
    return selection;
}

bool hasColors(const Layers& layers) {
    return std::any_of(layers.begin(), layers.end(),
                       [](const auto& entry) { return !entry.second.selectColors().channels.empty(); });
}

} // namespace

ExrSelection selectExrChannels(ovMemory::BufferView<const String> names, StringView layer) {
    const Layers layers = groupByLayer(names);
    if (!layer.empty())
        return selectNamed(layers, layer);
    // The unnamed layer is the picture itself in files of renderers; named layers are its passes.
    const auto unnamed = layers.find("");
    if (unnamed != layers.end()) {
        ExrSelection selection = unnamed->second.selectColors();
        if (!selection.channels.empty())
            return selection;
    }
    if (hasColors(layers))
        return selectOnlyColored(layers);
    // Without colours, one channel beside alpha in the whole part decides.
    ExrSelection selection;
    std::size_t count = 0;
    for (const auto& [name, candidate] : layers) {
        count += candidate.countWithoutAlpha();
        ExrSelection single = candidate.selectSingle();
        const bool isBetter = candidate.countWithoutAlpha() == 1 || selection.channels.empty();
        if (single.channels.empty() || !isBetter)
            continue;
        selection = std::move(single);
        selection.layer = name;
    }
    return count <= 1 ? selection : ExrSelection();
}

ovMemory::Buffer<String> listExrLayers(ovMemory::BufferView<const String> names) {
    const Layers layers = groupByLayer(names);
    ovMemory::Buffer<String> found;
    for (const auto& [name, layer] : layers)
        if (!name.empty() && !selectNamed(layers, name).channels.empty())
            found.push_back(name);
    return found;
}

} // namespace ovImages::detail

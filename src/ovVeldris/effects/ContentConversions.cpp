#include <ovVeldris/effects/ContentConversions.h>

namespace ovVeldris {

namespace {

// Encoding is arithmetic and loses nothing. Between scene and display stands a choice of taste, which only a
// tone mapping makes.
bool canConvert(PICTURE_CONTENT from, PICTURE_CONTENT to) {
    return from != PICTURE_CONTENT::SCENE_LINEAR && to != PICTURE_CONTENT::SCENE_LINEAR;
}

} // namespace

std::optional<ContentMismatch>
planConversions(PICTURE_CONTENT source, ovMemory::BufferView<const EffectContent> effects,
                std::optional<PICTURE_CONTENT> target, ovMemory::StringView targetName,
                ovMemory::Buffer<ContentConversion>& conversions, PICTURE_CONTENT& content) {
    conversions.clear();
    content = source;
    ovMemory::String giver = "the input";
    // Effects that take anything hand on what they got, so what counts is the last content that somebody
    // fixed, and who gave it.
    const auto require = [&](std::size_t place, std::optional<PICTURE_CONTENT> wanted,
                             const ovMemory::String& taker) -> std::optional<ContentMismatch> {
        if (!wanted || *wanted == content)
            return std::nullopt;
        if (!canConvert(content, *wanted))
            return ContentMismatch{taker + " takes " + toText(*wanted) + " colours and " + giver + " gives " +
                                       toText(content) + " ones",
                                   content, place == effects.size()};
        conversions.push_back({place, content, *wanted});
        content = *wanted;
        return std::nullopt;
    };
    for (std::size_t i = 0; i < effects.size(); ++i) {
        const ovMemory::String name = "'" + effects[i].effect + "'";
        if (auto mismatch = require(i, effects[i].takes, name))
            return mismatch;
        if (effects[i].gives) {
            content = *effects[i].gives;
            giver = name;
        }
    }
    return require(effects.size(), target, ovMemory::String(targetName));
}

} // namespace ovVeldris

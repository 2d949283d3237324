#include <veldris/effects/ContentConversions.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

// Encoding is arithmetic and loses nothing. Between scene and display stands a choice of taste, which only a
// tone mapping makes.
bool canConvert(PICTURE_CONTENT from, PICTURE_CONTENT to) {
    return from != PICTURE_CONTENT::SCENE_LINEAR && to != PICTURE_CONTENT::SCENE_LINEAR;
}

String adviceFor(PICTURE_CONTENT from, bool toFile) {
    if (from == PICTURE_CONTENT::SCENE_LINEAR)
        return toFile ? "put a tone-mapping between them, write an EXR or HDR file, or use --raw"
                      : "put a tone-mapping between them, or use --raw";
    return "take that step away, say with --input-content what the file holds, or use --raw";
}

} // namespace

bool planConversions(PICTURE_CONTENT source, const Buffer<EffectContent>& effects,
                     std::optional<PICTURE_CONTENT> target, StringView targetName,
                     Buffer<ContentConversion>& conversions, PICTURE_CONTENT& result, String& error) {
    conversions.clear();
    PICTURE_CONTENT content = source;
    String giver = "the input";
    // Effects that take anything hand on what they got, so what counts is the last content that somebody
    // fixed, and who gave it.
    const auto require = [&](std::size_t place, std::optional<PICTURE_CONTENT> wanted, const String& taker) {
        if (!wanted || *wanted == content)
            return true;
        if (!canConvert(content, *wanted)) {
            error = taker + " takes " + toText(*wanted) + " colours and " + giver + " gives " +
                    toText(content) + " ones: " + adviceFor(content, place == effects.size()) + ".";
            return false;
        }
        conversions.push_back({place, content, *wanted});
        content = *wanted;
        return true;
    };
    for (std::size_t i = 0; i < effects.size(); ++i) {
        const String name = "'" + effects[i].effect + "'";
        if (!require(i, effects[i].takes, name))
            return false;
        if (effects[i].gives) {
            content = *effects[i].gives;
            giver = name;
        }
    }
    if (!require(effects.size(), target, String(targetName)))
        return false;
    result = content;
    return true;
}

} // namespace veldris

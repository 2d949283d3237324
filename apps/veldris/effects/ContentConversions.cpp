#include <veldris/effects/ContentConversions.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

String adviceFor(const ovVeldris::ContentMismatch& mismatch) {
    if (mismatch.from == PICTURE_CONTENT::SCENE_LINEAR)
        return mismatch.isAtEnd ? "put a tone-mapping between them, write an EXR or HDR file, or use --raw"
                                : "put a tone-mapping between them, or use --raw";
    return "take that step away, say with --input-content what the file holds, or use --raw";
}

} // namespace

bool planConversions(PICTURE_CONTENT source, const Buffer<EffectContent>& effects,
                     std::optional<PICTURE_CONTENT> target, StringView targetName,
                     Buffer<ContentConversion>& conversions, PICTURE_CONTENT& result, String& error) {
    PICTURE_CONTENT content{};
    if (const auto mismatch =
            ovVeldris::planConversions(source, effects, target, targetName, conversions, content)) {
        error = mismatch->text + ": " + adviceFor(*mismatch) + ".";
        return false;
    }
    result = content;
    return true;
}

} // namespace veldris

// Results, checks and warnings that the formats share. Internal to the library.
#pragma once

#include <ovImages/Encoder.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <initializer_list>

namespace ovImages::detail {

/// A failed DecodeResult or EncodeResult: "<format>: <text>".
template <typename RESULT>
RESULT failFormat(ovMemory::StringView format, ovMemory::StringView text) {
    return ovMemory::failed<RESULT>(ovMemory::String(format).append(": ").append(text));
}

/// Runs `decode` or `encode`, turning exceptions, of libraries or for lack of memory, into an error result.
template <typename RESULT, typename WORK>
RESULT runGuarded(ovMemory::StringView format, WORK work) {
    try {
        return work();
    } catch (const std::exception& exception) {
        return failFormat<RESULT>(format, exception.what());
    } catch (...) {
        return failFormat<RESULT>(format, "unknown failure");
    }
}

/// Encodes a view that is whole and whose component type the format holds, else says why not.
/// @param heldNames the types that it holds, as people call them: "half float or float"
template <typename WORK>
EncodeResult encodeHeld(ovMemory::StringView format, const ImageView& view,
                        std::initializer_list<COMPONENT_TYPE> held, ovMemory::StringView heldNames,
                        WORK encode) {
    ovMemory::String fault;
    if (!isValid(view, &fault))
        return failFormat<EncodeResult>(format, fault);
    if (std::ranges::find(held, view.componentType) == held.end())
        return failFormat<EncodeResult>(format, ovMemory::String("cannot hold ")
                                                    .append(getComponentTypeName(view.componentType))
                                                    .append(" components: convert to ")
                                                    .append(heldNames)
                                                    .append(" first"));
    return runGuarded<EncodeResult>(format, [&] { return encode(view); });
}

/// Empty when a picture of this size may be decoded, else the reason why not.
ovMemory::String describeExcessiveSize(std::uint64_t width, std::uint64_t height, std::uint64_t bytesPerPixel,
                                       const DecodeOptions& options);

/// Allocates the picture of a result; false, with the error set, when there is no memory for it.
bool allocateImage(DecodeResult& result, ovMemory::StringView format, unsigned width, unsigned height,
                   unsigned channels, COMPONENT_TYPE type, COLOR_ENCODING encoding);

/// Adds a sentence to a warning.
void appendWarning(ovMemory::String& warning, ovMemory::StringView text);

/// Warns that the format cannot record what the numbers mean, so that readers will take them for `expected`.
void warnOfEncoding(ovMemory::String& warning, const ImageView& view, ovMemory::StringView format,
                    COLOR_ENCODING expected);

/// Whether the picture has alpha that is not 1 everywhere.
bool hasTransparency(const ImageView& view);

/// Warns that alpha is dropped, when there is any that counts.
void warnOfDroppedAlpha(ovMemory::String& warning, const ImageView& view, ovMemory::StringView format);

} // namespace ovImages::detail

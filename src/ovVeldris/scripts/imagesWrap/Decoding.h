// Decoding for scripts, in whatever format.
#pragma once

#include <algorithm>
#include <ovImages/Encoder.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>

namespace ovImagesWrap {

/// Bytes of a file, as scripts hold them.
using FileBytes = ovMemory::Buffer<unsigned char>;

/// Adds the static functions "canDecode" and "decode" of an encoder.
template <typename EncoderClass>
void decodingFunctions(ovScripts::UserType& type, ovScripts::Environment* environment) {
    using namespace ovCommonWrap;
    staticFunction(
        type, "canDecode", [](const FileBytes& bytes) { return EncoderClass().canDecode(bytes); }, {"bytes"},
        "Whether the bytes begin as files of the format do.");
    staticFunction(
        type, "decode",
        [environment](const FileBytes& bytes) {
            ovImages::DecodeOptions options;
            options.applyOrientation = true;
            options.refuseDamaged = true;
            options.smoothChroma = true;
            if (const std::size_t limit = environment->getOptions().memoryLimit; limit > 0)
                options.maxBytes =
                    std::min(options.maxBytes, limit - std::min(limit, environment->getUsedMemory()));
            ovImages::DecodeResult result = EncoderClass().decode(bytes, options);
            if (!result)
                throw ArgumentError(result.error);
            return std::move(result.image);
        },
        {"bytes"}, "A new picture; an error with the reason when it cannot be decoded.");
}

} // namespace ovImagesWrap

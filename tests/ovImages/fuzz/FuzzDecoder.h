// What every fuzz target of a decoder does.
#pragma once

#include <ovImages/Encoder.h>

#include <cstdint>
#include <cstdlib>

/// Decodes the data in both strictnesses with little memory, and dies when a picture is not what it says.
template <typename ENCODER>
int fuzzDecoder(const std::uint8_t* data, std::size_t size) {
    const ENCODER encoder;
    ovImages::DecodeOptions options;
    options.maxBytes = std::size_t(16) << 20;
    for (const bool refuseDamaged : {true, false}) {
        options.refuseDamaged = refuseDamaged;
        const ovImages::DecodeResult result = encoder.decode({data, size}, options);
        const bool isSound = result ? result.error.empty() && ovImages::isValid(result.image->view()) &&
                                          result.image->getBytes().size() <= options.maxBytes
                                    : !result.error.empty();
        if (!isSound)
            std::abort();
    }
    return 0;
}

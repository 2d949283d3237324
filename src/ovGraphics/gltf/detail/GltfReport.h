// What goes wrong while a glTF file is read.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// Collects the warnings and the first error of one file, and counts the bytes that it makes us allocate.
class OV_API GltfReport {
public:
    /// Warnings kept beside the one that counts the rest.
    static constexpr std::size_t MAX_WARNINGS = 100;

    explicit GltfReport(std::size_t maxBytes)
        : _maxBytes(maxBytes)
        , _bytesLeft(maxBytes) {}

    /// Keeps one line of text; one that is there already is not repeated.
    void warn(ovMemory::String text);

    /// Keeps the text if it is the first error. @return false, so that callers can hand it on
    bool fail(ovMemory::String text);

    /// To be called before `count` elements of `size` bytes are allocated for `what`.
    /// @return false, after fail(), when all together would be more than the limit
    bool charge(std::size_t count, std::size_t size, ovMemory::StringView what);

    const ovMemory::String& getError() const { return _error; }
    /// The warnings, and a last one that counts those beyond the limit.
    ovMemory::Buffer<ovMemory::String> takeWarnings();

private:
    std::size_t _maxBytes;
    std::size_t _bytesLeft;
    std::size_t _unkeptWarnings = 0;
    ovMemory::Buffer<ovMemory::String> _warnings;
    ovMemory::String _error;
};

/// An object for messages: `mesh 3 "Wheel"`, or `mesh 3` without a name. Control characters become '?', and
/// long names are cut.
OV_API ovMemory::String describeGltf(ovMemory::StringView kind, std::size_t index, ovMemory::StringView name);

/// A text of the file for messages, in quotes.
OV_API ovMemory::String quoteGltf(ovMemory::StringView text);

} // namespace ovGraphics::detail

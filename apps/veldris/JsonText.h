// JSON for machines that read the program's results.
#pragma once

#include <ovMemory/Memory.h>

namespace veldris {

/// Builds one JSON object member by member. Values are written as given; nested values are other objects'
/// texts.
class JsonObject {
public:
    JsonObject& text(ovMemory::StringView key, ovMemory::StringView value);
    JsonObject& number(ovMemory::StringView key, double value);
    JsonObject& boolean(ovMemory::StringView key, bool value);
    JsonObject& object(ovMemory::StringView key, const JsonObject& value);
    JsonObject& array(ovMemory::StringView key, const ovMemory::Buffer<JsonObject>& values);
    JsonObject& texts(ovMemory::StringView key, const ovMemory::Buffer<ovMemory::String>& values);

    /// The object as one line.
    ovMemory::String toText() const { return "{" + _members + "}"; }

private:
    void _key(ovMemory::StringView key);

    ovMemory::String _members;
};

} // namespace veldris

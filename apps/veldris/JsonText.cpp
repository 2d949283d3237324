#include <veldris/JsonText.h>

#include <cmath>
#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

// A library's escaping and not one of our own: names of files may hold anything.
String quoted(StringView text) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    return String(buffer.GetString(), buffer.GetSize());
}

template <typename T, typename ToText>
String arrayText(const Buffer<T>& values, ToText toText) {
    String text;
    for (const T& value : values)
        text.append(text.empty() ? "" : ",").append(toText(value));
    return "[" + text + "]";
}

} // namespace

void JsonObject::_key(StringView key) {
    _members.append(_members.empty() ? "" : ",").append(quoted(key)).append(":");
}

JsonObject& JsonObject::text(StringView key, StringView value) {
    _key(key);
    _members += quoted(value);
    return *this;
}

JsonObject& JsonObject::number(StringView key, double value) {
    _key(key);
    _members += std::isfinite(value) ? fmt::format("{}", value) : "null"; // JSON has no infinities
    return *this;
}

JsonObject& JsonObject::boolean(StringView key, bool value) {
    _key(key);
    _members += value ? "true" : "false";
    return *this;
}

JsonObject& JsonObject::object(StringView key, const JsonObject& value) {
    _key(key);
    _members += value.toText();
    return *this;
}

JsonObject& JsonObject::array(StringView key, const Buffer<JsonObject>& values) {
    _key(key);
    _members += arrayText(values, [](const JsonObject& value) { return value.toText(); });
    return *this;
}

JsonObject& JsonObject::texts(StringView key, const Buffer<String>& values) {
    _key(key);
    _members += arrayText(values, [](const String& value) { return quoted(value); });
    return *this;
}

} // namespace veldris

#include <ovGraphics/gltf/detail/GltfJson.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <ovExport/JsonExporter.h>

namespace ovGraphics::detail {

using ovMemory::String;
using ovMemory::StringView;

namespace {

// Objects of glTF have a few dozen members. More are not looked at, lest look-ups in an object that is made
// for it take for ever.
constexpr unsigned int MAX_MEMBERS = 1024;
constexpr double LARGEST_EXACT_INTEGER = 9007199254740992.0; // 2^53
constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

unsigned int countMembers(const ovExport::Node* object) {
    return object ? std::min(object->getMemberCount(), MAX_MEMBERS) : 0;
}

} // namespace

GltfJson GltfJson::operator[](StringView name) const {
    for (unsigned int i = 0; i < countMembers(_value); ++i)
        if (_value->getMemberKey(i) == name)
            return GltfJson(_value->getMemberValueIndex(i));
    return {};
}

GltfJson GltfJson::at(std::size_t index) const {
    return index < getCount() ? GltfJson(_value->getArrayElement(static_cast<unsigned int>(index)))
                              : GltfJson();
}

ovMemory::Buffer<StringView> GltfJson::getNames() const {
    ovMemory::Buffer<StringView> names;
    for (unsigned int i = 0; i < countMembers(_value); ++i)
        names.push_back(_value->getMemberKey(i));
    return names;
}

std::optional<double> GltfJson::getNumber() const {
    return _value && _value->isValueTypeNumber() ? std::optional(_value->getValueAsDouble()) : std::nullopt;
}

std::optional<StringView> GltfJson::getString() const {
    return _value && _value->isString() ? std::optional(_value->getValueAsStringView()) : std::nullopt;
}

std::optional<std::size_t> GltfJson::getSize() const {
    const std::optional<double> number = getNumber();
    // Numbers with a point are taken if they are whole, as some exporters write 3.0 for an index. Beyond 2^53
    // doubles are not exact.
    if (!number || !(*number >= 0.0 && *number <= LARGEST_EXACT_INTEGER) || *number != std::floor(*number))
        return {};
    return static_cast<std::size_t>(*number);
}

GltfObject GltfObject::getObject(StringView name) const {
    const GltfJson member = _json[name];
    return {member.isObject() ? member : GltfJson(), fmt::format("{}, {}", _label, name), *_report};
}

GltfObject GltfObject::getExtension(StringView name) const {
    const GltfJson extension = _json["extensions"][name];
    return {extension.isObject() ? extension : GltfJson(), fmt::format("{}, {}", _label, name), *_report};
}

bool GltfObject::fail(StringView text) const {
    return _report->fail(fmt::format("{}: {}", _label, text));
}

void GltfObject::warn(StringView text) const {
    _report->warn(fmt::format("{}: {}", _label, text));
}

// A missing member is no error: the caller has set the default. A member that cannot be meant is one, because
// everything that refers to it would be wrong.
bool GltfObject::readIndex(StringView name, std::size_t count, StringView kind, int& index) const {
    const GltfJson member = _json[name];
    if (!member.exists())
        return true;
    const std::optional<std::size_t> value = member.getSize();
    if (!value)
        return fail(fmt::format("'{}' is no index", name));
    if (*value >= count)
        return fail(fmt::format("'{}' is {}, but the file has {} {}", name, *value, count, kind));
    index = static_cast<int>(*value);
    return true;
}

bool GltfObject::readIndices(StringView name, std::size_t count, StringView kind,
                             ovMemory::Buffer<unsigned int>& indices) const {
    const GltfJson array = _json[name];
    indices.reserve(array.getCount());
    for (std::size_t i = 0; i < array.getCount(); ++i) {
        const std::optional<std::size_t> value = array.at(i).getSize();
        if (!value || *value >= count)
            return fail(fmt::format("element {} of '{}' is {}, but the file has {} {}", i, name,
                                    value ? std::to_string(*value) : "no index", count, kind));
        indices.push_back(static_cast<unsigned int>(*value));
    }
    return true;
}

bool GltfObject::readSize(StringView name, std::size_t& size) const {
    const GltfJson member = _json[name];
    if (!member.exists())
        return true;
    const std::optional<std::size_t> value = member.getSize();
    if (!value)
        return fail(fmt::format("'{}' is no whole number from 0 to 2^53", name));
    size = *value;
    return true;
}

float GltfObject::readFloat(StringView name, float fallback, float minimum, float maximum) const {
    const GltfJson member = _json[name];
    if (!member.exists())
        return fallback;
    const std::optional<double> number = member.getNumber();
    if (!number) {
        warn(fmt::format("'{}' is no number; {} is taken instead", name, fallback));
        return fallback;
    }
    const double clamped = std::clamp(*number, double(minimum), double(maximum));
    if (clamped != *number)
        warn(fmt::format("'{}' is {}; {} is taken instead", name, *number, clamped));
    // Converting a double beyond the range of floats is undefined.
    return static_cast<float>(std::clamp(clamped, -LARGEST_FLOAT, LARGEST_FLOAT));
}

ovMaths::Vector GltfObject::readVector(StringView name, int count, const ovMaths::Vector& fallback,
                                       float minimum, float maximum) const {
    const GltfJson array = _json[name];
    if (!array.exists())
        return fallback;
    float values[4] = {fallback.x, fallback.y, fallback.z, fallback.w};
    // All or nothing: half a vector of the file with half of the default would be a colour that nobody chose.
    bool clean = array.getCount() == static_cast<std::size_t>(count);
    for (int i = 0; clean && i < count; ++i) {
        const std::optional<double> number = array.at(static_cast<std::size_t>(i)).getNumber();
        if (!number) {
            clean = false;
            break;
        }
        const double clamped = std::clamp(*number, double(minimum), double(maximum));
        if (clamped != *number)
            warn(fmt::format("element {} of '{}' is {}; {} is taken instead", i, name, *number, clamped));
        values[i] = static_cast<float>(std::clamp(clamped, -LARGEST_FLOAT, LARGEST_FLOAT));
    }
    if (!clean) {
        warn(fmt::format("'{}' is no array of {} numbers; its default is taken instead", name, count));
        return fallback;
    }
    return {values[0], values[1], values[2], values[3]};
}

unsigned int GltfObject::readEnum(StringView name, unsigned int fallback) const {
    const std::optional<std::size_t> value = _json[name].getSize();
    return value && *value <= 0xffffffffu ? static_cast<unsigned int>(*value) : fallback;
}

StringView GltfObject::readString(StringView name) const {
    return _json[name].getString().value_or(StringView());
}

GltfObject getGltfObject(const GltfJson& array, StringView kind, std::size_t index, GltfReport& report) {
    const GltfJson json = array.at(index);
    return {json, describeGltf(kind, index, json["name"].getString().value_or(StringView())), report};
}

ovMemory::UniquePtr<ovExport::Node> parseGltfJson(StringView text, String& error) {
    error.clear();
    ovExport::ExporterLoadResult result = ovExport::JsonExporter().importIntoTree(text);
    if (!result)
        error = fmt::format("the JSON is not valid: {}", result._error._errorInfo);
    else if (!result._tree->isObject())
        error = "the JSON is no object, so this is no glTF file";
    return error.empty() ? std::move(result._tree) : nullptr;
}

} // namespace ovGraphics::detail

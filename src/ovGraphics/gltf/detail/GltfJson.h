// The JSON of a glTF file, with checks that name what is wrong.
#pragma once

#include <limits>
#include <optional>
#include <ovCommon/Api.h>
#include <ovExport/Node.h>
#include <ovGraphics/gltf/detail/GltfReport.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics::detail {

/// The bound of numbers that nothing else bounds.
inline constexpr float HUGE_NUMBER = std::numeric_limits<float>::max();

/// A view of one value, or of nothing. A value that is missing or of another kind reads as nothing, so that
/// chains of look-ups need no checks.
class OV_API GltfJson {
public:
    GltfJson() = default;
    explicit GltfJson(const ovExport::Node* value)
        : _value(value) {}

    bool exists() const { return _value != nullptr; }
    bool isObject() const { return _value && _value->isObject(); }

    /// The member of an object, of the first 1024 that it has.
    GltfJson operator[](ovMemory::StringView name) const;
    /// Elements of an array, else 0.
    std::size_t getCount() const { return _value ? _value->getArraySize() : 0; }
    /// The element of an array.
    GltfJson at(std::size_t index) const;
    /// The names of an object's first 1024 members, in their order; views of the tree.
    ovMemory::Buffer<ovMemory::StringView> getNames() const;

    std::optional<double> getNumber() const;
    std::optional<ovMemory::StringView> getString() const;
    /// A whole number from 0 to 2^53, also when it is written with a point.
    std::optional<std::size_t> getSize() const;
    bool isTrue() const { return _value && _value->isBool() && _value->getValueAsBool(); }

private:
    const ovExport::Node* _value = nullptr;
};

/// An object of the file that knows what it is called in messages.
class OV_API GltfObject {
public:
    /// @param label "mesh 3 "Wheel"", what messages begin with
    GltfObject(GltfJson json, ovMemory::String label, GltfReport& report)
        : _json(json)
        , _label(std::move(label))
        , _report(&report) {}

    const GltfJson& getJson() const { return _json; }
    const ovMemory::String& getLabel() const { return _label; }
    GltfReport& getReport() const { return *_report; }
    /// The object that a member is; missing if it is none. Messages name both.
    GltfObject getObject(ovMemory::StringView name) const;
    /// The object of an extension.
    GltfObject getExtension(ovMemory::StringView name) const;

    /// Reports an error with the label. @return false
    bool fail(ovMemory::StringView text) const;
    void warn(ovMemory::StringView text) const;

    /// The index of one of `count` things. Missing: `index` stays. @return false after an error
    bool readIndex(ovMemory::StringView name, std::size_t count, ovMemory::StringView kind, int& index) const;
    /// As readIndex(), for each element of an array.
    bool readIndices(ovMemory::StringView name, std::size_t count, ovMemory::StringView kind,
                     ovMemory::Buffer<unsigned int>& indices) const;
    /// A count or offset. Missing: `size` stays. @return false after an error
    bool readSize(ovMemory::StringView name, std::size_t& size) const;

    /// A number. Missing: `fallback`. Outside of the range: the nearest value in it, after a warning. Not a
    /// number: `fallback`, after a warning.
    float readFloat(ovMemory::StringView name, float fallback, float minimum, float maximum) const;
    /// As readFloat() for the first `count` components, 2 to 4; the others stay.
    ovMaths::Vector readVector(ovMemory::StringView name, int count, const ovMaths::Vector& fallback,
                               float minimum, float maximum) const;
    /// The number of an enumeration. Missing or no whole number: `fallback`.
    unsigned int readEnum(ovMemory::StringView name, unsigned int fallback) const;
    /// Empty if it is missing.
    ovMemory::StringView readString(ovMemory::StringView name) const;
    bool readBool(ovMemory::StringView name) const { return _json[name].isTrue(); }

private:
    GltfJson _json;
    ovMemory::String _label;
    GltfReport* _report;
};

/// The element of one of the file's arrays, labelled with its kind, index and name.
OV_API GltfObject getGltfObject(const GltfJson& array, ovMemory::StringView kind, std::size_t index,
                                GltfReport& report);

/// Reads JSON text. @return null, with the reason and its line and column, for anything that is not an object
/// in UTF-8
OV_API ovMemory::UniquePtr<ovExport::Node> parseGltfJson(ovMemory::StringView text, ovMemory::String& error);

} // namespace ovGraphics::detail

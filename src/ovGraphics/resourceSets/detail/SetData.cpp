#include <ovGraphics/resourceSets/detail/SetData.h>

#include <fmt/format.h>
#include <ovExport/Node.h>
#include <ovMemory/NameMap.h>
#include <ovResources/Files.h>
#include <ovResources/FolderPaths.h>

namespace ovGraphics::detail {

using Tree = ovExport::Node;
using ovMemory::String;
using ovMemory::StringView;

namespace {

String hashOf(StringView bytes) {
    return fmt::format("{:016x}", ovMemory::hashFnv1a64(bytes));
}

/// A whole number that is not negative; nothing for any other node.
std::optional<std::uint64_t> sizeOf(const Tree* node) {
    const bool isWhole =
        node && node->isValueTypeNumber() && node->getNodeValueType() < ovExport::NODE_VALUE_TYPE::FLOAT &&
        (node->getNodeValueType() == ovExport::NODE_VALUE_TYPE::UINT64 || node->getValueAsInt64() >= 0);
    return isWhole ? std::optional(node->getValueAsUint64()) : std::nullopt;
}

} // namespace

void SetDataWriter::add(SetBytes bytes, Tree& node) {
    node.addMember("offset")->setAsUint64(_bytes.size());
    node.addMember("size")->setAsUint64(bytes.size());
    _bytes.insert(_bytes.end(), bytes.begin(), bytes.end());
}

void SetDataWriter::describe(StringView fileName, Tree& node) const {
    node.addMember("file")->setAsString(fileName);
    node.addMember("size")->setAsUint64(_bytes.size());
    node.addMember("hash")->setAsString(
        hashOf({reinterpret_cast<const char*>(_bytes.data()), _bytes.size()}));
}

String SetDataReader::open(const Tree& description, StringView folder) {
    const Tree* const file = description.getMemberValue("file");
    const Tree* const hash = description.getMemberValue("hash");
    const String path =
        file && file->isString() ? ovResources::pathInside(folder, file->getValueAsStringView()) : String();
    if (path.empty())
        return "\"data\" names no file inside the folder of the set; save the set anew.";
    ovMemory::Buffer<char> bytes;
    if (const ovMemory::Result read = ovResources::readFile(path, bytes); !read)
        return read.error;
    // A set whose data is of another save would give other texels to its textures, without a word.
    if (!hash || hash->getValueAsStringView() != hashOf({bytes.data(), bytes.size()}))
        return fmt::format(
            "the file '{}' is not the one that was saved with the set: it was cut, changed, or "
            "belongs to another save; copy both files together, or save the set anew.",
            path);
    _bytes = std::move(bytes);
    return {};
}

String SetDataReader::find(const Tree& place, SetBytes& bytes) const {
    const auto offset = sizeOf(place.getMemberValue("offset"));
    const auto size = sizeOf(place.getMemberValue("size"));
    if (!offset || !size)
        return "\"offset\" and \"size\" must be whole numbers";
    if (*offset > _bytes.size() || *size > _bytes.size() - *offset)
        return fmt::format("{} bytes from {} on lie outside the data of the set, which has {}", *size,
                           *offset, _bytes.size());
    bytes = {reinterpret_cast<const unsigned char*>(_bytes.data()) + *offset, *size};
    return {};
}

} // namespace ovGraphics::detail

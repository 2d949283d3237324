#include <new>
#include <ovExport/JsonExporter.h>
#include <ovExport/detail/JsonReader.h>
#include <ovExport/detail/JsonWriter.h>

namespace ovExport {

ExporterLoadResult JsonExporter::importIntoTree(ovMemory::StringView text) const {
    return detail::JsonReader(text).read();
}

ovMemory::String JsonExporter::exportTreeIntoString(const Node* tree) const {
    if (!tree)
        return {};
    try {
        return detail::JsonWriter(_pretty).write(*tree);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

ovMemory::String JsonExporter::exportObjectIntoString(Exportable* object) const {
    if (!object)
        return {};
    const ovMemory::UniquePtr<Node> root = Node::create();
    object->exportClassToTree(root.get());
    return exportTreeIntoString(root.get());
}

} // namespace ovExport

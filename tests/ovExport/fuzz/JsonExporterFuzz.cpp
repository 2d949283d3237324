// Whatever a text is, it gives an error inside it or a tree, and the tree's texts read back as the same tree.
#include <cstdlib>
#include <ovExport/JsonExporter.h>
#include <ovExport/support/Trees.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ovMemory::StringView text(reinterpret_cast<const char*>(data), size);
    ovExport::JsonExporter exporter;
    const ovExport::ExporterLoadResult first = exporter.importIntoTree(text);
    if (!first) {
        const bool isSound = first._error._activated && first._error._index <= size &&
                             first._error._line > 0 && !first._error._errorInfo.empty();
        return isSound ? 0 : (std::abort(), 0);
    }
    for (const bool pretty : {true, false}) {
        exporter.setPretty(pretty);
        const ovMemory::String written = exporter.exportTreeIntoString(first._tree.get());
        const ovExport::ExporterLoadResult second = exporter.importIntoTree(written);
        if (!second || !ovExport::findDifference(*first._tree, *second._tree, true).empty())
            std::abort();
    }
    return 0;
}

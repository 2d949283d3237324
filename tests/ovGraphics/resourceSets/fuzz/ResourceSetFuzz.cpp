// Whatever a set is, it gives resources or problems, and what it gave is saved and read as the same set.
#include <cstdlib>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resourceSets/ResourceManager.h>
#include <ovGraphics/resourceSets/detail/SetWriter.h>

namespace {

/// No file is read: everything lies in a folder that is not there.
constexpr const char* FOLDER = "/no such folder";

ovMemory::String written(ovGraphics::System& system) {
    ovGraphics::detail::SetWriter writer(system, FOLDER);
    const auto root = ovExport::Node::create();
    writer.write(*root, "x.data");
    return ovExport::JsonExporter().exportTreeIntoString(root.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ovMemory::StringView text(reinterpret_cast<const char*>(data), size);
    ovGraphics::System first;
    ovGraphics::ResourceSetLoadResult result;
    const bool isSet = first.getResourceManager()->loadResourceSetText(text, FOLDER, "set", false, result);
    if (isSet == (result._status == ovMemory::RESULT_STATUS::FAILED) || (!isSet && result._problems.empty()))
        std::abort();
    if (!isSet)
        return 0;
    const ovMemory::String once = written(first);
    ovGraphics::System second;
    if (!second.getResourceManager()->loadResourceSetText(once, FOLDER, "set", false, result) ||
        written(second) != once)
        std::abort();
    return 0;
}

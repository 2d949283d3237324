#include <ovGraphics/resourceSets/ResourceManager.h>

#include <filesystem>
#include <fmt/format.h>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resourceSets/detail/SetReader.h>
#include <ovGraphics/resourceSets/detail/SetWriter.h>
#include <ovResources/Files.h>
#include <ovResources/ResourceManager.h>

namespace ovGraphics {

using ovMemory::RESULT_STATUS;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView SENDER = "ResourceManager";

String absolutePath(const String& path) {
    return ovResources::ResourceManager::getInstance()->getAbsoluteFromWorkingDir(path);
}

String folderOf(const String& path) {
    return std::filesystem::path(path).parent_path().native();
}

} // namespace

ResourceManager* ResourceManager::getInstance() {
    return System::getInstance()->getResourceManager();
}

ovMemory::Result ResourceManager::saveResourceSetDescFile(const ResourceSetSaveQuery& query) const {
    const String path = absolutePath(query.getPath());
    const String dataPath = path + String(detail::SET_DATA_SUFFIX);
    const auto root = ovExport::Node::create();
    detail::SetWriter writer(*_system, folderOf(path));
    writer.write(*root, std::filesystem::path(dataPath).filename().native());
    ovMemory::Result result;
    // The data first: a set without its data is of no use, while data alone does no harm.
    if (!writer.getData().isEmpty())
        result = ovResources::writeFileAtomically(dataPath, writer.getData().getBytes());
    if (result) {
        const String text = ovExport::JsonExporter().exportTreeIntoString(root.get()) + "\n";
        result = ovResources::writeFile(path, ovMemory::BufferView<const char>(text));
    }
    for (const String& warning : writer.getWarnings())
        result.warning += (result.warning.empty() ? "" : " ") + warning;
    if (!result)
        _system->log("Could not save the resource set '" + query.getPath() + "': " + result.error, SENDER);
    else if (!result.warning.empty())
        _system->log("The resource set '" + query.getPath() + "' is not complete: " + result.warning, SENDER);
    return result;
}

bool ResourceManager::loadResourceSetDescFileSync(const ResourceSetLoadQuery& query,
                                                  ResourceSetLoadResult& result) const {
    const String path = absolutePath(query.getPath());
    ovMemory::Buffer<char> bytes;
    if (const ovMemory::Result read = ovResources::readFile(path, bytes); !read) {
        result = {};
        result._problems.push_back({0, read.error});
        result._status = RESULT_STATUS::FAILED;
        _system->log("Could not load the resource set '" + query.getPath() + "': " + read.error, SENDER);
        return false;
    }
    return loadResourceSetText({bytes.data(), bytes.size()}, folderOf(path), query.getPath(),
                               query.getLoading(), result);
}

bool ResourceManager::loadResourceSetText(StringView text, StringView folder, StringView name, bool loading,
                                          ResourceSetLoadResult& result) const {
    result = {};
    const ovExport::ExporterLoadResult parsed = ovExport::JsonExporter().importIntoTree(text);
    bool isSet = false;
    if (!parsed)
        result._problems.push_back({parsed._error._line, parsed._error._errorInfo});
    else
        isSet = detail::SetReader(*_system, text, folder, loading, result).read(*parsed._tree);
    if (!isSet)
        result._status = RESULT_STATUS::FAILED;
    else if (!result._problems.empty())
        result._status = RESULT_STATUS::PARTLY_DONE;
    for (const ResourceSetProblem& problem : result._problems)
        _system->log(problem.line > 0 ? fmt::format("{}:{}: {}", name, problem.line, problem.message)
                                      : fmt::format("{}: {}", name, problem.message),
                     SENDER);
    return isSet;
}

} // namespace ovGraphics

#include <ovResources/ResourceManager.h>
#include <ovVeldris/scripts/commonWrap/MaybeSingletonClassWrapper.h>
#include <ovVeldris/scripts/resourcesWrap/ResourceManagerWrapper.h>

namespace ovResourcesWrap {

namespace {

using namespace ovCommonWrap;
using ovMemory::StringView;
using ovResources::ResourceManager;

using FileBytes = ovMemory::Buffer<unsigned char>;

void declarePaths(ovScripts::UserType& type) {
    method(type, "getWorkingPath", &ResourceManager::getWorkingPath, {}, "The working folder as it was set.");
    method(type, "getWorkingPathAbsolute", &ResourceManager::getWorkingPathAbsolute);
    method(type, "getLaunchedPath", &ResourceManager::getLaunchedPath, {},
           "The folder in which the process was started.");
    const ArgumentNames path = {"path"};
    method(type, "getRelativeFromAbsolute", &ResourceManager::getRelativeFromAbsolute, path);
    method(type, "getAbsoluteFromRelative", &ResourceManager::getAbsoluteFromRelative, path);
    method(type, "getRelativeFromWorkingDir", &ResourceManager::getRelativeFromWorkingDir, path);
    method(type, "getAbsoluteFromWorkingDir", &ResourceManager::getAbsoluteFromWorkingDir, path);
    method(type, "getFromWorkingDirFromRelative", &ResourceManager::getFromWorkingDirFromRelative, path);
    method(type, "getFromWorkingDirFromAbsolute", &ResourceManager::getFromWorkingDirFromAbsolute, path);
    method(
        type, "checkFileExists",
        [](const ResourceManager& self, StringView text) { return self.checkFileExists(text); }, path,
        "Whether there is a file; absolute, or relative to the launched path.");
    method(
        type, "checkFolderExists",
        [](const ResourceManager& self, StringView text) { return self.checkFolderExists(text); }, path,
        "Whether there is a folder; absolute, or relative to the launched path.");
}

ovMemory::UniquePtr<FileBytes> loadFile(ovScripts::Environment& environment, const ResourceManager& manager,
                                        StringView path) {
    const ovMemory::Buffer<char> bytes = manager.loadFileIntoMemory(path);
    if (bytes.empty())
        return nullptr;
    if (!environment.canAllocate(bytes.size()))
        throw std::bad_alloc();
    return std::make_unique<FileBytes>(bytes.begin(), bytes.end());
}

} // namespace

void ResourceManagerWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<ResourceManager>);
    type.setHelp("Paths and files.");
    MaybeSingletonClassWrapper<ResourceManager>::inherit(type);
    declarePaths(type);
    method(
        type, "loadFileIntoMemory",
        [environment](const ResourceManager& self, StringView path) {
            return loadFile(*environment, self, path);
        },
        {"path"}, "The bytes of a file; nil when it is empty or cannot be read.");
    method(
        type, "saveFileToDisk",
        [](const ResourceManager& self, StringView path, const FileBytes& bytes) {
            return self.saveFileToDisk(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        },
        {"path", "bytes"}, "Writes a file; false when it cannot be.");
}

} // namespace ovResourcesWrap

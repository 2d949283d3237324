#include <ovResources/ResourceManager.h>

#include <filesystem>
#include <ovResources/Files.h>
#include <system_error>

template class ovCommon::MaybeSingletonClass<ovResources::ResourceManager>;

namespace ovResources {

namespace {

// The path from a folder (absolute, with a separator at the end), in its shortest form.
String absoluteFrom(StringView folder, StringView path) {
    return (std::filesystem::path(folder) / std::filesystem::path(path)).lexically_normal().native();
}

// How an absolute path is written from an absolute folder.
String relativeTo(StringView folder, StringView absolutePath) {
    const std::filesystem::path path(absolutePath);
    String relative = path.lexically_relative(std::filesystem::path(folder)).native();
    if (relative == ".")
        return "./";
    if (absolutePath.ends_with('/') && !relative.ends_with('/'))
        relative += '/';
    return relative;
}

String withSeparator(String path) {
    if (!path.ends_with('/'))
        path += '/';
    return path;
}

} // namespace

ResourceManager::ResourceManager(bool) {
    std::error_code failure;
    const std::filesystem::path current = std::filesystem::current_path(failure);
    // Taken once: a host that changes its folder later must not move every relative path.
    _launchedPath = withSeparator(failure ? String("/") : current.native());
}

ResourceManager::~ResourceManager() = default;

void ResourceManager::setWorkingPath(StringView path) {
    _workingPath = withSeparator(path.empty() ? String(".") : String(path));
}

String ResourceManager::getWorkingPathAbsolute() const {
    return absoluteFrom(_launchedPath, _workingPath);
}

String ResourceManager::getRelativeFromAbsolute(StringView path) const {
    return relativeTo(_launchedPath, getAbsoluteFromRelative(path));
}

String ResourceManager::getAbsoluteFromRelative(StringView path) const {
    return absoluteFrom(_launchedPath, path);
}

String ResourceManager::getRelativeFromWorkingDir(StringView path) const {
    return relativeTo(_launchedPath, getAbsoluteFromWorkingDir(path));
}

String ResourceManager::getAbsoluteFromWorkingDir(StringView path) const {
    return absoluteFrom(getWorkingPathAbsolute(), path);
}

String ResourceManager::getFromWorkingDirFromRelative(StringView path) const {
    return relativeTo(getWorkingPathAbsolute(), getAbsoluteFromRelative(path));
}

String ResourceManager::getFromWorkingDirFromAbsolute(StringView path) const {
    return getFromWorkingDirFromRelative(path);
}

bool ResourceManager::checkFileExists(StringView path, bool fromWorkingDir) const {
    std::error_code failure;
    return !path.empty() && path.find('\0') == StringView::npos &&
           std::filesystem::is_regular_file(_toDiskPath(path, fromWorkingDir), failure);
}

bool ResourceManager::checkFolderExists(StringView path, bool fromWorkingDir) const {
    std::error_code failure;
    return path.find('\0') == StringView::npos &&
           std::filesystem::is_directory(_toDiskPath(path, fromWorkingDir), failure);
}

ovMemory::Buffer<char> ResourceManager::loadFileIntoMemory(StringView path) const {
    String error;
    return loadFileIntoMemory(path, error);
}

ovMemory::Buffer<char> ResourceManager::loadFileIntoMemory(StringView path, String& error) const {
    ovMemory::Buffer<char> bytes;
    error = readFile(_toDiskPath(path, false), bytes).error;
    return bytes;
}

bool ResourceManager::saveFileToDisk(StringView path, ovMemory::BufferView<const char> bytes) const {
    return bool(saveFile(path, bytes));
}

bool ResourceManager::saveFileToDisk(StringView path, ovMemory::BufferView<const char> bytes,
                                     String& error) const {
    error = saveFile(path, bytes).error;
    return error.empty();
}

ovMemory::Result ResourceManager::saveFile(StringView path, ovMemory::BufferView<const char> bytes) const {
    return writeFile(_toDiskPath(path, false), bytes);
}

// Not shortened: on the disk "link/.." is the folder above the link's target, which only the system knows.
String ResourceManager::_toDiskPath(StringView path, bool fromWorkingDir) const {
    const std::filesystem::path folder(fromWorkingDir ? getWorkingPathAbsolute() : _launchedPath);
    return (folder / std::filesystem::path(path)).native();
}

} // namespace ovResources

#include <ovResources/FolderPaths.h>

#include <filesystem>

namespace ovResources {

namespace {

bool staysInside(const std::filesystem::path& path) {
    return !path.empty() && path.is_relative() && *path.begin() != ".." && path != "." && path.has_filename();
}

} // namespace

ovMemory::String pathInside(ovMemory::StringView folder, ovMemory::StringView path) {
    const auto normal = std::filesystem::path(path).lexically_normal();
    const bool isText = path.find('\0') == ovMemory::StringView::npos; // the system would cut it there
    return isText && staysInside(normal) ? (std::filesystem::path(folder) / normal).native()
                                         : ovMemory::String();
}

ovMemory::String pathFromFolder(ovMemory::StringView folder, ovMemory::StringView file) {
    const auto path = std::filesystem::path(file).lexically_normal().lexically_relative(
        std::filesystem::path(folder).lexically_normal());
    return staysInside(path) ? path.native() : ovMemory::String();
}

} // namespace ovResources

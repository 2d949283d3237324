#include <veldris/projects/ProjectFiles.h>

#include <filesystem>
#include <fmt/format.h>
#include <ovResources/ResourceManager.h>

namespace veldris {

using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView SUFFIX = ".ovs";

} // namespace

bool ProjectFiles::find(StringView path, ProjectFiles& files, String& error) {
    const std::filesystem::path file(path);
    const String name = file.filename().native();
    // The library cuts a name at its first dot, and saves the set under the whole name.
    const String base = name.substr(0, name.find('.'));
    if (base.empty() || name != base + String(SUFFIX)) {
        error = fmt::format(
            "the project '{}' is not named NAME.ovs with one dot: its set would be written to '{}' "
            "and read from '{}.ovs'; name it {}.ovs.",
            path, name, base, base.empty() ? "project" : base);
        return false;
    }
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const auto inFolder = [&](StringView suffix) { return (folder / (base + String(suffix))).native(); };
    files = {.folder = folder.native(),
             .name = name,
             .set = inFolder(SUFFIX),
             .data = inFolder(".ovs.data"),
             .materials = inFolder("_materials.ovm"),
             .scripts = inFolder("_scripts.ovscripts"),
             .scriptsSwitch = inFolder("_scripts.ovScripts"),
             .settings = inFolder("_render.json")};
    return true;
}

ovMemory::Buffer<String> ProjectFiles::listExisting() const {
    ovMemory::Buffer<String> existing;
    std::error_code ignored;
    for (const String& file : {set, data, materials, scripts, scriptsSwitch, settings})
        if (std::filesystem::is_regular_file(file, ignored))
            existing.push_back(file);
    return existing;
}

ProjectFolder::ProjectFolder(const ProjectFiles& files)
    : _before(ovResources::ResourceManager::getInstance()->getWorkingPath()) {
    ovResources::ResourceManager::getInstance()->setWorkingPath(files.folder);
}

ProjectFolder::~ProjectFolder() {
    ovResources::ResourceManager::getInstance()->setWorkingPath(_before);
}

} // namespace veldris

#include <veldris/projects/ProjectMaking.h>

#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovResources/Files.h>
#include <ovResources/FolderPaths.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/MaterialSettings.h>
#include <ovVeldris/content/Model.h>
#include <ovVeldris/content/ProjectLoader.h>
#include <veldris/Session.h>
#include <veldris/bake/EnvironmentInput.h>
#include <veldris/projects/ProjectSubject.h>
#include <veldris/projects/SettingOptions.h>

namespace veldris {

using ovMemory::failed;
using ovMemory::Result;
using ovMemory::String;
using ovMemory::StringView;
namespace fs = std::filesystem;

namespace {

Result writeText(const String& path, StringView text) {
    return ovResources::writeFile(path, ovMemory::BufferView<const char>(text.data(), text.size()));
}

Result copyBeside(const ProjectFiles& files, const String& source) {
    std::error_code error;
    const fs::path target = fs::path(files.folder) / fs::path(source).filename();
    fs::copy_file(source, target, error);
    return error ? failed(fmt::format("the environment '{}' cannot be copied to '{}': {}.", source,
                                      target.native(), error.message()))
                 : Result();
}

/// @param environment as the user gave it; becomes its path from the project's folder
Result takeEnvironment(const ProjectFiles& files, String& environment) {
    const String folder = fs::absolute(files.folder).lexically_normal().native();
    const String file = fs::absolute(environment).lexically_normal().native();
    const String source = environment;
    environment = ovResources::pathFromFolder(folder, file);
    if (!environment.empty())
        return {};
    environment = fs::path(source).filename().native();
    if (source.find(FACE_FIELD) == String::npos)
        return copyBeside(files, source);
    for (const StringView name : FACE_NAMES)
        if (const Result copied = copyBeside(files, fillField(source, FACE_FIELD, name)); !copied)
            return copied;
    return {};
}

} // namespace

Result prepareProject(const ProjectFiles& files) {
    if (const auto existing = files.listExisting(); !existing.empty())
        return failed(fmt::format(
            "there is a project already: '{}'; choose another name, or remove its files.", existing.front()));
    std::error_code error;
    fs::create_directories(files.folder, error);
    return error ? failed(fmt::format("the folder '{}' cannot be made: {}.", files.folder, error.message()))
                 : Result();
}

Result writeEmptyProject(const ProjectFiles& files) {
    for (const auto& [path, text] : {std::pair<const String&, StringView>(files.materials, "{}\n"),
                                     {files.scripts, "{}\n"},
                                     {files.set, "{\n    \"resourceSet\": 1\n}\n"}})
        if (const Result written = writeText(path, text); !written)
            return written;
    return {};
}

Result writeModelProject(Session& session, ovVeldris::Model& model, const ProjectFiles& files) {
    if (!model.loadMaterials())
        return failed(session.getLogger().take());
    ovGraphics::RenderQueueManager& queues = *session.getGraphics().getRenderQueueManager();
    model.addTo(*queues.createOrRetrieve(SOLID_QUEUE), *queues.createOrRetrieve(BLENDED_QUEUE));
    const ProjectFolder folder(files);
    ovVeldris::MaterialSettingsWriter settings;
    ovVeldris::ProjectSaveQuery query;
    query._path = files.name;
    query._callback = &settings;
    session.getSystem().getProjectLoader()->save(query);
    // Saving tells nobody but the log what went wrong.
    const String problems = session.getLogger().take();
    return problems.empty() ? Result() : failed(problems);
}

Result writeScriptsSwitch(const ProjectFiles& files) {
    // The same text: where letters of both cases are one, it is the same file.
    ovMemory::Buffer<char> scripts;
    if (Result read = ovResources::readFile(files.scripts, scripts); !read)
        return read;
    return writeText(files.scriptsSwitch, {scripts.data(), scripts.size()});
}

Result writeProjectSettings(const ProjectFiles& files, ovMemory::Buffer<ProjectSetting> settings) {
    for (ProjectSetting& setting : settings)
        if (setting.name == "environment" && isEnvironmentFile(setting.value))
            if (const Result taken = takeEnvironment(files, setting.value); !taken)
                return taken;
    return settings.empty() ? Result() : writeText(files.settings, writeSettings(settings));
}

} // namespace veldris

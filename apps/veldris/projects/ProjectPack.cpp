#include <veldris/projects/ProjectPack.h>

#include <filesystem>
#include <fmt/format.h>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/System.h>
#include <ovResources/Files.h>
#include <ovResources/FolderPaths.h>
#include <set>
#include <veldris/bake/EnvironmentInput.h>
#include <veldris/projects/SettingOptions.h>

namespace veldris {

using ovMemory::Buffer;
using ovMemory::Result;
using ovMemory::String;
using ovMemory::StringView;
namespace fs = std::filesystem;

namespace {

/// The files that a section of a project's file names, from the project's folder.
Buffer<String> namedFiles(const String& path, StringView section) {
    Buffer<char> bytes;
    if (!ovResources::readFile(path, bytes))
        return {};
    const auto parsed = ovExport::JsonExporter().importIntoTree({bytes.data(), bytes.size()});
    const ovExport::Node* const entries = parsed ? parsed._tree->getMemberValue(section) : nullptr;
    Buffer<String> files;
    for (unsigned int i = 0; entries && i < entries->getArraySize(); ++i) {
        const ovExport::Node* const file = entries->getArrayElement(i)->getMemberValue("file");
        if (file && file->isString())
            files.push_back(file->getValueAsString());
    }
    return files;
}

/// Copies the files of one project.
class Packer {
public:
    Packer(const ProjectFiles& files, const String& folder, Buffer<String>& copied)
        : _files(files)
        , _folder(folder)
        , _copied(copied) {}

    Result pack() {
        std::error_code error;
        if (!fs::is_regular_file(_files.set, error))
            return ovMemory::failed(fmt::format("there is no project '{}'.", _files.set));
        fs::create_directories(_folder, error);
        if (fs::equivalent(_folder, _files.folder, error))
            return ovMemory::failed(
                fmt::format("the project is in '{}' already; give another folder.", _folder));
        for (const String& file : _files.listExisting())
            if (file != _files.settings)
                _copy(file, fs::path(file).filename().native());
        for (const String& file : namedFiles(_files.set, "textures"))
            _copyNamed(file);
        for (const String& file : namedFiles(_files.scripts, "scripts"))
            _copyNamed(file);
        _packSettings();
        return _error.empty() ? Result() : ovMemory::failed(_error);
    }

private:
    /// @param target from the new folder
    void _copy(const String& source, const String& target) {
        if (!_error.empty() || !_targets.insert(target).second)
            return;
        const fs::path path = fs::path(_folder) / target;
        std::error_code error;
        fs::create_directories(path.parent_path(), error);
        if (fs::copy_file(source, path, error))
            _copied.push_back(path.native());
        else
            _error = fmt::format("the file '{}' cannot be copied to '{}': {}.", source, path.native(),
                                 error.message());
    }

    void _copyNamed(const String& file) {
        const String source = ovResources::pathInside(_files.folder, file);
        if (!source.empty())
            _copy(source, fs::path(file).lexically_normal().native());
        else if (_error.empty())
            _error = fmt::format(
                "the file '{}' does not lie inside the folder of the project; copy it there.", file);
    }

    void _packSettings() {
        Buffer<char> bytes;
        if (!ovResources::readFile(_files.settings, bytes))
            return;
        Buffer<String> problems;
        auto settings = readSettings({bytes.data(), bytes.size()}, problems);
        if (!problems.empty())
            _error = fmt::format("{}:{}", _files.settings, problems.front());
        for (ProjectSetting& setting : settings)
            if (setting.name == "environment" && isEnvironmentFile(setting.value))
                _packEnvironment(setting.value);
        if (!_error.empty())
            return;
        const String path = (fs::path(_folder) / fs::path(_files.settings).filename()).native();
        const String text = writeSettings(settings);
        const Result written = ovResources::writeFile(path, ovMemory::BufferView<const char>(text));
        _error = written.error;
        _copied.push_back(path);
    }

    /// @param environment as the project has it; becomes what the copy has
    void _packEnvironment(String& environment) {
        const String inside = ovResources::pathInside(_files.folder, environment);
        const String source = inside.empty() ? (fs::path(_files.folder) / environment).native() : inside;
        if (inside.empty())
            environment = fs::path(environment).filename().native();
        if (source.find(FACE_FIELD) == String::npos)
            return _copy(source, environment);
        for (const StringView name : FACE_NAMES)
            _copy(fillField(source, FACE_FIELD, name), fillField(environment, FACE_FIELD, name));
    }

    const ProjectFiles& _files;
    String _folder;
    Buffer<String>& _copied;
    std::set<String> _targets;
    String _error;
};

} // namespace

Result packProject(const ProjectFiles& files, const String& folder, Buffer<String>& copied) {
    return Packer(files, folder, copied).pack();
}

} // namespace veldris

#include <veldris/projects/ProjectCheck.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resourceSets/ResourceManager.h>
#include <ovGraphics/resources/Texture.h>
#include <ovResources/Files.h>
#include <ovScripts/ProjectLoader.h>
#include <ovScripts/ScriptManager.h>
#include <ovVeldris/content/MaterialMembers.h>
#include <ovVeldris/core/NearestName.h>
#include <set>
#include <veldris/commands/RenderOptions.h>
#include <veldris/projects/SettingOptions.h>

namespace veldris {

using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;

namespace {

/// Collects the problems of one project.
class ProjectChecker {
public:
    explicit ProjectChecker(const ProjectFiles& files)
        : _files(files) {}

    Buffer<ProjectProblem> check() {
        if (!_exists(_files.set))
            _add(_files.set, 0, "there is no such file; veldris project new makes one.");
        _checkSet();
        _checkMaterials();
        _checkReferences();
        _checkScripts();
        _checkSettings();
        return std::move(_problems);
    }

private:
    static bool _exists(const String& path) {
        std::error_code ignored;
        return std::filesystem::is_regular_file(path, ignored);
    }

    void _add(const String& file, unsigned int line, const String& message) {
        _problems.push_back({file, {line, message}});
    }

    void _checkSet() {
        if (!_exists(_files.set))
            return;
        ovGraphics::ResourceSetLoadQuery query;
        query.setPath(std::filesystem::absolute(_files.set).native());
        query.setLoading(false);
        _system.getResourceManager()->loadResourceSetDescFileSync(query, _set);
        for (const ovGraphics::ResourceSetProblem& problem : _set._problems)
            _add(_files.set, problem.line, problem.message);
        for (const ovGraphics::Texture* texture : _set._textures)
            _textures.insert(String(texture->getName()));
    }

    void _checkMaterials() {
        if (!_exists(_files.materials)) {
            if (!_set._entities.empty())
                _add(_files.materials, 0,
                     "there is no such file, and the set draws with materials; save the project "
                     "anew.");
            return;
        }
        DeclarationFile declarations;
        String error;
        if (!checkDeclarationFile(_files.materials, declarations, error)) {
            _add(_files.materials, 0, error);
            return;
        }
        // Other roots are files of the command line: the library reads nothing of them.
        const ovExport::Node* const root = declarations.tree.get();
        if (root && (!root->isObject() || !root->getMemberValue("materials"))) {
            if (!root->isObject() || root->getMemberCount() > 0)
                _add(_files.materials, 1,
                     "there is no member \"materials\" with an array, which the materials of a "
                     "project are read from.");
            return;
        }
        for (const DeclarationProblem& problem : declarations.problems)
            _problems.push_back({_files.materials, problem});
        for (const DeclaredEntry& entry : declarations.entries)
            _noteMaterial(entry);
    }

    void _noteMaterial(const DeclaredEntry& entry) {
        const ovExport::Node* const name = entry.node->getMemberValue("name");
        if (!name || !name->isString())
            return;
        _materials.insert(name->getValueAsString());
        for (const ovVeldris::MaterialMember& member : ovVeldris::materialMembers()) {
            const ovExport::Node* const value = entry.node->getMemberValue(member.name);
            const ovExport::Node* const texture =
                value && value->isObject() ? value->getMemberValue(ovVeldris::PBS_TEXTURE_NAME) : nullptr;
            if (texture && texture->isString() && !_textures.contains(texture->getValueAsString()))
                _add(_files.materials, entry.line,
                     fmt::format("material \"{}\": the set has no texture \"{}\".{}",
                                 name->getValueAsString(), texture->getValueAsString(),
                                 _hint(texture->getValueAsString(), _textures)));
        }
    }

    static String _hint(const String& name, const std::set<String>& known) {
        const Buffer<StringView> names(known.begin(), known.end());
        return ovVeldris::nearestNameHint(name, names);
    }

    void _checkReferences() {
        std::set<String> told;
        for (const ovGraphics::ResourceSetEntity& waiting : _set._entities)
            if (!_materials.contains(waiting.shader) && told.insert(waiting.shader).second)
                _add(
                    _files.set, 0,
                    fmt::format("entities are drawn with the material '{}', and the project has none of that "
                                "name.{}",
                                waiting.shader, _hint(waiting.shader, _materials)));
    }

    void _checkScripts() {
        const bool hasScripts = _exists(_files.scripts);
        const bool hasSwitch = _exists(_files.scriptsSwitch);
        if (hasSwitch && !hasScripts)
            _add(_files.scriptsSwitch, 0,
                 fmt::format("there is no '{}' beside it, which the scripts are read from.",
                             std::filesystem::path(_files.scripts).filename().native()));
        if (!hasScripts)
            return;
        ovScripts::ScriptManager manager;
        const auto loaded =
            ovScripts::ProjectLoader::load({std::filesystem::absolute(_files.scripts).native(), &manager});
        // Every project has the file; without a script in it, nothing is missed.
        if (!hasSwitch && !(loaded._scripts.empty() && loaded._errors.empty()))
            _add(_files.scripts, 0,
                 fmt::format(
                     "this file is not seen on load: the library asks for '{}', spelt with a large S, before "
                     "it reads the scripts. Make an empty file of that name, or make the project with "
                     "veldris project new --scripts.",
                     std::filesystem::path(_files.scriptsSwitch).filename().native()));
        for (const String& error : loaded._errors)
            _add(_files.scripts, 0, error);
    }

    void _checkSettings() {
        Buffer<char> bytes;
        if (!ovResources::readFile(_files.settings, bytes))
            return;
        Buffer<String> problems;
        const auto settings = readSettings({bytes.data(), bytes.size()}, problems);
        CLI::App command;
        RenderOptions options;
        addSceneOptions(command, options);
        for (const String& problem : applySettings(settings, _files.folder, command))
            problems.push_back(problem);
        String error;
        if (problems.empty() && !checkSceneOptions(options, error))
            problems.push_back(error);
        if (isEnvironmentFile(options.environment) && options.environment.find("{face}") == String::npos &&
            !_exists(options.environment))
            problems.push_back(fmt::format("there is no environment '{}'.", options.environment));
        for (const String& problem : problems)
            _add(_files.settings, 0, problem);
    }

    const ProjectFiles& _files;
    Buffer<ProjectProblem> _problems;
    ovGraphics::System _system;
    ovGraphics::ResourceSetLoadResult _set;
    std::set<String> _textures;
    std::set<String> _materials;
};

} // namespace

Buffer<ProjectProblem> checkProject(const ProjectFiles& files) {
    return ProjectChecker(files).check();
}

} // namespace veldris

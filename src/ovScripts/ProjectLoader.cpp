#include <ovScripts/ProjectLoader.h>

#include <filesystem>
#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovExport/TextPosition.h>
#include <ovResources/Files.h>
#include <ovResources/FolderPaths.h>
#include <ovResources/ResourceManager.h>
#include <ovScripts/ScriptManager.h>
#include <set>

namespace ovScripts {

using ovExport::Node;
using ovMemory::String;
using ovMemory::StringView;

namespace {

String absolutePath(const String& path) {
    return ovResources::ResourceManager::getInstance()->getAbsoluteFromWorkingDir(path);
}

String folderOf(const String& path) {
    return std::filesystem::path(path).parent_path().native();
}

ScriptManager& managerOr(ScriptManager* manager) {
    return manager ? *manager : *ScriptManager::getInstance();
}

/// Whether JSON gives the text back as it is.
bool isKept(StringView text) {
    const auto node = Node::create(ovExport::NODE_NATURE::VALUE);
    node->setAsString(text);
    const ovExport::JsonExporter exporter;
    const auto read = exporter.importIntoTree(exporter.exportTreeIntoString(node.get()));
    return read && read._tree->getValueAsStringView() == text;
}

/// Reads the entries of one text.
class ScriptsReader {
public:
    ScriptsReader(StringView text, StringView folder, StringView name, ScriptManager& manager,
                  ProjectLoadResult& result)
        : _text(text)
        , _folder(folder)
        , _name(name)
        , _manager(manager)
        , _result(result) {}

    void read(const Node& root) {
        const Node* const scripts = root.getMemberValue("scripts");
        // A project without scripts has an object without members.
        if (!root.isObject() || (scripts && !scripts->isArray()))
            return _refuse(root, "this is no object with an array \"scripts\".");
        for (unsigned int i = 0; scripts && i < scripts->getArraySize(); ++i)
            _readEntry(*scripts->getArrayElement(i));
    }

private:
    void _refuse(const Node& place, const String& message) {
        const auto line = ovExport::findTextPosition(_text, place.getSourceIndex()).line;
        _result._errors.push_back(String(_name) + ":" + std::to_string(line) + ": " + message);
    }

    void _readEntry(const Node& entry) {
        const Node* const name = entry.getMemberValue("name");
        const Node* const interpreter = entry.getMemberValue("interpreter");
        if (!name || !name->isString() || name->getValueAsStringView().empty())
            return _refuse(entry, "a script has no \"name\"; give it a text.");
        const String subject = "script '" + name->getValueAsString() + "': ";
        if (!_names.insert(name->getValueAsString()).second)
            return _refuse(entry, subject + "the name is given twice; this entry is left out.");
        const auto language = interpreter
                                  ? ovMemory::enumFromText<INTERPRETER>(interpreter->getValueAsStringView())
                                  : std::optional(INTERPRETER::LUA);
        if (!language)
            return _refuse(*interpreter,
                           subject + "\"interpreter\" is not " + ovMemory::enumTexts<INTERPRETER>() + ".");
        const Node* const file = entry.getMemberValue("file");
        const Node* const source = entry.getMemberValue("source");
        if (file && source)
            return _refuse(entry, subject + "it has a \"source\" and a \"file\"; take one away.");
        if (!(source && source->isString()) && !(file && file->isString()))
            return _refuse(entry, subject + "it has neither the text \"source\" nor the text \"file\".");
        _make(name->getValueAsStringView(), *language, entry, subject);
    }

    void _make(StringView name, INTERPRETER language, const Node& entry, const String& subject) {
        const Node* const file = entry.getMemberValue("file");
        const bool isNew = _manager.get(name) == nullptr;
        if (file) {
            const String path = ovResources::pathInside(_folder, file->getValueAsStringView());
            if (path.empty())
                return _refuse(*file, subject + "the file '" + file->getValueAsString() +
                                          "' does not lie inside the folder of the project; copy it there.");
            _manager.createOrRetrieve(name);
            if (const ovMemory::Result read = _manager.setFile(name, path); !read) {
                if (isNew)
                    _manager.erase(name);
                return _refuse(*file, subject + read.error);
            }
        }
        Script* const script = _manager.createOrRetrieve(name);
        script->setTargetInterpreter(language);
        if (!file)
            script->setSources(entry.getMemberValue("source")->getValueAsStringView());
        _result._scripts.push_back(script);
        if (!script->load())
            _refuse(entry, subject + script->getLastCompilationResult()._failureMessage);
    }

    StringView _text;
    StringView _folder;
    StringView _name;
    ScriptManager& _manager;
    ProjectLoadResult& _result;
    std::set<String> _names;
};

} // namespace

String ProjectLoader::getScriptsPath(StringView projectPath) {
    return String(projectPath.substr(0, projectPath.find('.'))) + "_scripts.ovscripts";
}

ovMemory::Result ProjectLoader::save(const ProjectSaveQuery& query) {
    const String path = absolutePath(getScriptsPath(query._path));
    const String folder = folderOf(path);
    const ScriptManager& manager = managerOr(query._manager);
    const auto root = Node::create();
    for (unsigned int i = 0; i < manager.getCount(); ++i) {
        const Script& script = *manager.getByIndex(i);
        Node& entry = *root->addMember("scripts")->addElement();
        const String file = manager.getFile(script.getName());
        const String inside = file.empty() ? String() : ovResources::pathFromFolder(folder, file);
        if (inside.empty() && !isKept(script.getSources()))
            return ovMemory::failed("Could not save the scripts to '" + path + "': the text of the script '" +
                                        script.getName() +
                                        "' is no UTF-8; keep it in a file inside the project's folder "
                                        "(ScriptManager::setFile).",
                                    path);
        entry.addMember("name")->setAsString(script.getName());
        entry.addMember("interpreter")->setAsString(ovMemory::enumToText(script.getTargetInterpreter()));
        entry.addMember(inside.empty() ? "source" : "file")
            ->setAsString(inside.empty() ? script.getSources() : inside);
    }
    const String text = ovExport::JsonExporter().exportTreeIntoString(root.get()) + "\n";
    return ovResources::writeFile(path, ovMemory::BufferView<const char>(text));
}

ProjectLoadResult ProjectLoader::load(const ProjectLoadQuery& query) {
    const String path = absolutePath(query._path);
    ovMemory::Buffer<char> bytes;
    if (const ovMemory::Result read = ovResources::readFile(path, bytes); !read)
        return {{}, {read.error}};
    return loadText({bytes.data(), bytes.size()}, folderOf(path), query._path, managerOr(query._manager));
}

ProjectLoadResult ProjectLoader::loadText(StringView text, StringView folder, StringView name,
                                          ScriptManager& manager) {
    ProjectLoadResult result;
    const ovExport::ExporterLoadResult parsed = ovExport::JsonExporter().importIntoTree(text);
    if (parsed)
        ScriptsReader(text, folder, name, manager, result).read(*parsed._tree);
    else
        result._errors.push_back(String(name) + ":" + std::to_string(parsed._error._line) + ": " +
                                 parsed._error._errorInfo);
    return result;
}

} // namespace ovScripts

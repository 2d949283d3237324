// The scripts of a project as a file.
#pragma once

#include <ovMemory/Result.h>
#include <ovScripts/Script.h>

namespace ovScripts {

class ScriptManager;

/// Which file the scripts of a project are read from.
struct ProjectLoadQuery {
    /// Of the file, from the working folder of ovResources::ResourceManager, or absolute.
    ovMemory::String _path;
    /// Who gets the scripts. Not owned; null: ScriptManager::getInstance().
    ScriptManager* _manager = nullptr;
};

/// Which project's scripts are written.
struct ProjectSaveQuery {
    /// Of the project, from the working folder of ovResources::ResourceManager, or absolute.
    ovMemory::String _path;
    /// Whose scripts they are. Not owned; null: ScriptManager::getInstance().
    ScriptManager* _manager = nullptr;
};

/// The scripts of a file.
struct ProjectLoadResult {
    ovMemory::Buffer<Script*> _scripts;         ///< in the order of the file; the manager's
    ovMemory::Buffer<ovMemory::String> _errors; ///< one line each: "FILE:LINE: ..."
};

/// Writes and reads the scripts file of a project, JSON: {"scripts": [{"name", "interpreter", and "source" or
/// "file"}]}. A script has its text in it, or names a file inside the project's folder
/// (ScriptManager::setFile).
class OV_API ProjectLoader {
public:
    /// The scripts file of a project: the project's path, cut before its first dot, with
    /// "_scripts.ovscripts".
    static ovMemory::String getScriptsPath(ovMemory::StringView projectPath);

    /// Writes all scripts of the manager, whole or not at all. Saving what was loaded gives the same bytes.
    /// @return a failure when the file cannot be written, and when a text that has no file is no UTF-8, which
    ///         JSON cannot hold
    static ovMemory::Result save(const ProjectSaveQuery& query);

    /// Reads a file. A script of a name that is there already takes the text over. Scripts are compiled; one
    /// that does not compile is given out all the same, beside the error. Entries that are wrong are left
    /// out.
    static ProjectLoadResult load(const ProjectLoadQuery& query);

    /// The same for a text. @param folder that files of scripts are in @param name of the text in messages
    static ProjectLoadResult loadText(ovMemory::StringView text, ovMemory::StringView folder,
                                      ovMemory::StringView name, ScriptManager& manager);
};

} // namespace ovScripts

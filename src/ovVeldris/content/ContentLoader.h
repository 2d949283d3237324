// The reader and writer of declarations.
#pragma once

#include <ovCommon/Api.h>
#include <ovExport/ExporterLoadResult.h>
#include <ovVeldris/content/ContentLoadResult.h>

namespace ovExport {
class Exportable;
}

namespace ovVeldris {

class Material;
class System;

/// Reads and writes declarations: JSON documents that describe objects of the library, materials so far.
/// docs/content.md has the format. A System owns one, see System::getContentLoader().
///
/// Files are read relative to the working folder of ovResources::ResourceManager. Nothing throws; messages go
/// to the System's log and to the results.
class OV_API ContentLoader {
public:
    using Materials = ContentLoadResult<Material>;

    /// @param system not owned, outlives this object
    explicit ContentLoader(System* system)
        : _system(system) {}

    System* getSystem() const { return _system; }

    /// The tree of a JSON file.
    /// @return empty after one log line when there is no such file that can be read, and after those of
    ///         inputDataSources() when it is not JSON
    ovExport::ExporterLoadResult inputData(ovMemory::StringView path) const;

    /// The bytes of a file, unchecked; empty when it is empty or cannot be read, and then nothing is logged.
    ovMemory::String inputDataStr(ovMemory::StringView path) const;

    /// The tree of a JSON text.
    /// @return empty when the text is not JSON, after six log lines: an empty one (of sender "-"), a head,
    ///         what is wrong, an empty one, the full message with line and column, an empty one
    ovExport::ExporterLoadResult inputDataSources(ovMemory::StringView text) const;

    /// Writes a file, whole or not at all; an existing one is replaced. Where that is impossible, as in a
    /// folder that may not be written, it is written in place after one log line, see
    /// ovResources::writeFile().
    /// @param path appended to the text of the working folder, so that an absolute path leads below it too.
    ///        Folders are not created
    /// @return false after one log line when the file cannot be written
    bool outputData(ovMemory::StringView data, ovMemory::StringView path) const;

    /// Writes a tree as a JSON file, see outputData(). @return false for null, too, without a log line
    bool saveTreeDeclaration(const ovExport::Node* tree, ovMemory::StringView path) const;

    /// Writes what an object exports as a JSON file, see outputData(). @return false for null, too, without a
    /// log line
    bool saveObjectDeclaration(ovExport::Exportable* object, ovMemory::StringView path) const;

    /// Makes the materials of a file. They are loaded, too, whatever the flag says: it is kept for its
    /// callers.
    /// @return as processMaterialSources(); a missing file counts as an empty text, which is not JSON
    Materials loadMaterialDeclaration(ovMemory::StringView path, bool load) const;

    /// Makes the materials of a text: of its root, if that is an object, or of each element, if it is an
    /// array. A failed element does not stop the others.
    /// @param load whether each material is loaded, again if it was already
    /// @return of a root object what processMaterialTree() gives. Of an array the materials of all elements
    ///         that could be made, the message of each other one, and PARTLY_DONE if there is one (even if no
    ///         element could be made). FAILED with one message for a text that is not JSON (which is also
    ///         logged) and for a root of another nature
    Materials processMaterialSources(ovMemory::StringView text, bool load) const;

    /// Makes the material of an entry, or overwrites what the entry says of the material that has its name,
    /// and lets it read the entry.
    /// @param node an object with the strings "name" and "type"; null counts as no object. Not kept
    /// @param load whether the material is loaded, again if it was already. Whether that succeeds is logged
    ///        by the material and does not show in the result
    /// @return one material; or FAILED with one message: when the node is not an object, when its name or its
    ///         type is missing or not a string, when the type is unknown, and when the material manager
    ///         refuses, which it also does before System::initialize()
    Materials processMaterialTree(ovExport::Node* node, bool load) const;

private:
    Material* _createMaterial(ovExport::Node* node, ovMemory::String& error, ovMemory::String& detail) const;
    Materials _processMaterialArray(ovExport::Node& array, bool load) const;

    System* _system;
};

} // namespace ovVeldris

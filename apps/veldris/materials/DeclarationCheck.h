// What is wrong with a file of material declarations.
#pragma once

#include <ovExport/Node.h>

namespace veldris {

/// One problem of a file.
struct DeclarationProblem {
    unsigned int line = 0; ///< from 1; 0: of the file as a whole
    ovMemory::String message;
    bool operator==(const DeclarationProblem&) const = default;
};

/// "FILE:LINE: message", or "FILE: message" without a line.
ovMemory::String toText(ovMemory::StringView path, const DeclarationProblem& problem);

/// An entry of a file, sound or not.
struct DeclaredEntry {
    ovExport::Node* node; ///< of the file's tree
    unsigned int line;    ///< from 1
};

/// A file with everything that is wrong with it.
struct DeclarationFile {
    ovMemory::UniquePtr<ovExport::Node> tree; ///< null when the text is not JSON
    /// Those of the root: itself, its elements, or those of its member "materials". Empty for another root.
    ovMemory::Buffer<DeclaredEntry> entries;
    ovMemory::Buffer<DeclarationProblem> problems; ///< by line
};

/// Reads and checks a text. It may be one entry, an array of entries, or an object with the array
/// "materials". It also reports what the library reads without a word: names of members that mean nothing,
/// values of the wrong kind or out of range, packings that fall back to another, and colours that a texture
/// replaces.
DeclarationFile checkDeclarations(ovMemory::StringView text);

/// The same for a file.
/// @param path absolute or relative to the process' current folder
/// @return false with one line in error when the file cannot be read
bool checkDeclarationFile(ovMemory::StringView path, DeclarationFile& file, ovMemory::String& error);

} // namespace veldris

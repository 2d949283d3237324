// Files that keep materials as a whole.
#pragma once

#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/materials/DeclarationCheck.h>

namespace ovVeldris {
class System;
}

namespace veldris {

/// The text of a file of materials: an array of declarations as the library has them, each with members of
/// the program's own for what the library's format leaves out. docs/content.md lists them.
///
/// Reading the text again restores every setting except: the shadow map with its camera and parameters; a
/// colour or a number that a texture replaces; NaN and infinities; decimals of colours and of the light's
/// direction from the seventh on. Textures are kept by name.
/// @param materials not null; the text has them in this order
ovMemory::String writeMaterialFile(ovMemory::BufferView<ovVeldris::PbsMaterial* const> materials);

/// Makes the materials of a file, or overwrites what it says of those that have their names already. They are
/// not loaded: textures may want their content first.
/// @param path absolute or relative to the process' current folder
/// @param problems receives everything that checkDeclarations() finds, and each material that the manager
///        refuses. One of line 0 when the file cannot be read
/// @return the materials in the order of the file, each once; those whose entries cannot be used are left
///         out. They belong to the system's manager
ovMemory::Buffer<ovVeldris::PbsMaterial*> readMaterialFile(ovMemory::StringView path,
                                                           ovVeldris::System& system,
                                                           ovMemory::Buffer<DeclarationProblem>& problems);

} // namespace veldris

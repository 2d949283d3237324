// The members of material files, as the library's table of properties has them.
#pragma once

#include <ovVeldris/materials/PbsMaterial.h>

namespace veldris {

/// A member of an entry by name.
struct MaterialMember {
    ovMemory::StringView name;
    const ovVeldris::Setting* setting = nullptr;      ///< null: "name" or "type"
    const ovVeldris::PbsProperty* property = nullptr; ///< whose value or texture it is; null for others
    bool isInTree = false; ///< the library's own format has it; of a value, unless a texture replaces it
};

/// Every member that an entry may have. Colours and numbers come last: whether they are used depends on the
/// others.
ovMemory::BufferView<const MaterialMember> materialMembers();

/// The row of a name, or null.
const MaterialMember* findMaterialMember(ovMemory::StringView name);

/// Whether an entry has what makes its material read the property's texture instead of its value.
bool isReplaced(const ovExport::Node& entry, const ovVeldris::PbsProperty& property);

/// The packing that the library reads a text as.
ovMemory::StringView readPacking(const ovVeldris::PbsTextureRow& texture, ovMemory::StringView text);

/// Whether a text is one of those that an enumeration takes.
bool isChoice(const ovVeldris::Setting& enumeration, ovMemory::StringView text);

/// Whether a text can be the name of an attribute: a letter or '_', then letters, digits and '_'.
bool isIdentifier(ovMemory::StringView text);

} // namespace veldris

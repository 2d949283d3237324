// The members of files that keep materials as a whole, as the table of properties has them.
#pragma once

#include <ovVeldris/materials/PbsMaterial.h>

namespace ovVeldris {

/// A member of an entry by name.
struct MaterialMember {
    ovMemory::StringView name;
    const Setting* setting = nullptr;      ///< null: "name" or "type"
    const PbsProperty* property = nullptr; ///< whose value or texture it is; null for others
    bool isInTree = false; ///< the library's own format has it; of a value, unless a texture replaces it
};

/// Every member that an entry may have. Colours and numbers come last: whether they are used depends on the
/// others.
OV_API ovMemory::BufferView<const MaterialMember> materialMembers();

/// The row of a name, or null.
OV_API const MaterialMember* findMaterialMember(ovMemory::StringView name);

/// Whether an entry has what makes its material read the property's texture instead of its value.
OV_API bool isReplaced(const ovExport::Node& entry, const PbsProperty& property);

/// The packing that the library reads a text as.
OV_API ovMemory::StringView readPacking(const PbsTextureRow& texture, ovMemory::StringView text);

/// Whether a text is one of those that an enumeration takes.
OV_API bool isChoice(const Setting& enumeration, ovMemory::StringView text);

/// Whether a text can be the name of an attribute: a letter or '_', then letters, digits and '_'.
OV_API bool isIdentifier(ovMemory::StringView text);

} // namespace ovVeldris

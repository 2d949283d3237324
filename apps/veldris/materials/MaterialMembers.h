// The members of material files: one table that writing, reading and checking share.
#pragma once

#include <ovVeldris/materials/PbsMaterial.h>
#include <variant>

namespace veldris {

/// "name" or "type": strings that every entry has.
struct IdentityMember {};

/// The members that decide whether a colour or a number is used beside the texture that replaces it.
struct Replacement {
    ovMemory::StringView texture; ///< the object that replaces it
    ovMemory::StringView mix;     ///< the switch that multiplies both instead
    ovMemory::StringView unless;  ///< an object without which it is used all the same; empty for none
};

/// A bool.
struct SwitchMember {
    bool (*get)(const ovVeldris::PbsMaterial& material);
    void (*set)(ovVeldris::PbsMaterial& material, bool value);
    bool isInTree = false; ///< whether the library's own format has it
};

/// The name of a mesh's attribute: a string that is an identifier.
struct AttributeMember {
    ovMemory::String (ovVeldris::PbsMaterial::*get)() const;
    void (ovVeldris::PbsMaterial::*set)(ovMemory::StringView name);
};

/// How specular reflection is described: one of two strings.
struct ModelMember {};

/// An object of a texture's name and its packing. With accessors only where the library's own format leaves
/// it out.
struct TextureMember {
    bool isVector; ///< whether it holds a vector, in three channels, or a number, in one
    ovGraphics::Texture* (ovVeldris::PbsMaterial::*get)() const = nullptr;
    ovVeldris::ONE_CHANNEL_PACK (ovVeldris::PbsMaterial::*getChannel)() const = nullptr;
    void (ovVeldris::PbsMaterial::*set)(ovGraphics::Texture* texture,
                                        ovVeldris::ONE_CHANNEL_PACK channel) = nullptr;
};

/// A colour or a direction: a string, as ovMaths::Vector::toString() makes it.
struct VectorMember {
    ovMaths::Vector (ovVeldris::PbsMaterial::*get)() const;
    void (ovVeldris::PbsMaterial::*set)(const ovMaths::Vector& value);
    bool isDirection = false;
    Replacement replacement = {};
};

/// A number from 0 to 1.
struct FactorMember {
    float (ovVeldris::PbsMaterial::*get)() const;
    void (ovVeldris::PbsMaterial::*set)(float value);
    Replacement replacement = {};
};

/// A member of an entry by name.
struct MaterialMember {
    ovMemory::StringView name;
    std::variant<IdentityMember, SwitchMember, AttributeMember, ModelMember, TextureMember, VectorMember,
                 FactorMember>
        kind;
};

/// Every member that an entry may have. Colours and numbers come last: whether they are used depends on the
/// others.
ovMemory::BufferView<const MaterialMember> materialMembers();

/// The row of a name, or null.
const MaterialMember* findMaterialMember(ovMemory::StringView name);

/// The members of a texture's object.
inline constexpr ovMemory::StringView TEXTURE_NAME = "name";
inline constexpr ovMemory::StringView TEXTURE_PACKING = "packing";

/// Whether an entry has what makes its material read a texture instead of the colour or number.
bool isReplaced(const ovExport::Node& entry, const Replacement& replacement);

/// The model of its text, or null for a text that is none.
const ovVeldris::PBS_MODEL* findPbsModel(ovMemory::StringView text);
ovMemory::StringView toText(ovVeldris::PBS_MODEL model);

/// Whether a text can be the name of an attribute: a letter or '_', then letters, digits and '_'.
bool isIdentifier(ovMemory::StringView text);

} // namespace veldris

// The properties of PBS materials in one table. Files, shader texts, program keys, constants, texture units,
// setters and the settings that tools show are read off it: a new property is a row here, its fields in
// PbsSettings, its setters, and its term in the shader.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovVeldris/materials/PbsSettings.h>

namespace ovVeldris {

/// A bit, a unit or a rank that a row does not have.
inline constexpr int PBS_NONE = -1;

/// What a setting is called.
struct PbsName {
    ovMemory::StringView setting; ///< its setter in lower case with dashes
    ovMemory::StringView member;  ///< in files; empty: not kept in them
    ovMemory::StringView help;    ///< one sentence without a full stop
};

/// A vector or a number, or nothing when both fields are null.
struct PbsValue {
    PbsName name = {};
    ovMaths::Vector PbsSettings::*vector = nullptr;
    float PbsSettings::*number = nullptr;
    bool isDirection = false; ///< no colour: negative components mean something

    explicit operator bool() const { return vector || number; }
};

/// A texture and the channels that are read of it, or nothing when the field is null. It holds a vector, in
/// three channels, or a number, in one.
struct PbsTextureRow {
    PbsName name = {};
    PbsTexture PbsSettings::*field = nullptr;
    THREE_CHANNEL_PACK PbsSettings::*vectorChannels = nullptr;
    ONE_CHANNEL_PACK PbsSettings::*numberChannel = nullptr;
    ovMemory::StringView channelsSetting = {}; ///< what the channels are called as a setting
    bool isInTree = true;                      ///< the library's own format has it
    int keyBit = PBS_NONE;                     ///< of the program's key: there is such a texture
    int channelsBit = PBS_NONE;                ///< of the key: the first of the code of the channels
    int packingRank = PBS_NONE;                ///< textures of the surface take units in this order
    int unit = PBS_NONE;                       ///< of textures that are not packed

    explicit operator bool() const { return field != nullptr; }
    /// Whether it is one of the surface, read at the mesh's texture coordinates.
    bool isPacked() const { return packingRank != PBS_NONE; }
    /// Whether the settings name one.
    bool isIn(const PbsSettings& settings) const { return field && (settings.*field).isNamed(); }
    /// The channels as swizzles and files have them, in lower case.
    ovMemory::StringView getChannelsText(const PbsSettings& settings) const {
        return vectorChannels ? ThreeChannelPackUtils::enumToStringLower(settings.*vectorChannels)
                              : OneChannelPackUtils::enumToStringLower(settings.*numberChannel);
    }
};

/// A switch, or nothing when the field is null. All of them wait for load().
struct PbsSwitch {
    PbsName name = {};
    bool PbsSettings::*field = nullptr;
    ovMemory::StringView define = {}; ///< of the pixel stage, with the other switches; empty: made elsewhere
    bool isInTree = false;            ///< the library's own format has it, when it is false
    int keyBit = PBS_NONE;            ///< of the program's key
    int hashedKeyBit = PBS_NONE;      ///< of the word of switches that goes into the key's hash

    explicit operator bool() const { return field != nullptr; }
};

/// A property of the surface, its surroundings or its light: a value, a texture, or both.
struct PbsProperty {
    ovMemory::StringView define = {}; ///< "ALBEDO" of ALBEDO_TEXTURE and ALBEDO_CHANNELS
    PbsValue value = {};              ///< replaced by the texture unless both are mixed
    PbsValue second = {};             ///< a number in the constant of the value, which is then always there
    PbsTextureRow texture = {};
    PbsSwitch mix = {};         ///< the texture is multiplied by the value
    PbsSwitch isCube = {};      ///< of maps of the surroundings: a map that is not loaded counts as a cube
    PbsSwitch prefiltered = {}; ///< the mips are blurred by roughness already
    /// The value is used beside the texture as long as there is none here.
    PbsTexture PbsSettings::*substitute = nullptr;
    bool needsSize = false; ///< a constant holds the texture's size

    /// Whether the value counts beside the texture: there is none, or both are mixed.
    bool isValueUsed(const PbsSettings& settings) const {
        return !texture.isIn(settings) || (mix && settings.*mix.field);
    }
    /// What the constant of the value, which there is, holds: a vector, or (number, second number, 0, 0).
    OV_API ovMaths::Vector getConstant(const PbsSettings& settings) const;
};

/// The name of an attribute of meshes.
struct PbsAttribute {
    PbsName name = {};
    ovMemory::String PbsSettings::*field;
    ovMemory::StringView define = {}; ///< of the vertex stage
};

/// The members of a texture's object in files.
inline constexpr ovMemory::StringView PBS_TEXTURE_NAME = "name";
inline constexpr ovMemory::StringView PBS_TEXTURE_PACKING = "packing";

/// The name of PbsSettings::pbsModel.
inline constexpr PbsName PBS_MODEL_NAME = {"pbs-model", "pbsModel", "how specular reflection is described"};

/// How many properties there are.
inline constexpr std::size_t PBS_PROPERTY_COUNT = 13;

/// Every property. Of two vectors, two numbers, two textures of the surface and so on, the first comes first
/// in files, defines and constants.
OV_API const std::array<PbsProperty, PBS_PROPERTY_COUNT>& pbsProperties();
/// Switches that belong to no property.
OV_API ovMemory::BufferView<const PbsSwitch> pbsSwitches();
/// All attributes, in the order of their defines and of their hashes in the key.
OV_API ovMemory::BufferView<const PbsAttribute> pbsAttributes();

/// The place of a row in the table.
inline std::size_t getPbsRow(const PbsProperty& property) {
    return static_cast<std::size_t>(&property - pbsProperties().data());
}

/// The row that a field belongs to, which is in the table.
OV_API const PbsProperty& getPbsProperty(ovMaths::Vector PbsSettings::*field);
OV_API const PbsProperty& getPbsProperty(float PbsSettings::*field);
OV_API const PbsProperty& getPbsProperty(PbsTexture PbsSettings::*field);

/// Calls a function for every switch, in the order of their defines.
template <typename Function>
void forEachPbsSwitch(const Function& function) {
    for (const PbsProperty& property : pbsProperties())
        for (const PbsSwitch* const row : {&property.mix, &property.isCube, &property.prefiltered})
            if (*row)
                function(*row);
    for (const PbsSwitch& row : pbsSwitches())
        function(row);
}

} // namespace ovVeldris

#include <ovVeldris/materials/PbsParametersTree.h>

#include <ovExport/Node.h>
#include <ovGraphics/resources/Managers.h>
#include <ovVeldris/materials/PbsPropertiesInternal.h>

namespace ovVeldris {

namespace {

using ovExport::Node;

/// Vectors that have no texture.
struct VectorMember {
    ovMemory::StringView name;
    ovMaths::Vector PbsMaterialParameters::*field;
};
constexpr std::array VECTORS = {VectorMember{"lightDirection", &PbsMaterialParameters::lightDirection},
                                VectorMember{"lightColor", &PbsMaterialParameters::lightColor}};

/// Textures that replace neither a colour nor a factor.
constexpr std::array PLAIN_TEXTURES = {&PBS_NORMAL_MAP_TEXTURE, &PBS_IRRADIANCE_TEXTURE};

/// Switches that are written when they differ from their default, true.
struct TrueByDefault {
    ovMemory::StringView name;
    bool PbsMaterialParameters::*field;
};
constexpr std::array CUBE_SWITCHES = {
    TrueByDefault{"environmentTextureIsCubeByDefault",
                  &PbsMaterialParameters::environmentTextureIsCubeByDefault},
    TrueByDefault{"irradianceTextureIsCubeByDefault",
                  &PbsMaterialParameters::irradianceTextureIsCubeByDefault},
};

constexpr ovMemory::StringView ALPHA_CUTOFF = "alphaCutoff";
constexpr ovMemory::StringView TEXTURE_NAME = "name";
constexpr ovMemory::StringView TEXTURE_PACKING = "packing";

/// @return whether there is a texture to write
bool exportTexture(const PbsMaterialParameters& parameters, const PbsTextureProperty& property, Node& node) {
    const ovGraphics::Texture* const texture = (parameters.*property.texture).get();
    if (!texture)
        return false;
    Node* const member = node.addMember(property.memberName);
    member->addMember(TEXTURE_NAME)->setAsString(texture->getName());
    member->addMember(TEXTURE_PACKING)->setAsString(property.getChannelsText(parameters));
    return true;
}

/// @return whether the node has an object for the texture, whatever that holds
bool importTexture(PbsMaterialParameters& parameters, const PbsTextureProperty& property, const Node& node,
                   ovGraphics::TextureManager* textures) {
    const Node* const member = node.getMemberValue(property.memberName);
    if (!member || !member->isObject())
        return false;
    const Node* const name = member->getMemberValue(TEXTURE_NAME);
    if (textures && name && name->isString())
        parameters.*property.texture = textures->createOrRetrieve(name->getValueAsStringView());
    const Node* const packing = member->getMemberValue(TEXTURE_PACKING);
    if (!packing || !packing->isString())
        return true;
    const ovMemory::StringView text = packing->getValueAsStringView();
    if (property.vectorChannels)
        parameters.*property.vectorChannels = ThreeChannelPackUtils::stringLowerToEnum(text);
    else
        parameters.*property.numberChannel = OneChannelPackUtils::stringLowerToEnum(text);
    return true;
}

void exportVector(const ovMaths::Vector& vector, ovMemory::StringView name, Node& node) {
    node.addMember(name)->setAsString(vector.toString());
}

void importVector(ovMaths::Vector& vector, ovMemory::StringView name, const Node& node) {
    const Node* const member = node.getMemberValue(name);
    if (member && member->isString())
        vector.fromString(member->getValueAsStringView());
}

void importNumber(float& number, ovMemory::StringView name, const Node& node) {
    const Node* const member = node.getMemberValue(name);
    if (member && member->isValueTypeNumber())
        number = member->getValueAsFloat();
}

} // namespace

void exportPbsParameters(const PbsMaterialParameters& parameters, Node& node) {
    for (const VectorMember& entry : VECTORS)
        exportVector(parameters.*entry.field, entry.name, node);
    for (const PbsColorProperty* const property : PBS_COLORS)
        if (!exportTexture(parameters, property->texture, node))
            exportVector(parameters.*property->color, property->memberName, node);
    for (const PbsFactorProperty* const property : PBS_FACTORS)
        if (!exportTexture(parameters, property->texture, node))
            node.addMember(property->memberName)->setAsFloat(parameters.*property->factor);
    if (parameters.alphaTexture.get())
        node.addMember(ALPHA_CUTOFF)->setAsFloat(parameters.alphaCutoff);
    for (const PbsTextureProperty* const property : PLAIN_TEXTURES)
        exportTexture(parameters, *property, node);
    for (const TrueByDefault& entry : CUBE_SWITCHES)
        if (!(parameters.*entry.field))
            node.addMember(entry.name)->setAsBool(false);
}

void importPbsParameters(PbsMaterialParameters& parameters, const Node& node,
                         ovGraphics::TextureManager* textures) {
    for (const VectorMember& entry : VECTORS)
        importVector(parameters.*entry.field, entry.name, node);
    for (const PbsColorProperty* const property : PBS_COLORS)
        if (!importTexture(parameters, property->texture, node, textures))
            importVector(parameters.*property->color, property->memberName, node);
    for (const PbsFactorProperty* const property : PBS_FACTORS)
        if (!importTexture(parameters, property->texture, node, textures))
            importNumber(parameters.*property->factor, property->memberName, node);
    importNumber(parameters.alphaCutoff, ALPHA_CUTOFF, node);
    for (const PbsTextureProperty* const property : PLAIN_TEXTURES)
        importTexture(parameters, *property, node, textures);
    for (const TrueByDefault& entry : CUBE_SWITCHES) {
        const Node* const member = node.getMemberValue(entry.name);
        if (member && member->isBool())
            parameters.*entry.field = member->getValueAsBool();
    }
}

} // namespace ovVeldris

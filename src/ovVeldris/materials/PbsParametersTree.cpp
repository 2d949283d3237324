#include <ovVeldris/materials/PbsParametersTree.h>

#include <ovExport/Node.h>
#include <ovGraphics/Managers.h>
#include <ovVeldris/materials/PbsProperties.h>

namespace ovVeldris {

namespace {

using ovExport::Node;

/// @return whether there is a texture to write
bool exportTexture(const PbsSettings& settings, const PbsTextureRow& row, Node& node) {
    const ovGraphics::Texture* const texture = row && row.isInTree ? (settings.*row.field).get() : nullptr;
    if (!texture)
        return false;
    Node* const member = node.addMember(row.name.member);
    member->addMember(PBS_TEXTURE_NAME)->setAsString(texture->getName());
    member->addMember(PBS_TEXTURE_PACKING)->setAsString(row.getChannelsText(settings));
    return true;
}

void importChannels(PbsSettings& settings, const PbsTextureRow& row, ovMemory::StringView text) {
    if (row.vectorChannels)
        settings.*row.vectorChannels = ThreeChannelPackUtils::stringLowerToEnum(text);
    else
        settings.*row.numberChannel = OneChannelPackUtils::stringLowerToEnum(text);
}

/// @return whether the node has an object for the texture, whatever that holds
bool importTexture(PbsSettings& settings, const PbsTextureRow& row, const Node& node,
                   ovGraphics::TextureManager* textures) {
    const Node* const member = row && row.isInTree ? node.getMemberValue(row.name.member) : nullptr;
    if (!member || !member->isObject())
        return false;
    const Node* const name = member->getMemberValue(PBS_TEXTURE_NAME);
    // Made by name and not loaded: the tree knows textures by their names only.
    if (textures && name && name->isString())
        settings.*row.field = textures->createOrRetrieve(name->getValueAsStringView());
    const Node* const packing = member->getMemberValue(PBS_TEXTURE_PACKING);
    if (packing && packing->isString())
        importChannels(settings, row, packing->getValueAsStringView());
    return true;
}

void importVector(PbsSettings& settings, const PbsValue& value, const Node& node) {
    const Node* const member = node.getMemberValue(value.name.member);
    if (member && member->isString())
        (settings.*value.vector).fromString(member->getValueAsStringView());
}

void importNumber(PbsSettings& settings, const PbsValue& value, const Node& node) {
    const Node* const member = node.getMemberValue(value.name.member);
    if (member && member->isValueTypeNumber())
        settings.*value.number = member->getValueAsFloat();
}

void exportFactor(const PbsSettings& settings, const PbsProperty& property, Node& node) {
    if (!exportTexture(settings, property.texture, node))
        node.addMember(property.value.name.member)->setAsFloat(settings.*property.value.number);
    else if (property.second)
        node.addMember(property.second.name.member)->setAsFloat(settings.*property.second.number);
}

void importFactor(PbsSettings& settings, const PbsProperty& property, const Node& node,
                  ovGraphics::TextureManager* textures) {
    if (!importTexture(settings, property.texture, node, textures))
        importNumber(settings, property.value, node);
    if (property.second)
        importNumber(settings, property.second, node);
}

} // namespace

void exportPbsParameters(const PbsSettings& settings, Node& node) {
    for (const PbsProperty& property : pbsProperties())
        if (property.value.vector && !exportTexture(settings, property.texture, node))
            node.addMember(property.value.name.member)
                ->setAsString((settings.*property.value.vector).toExactString());
    for (const PbsProperty& property : pbsProperties())
        if (property.value.number)
            exportFactor(settings, property, node);
    for (const PbsProperty& property : pbsProperties())
        if (!property.value)
            exportTexture(settings, property.texture, node);
    forEachPbsSwitch([&](const PbsSwitch& row) {
        if (row.isInTree && !(settings.*row.field))
            node.addMember(row.name.member)->setAsBool(false);
    });
}

void importPbsParameters(PbsSettings& settings, const Node& node, ovGraphics::TextureManager* textures) {
    for (const PbsProperty& property : pbsProperties())
        if (property.value.vector && !importTexture(settings, property.texture, node, textures))
            importVector(settings, property.value, node);
    for (const PbsProperty& property : pbsProperties())
        if (property.value.number)
            importFactor(settings, property, node, textures);
    for (const PbsProperty& property : pbsProperties())
        if (!property.value)
            importTexture(settings, property.texture, node, textures);
    forEachPbsSwitch([&](const PbsSwitch& row) {
        const Node* const member = row.isInTree ? node.getMemberValue(row.name.member) : nullptr;
        if (member && member->isBool())
            settings.*row.field = member->getValueAsBool();
    });
}

} // namespace ovVeldris

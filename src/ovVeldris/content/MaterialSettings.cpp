#include <ovVeldris/content/MaterialSettings.h>

#include <ovExport/Node.h>
#include <ovGraphics/Managers.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/MaterialMembers.h>
#include <ovVeldris/core/GraphicsEngine.h>

namespace ovVeldris {

using ovExport::Node;
using ovMemory::String;
using ovMemory::StringView;

namespace {

/// Whether a colour or a number is used and still missing: the library leaves it out beside its texture, also
/// where the material multiplies both.
bool isMissing(const Node& entry, const MaterialMember& member) {
    return !entry.getMemberValue(member.name) && !(member.property && isReplaced(entry, *member.property));
}

void writeTexture(const PbsMaterial& material, const MaterialMember& member, Node& entry) {
    const auto* const texture = std::get<ovGraphics::Texture*>(member.setting->get(material));
    if (!texture)
        return;
    Node* const object = entry.addMember(member.name);
    object->addMember(PBS_TEXTURE_NAME)->setAsString(texture->getName());
    object->addMember(PBS_TEXTURE_PACKING)
        ->setAsString(material.getSettingAsText(member.property->texture.channelsSetting));
}

/// Adds a member to an entry that has what the library itself writes.
void writeMember(const PbsMaterial& material, const MaterialMember& member, Node& entry) {
    if (!member.setting || member.isInTree)
        return;
    const SettingValue value = member.setting->get(material);
    switch (member.setting->kind) {
    case SETTING_KIND::TEXTURE:
        return writeTexture(material, member, entry);
    case SETTING_KIND::FLAG:
        return entry.addMember(member.name)->setAsBool(std::get<bool>(value));
    case SETTING_KIND::VECTOR:
        if (isMissing(entry, member))
            entry.addMember(member.name)->setAsString(std::get<ovMaths::Vector>(value).toExactString());
        return;
    case SETTING_KIND::NUMBER:
        if (isMissing(entry, member))
            entry.addMember(member.name)->setAsFloat(std::get<float>(value));
        return;
    default:
        return entry.addMember(member.name)->setAsString(std::get<String>(value));
    }
}

void readTexture(PbsMaterial& material, const MaterialMember& member, const Node& value,
                 ovGraphics::TextureManager& textures) {
    if (!value.isObject())
        return;
    const Node* const name = value.getMemberValue(PBS_TEXTURE_NAME);
    const Node* const packing = value.getMemberValue(PBS_TEXTURE_PACKING);
    const PbsTextureRow& row = member.property->texture;
    if (name && name->isString())
        member.setting->set(material, textures.createOrRetrieve(name->getValueAsStringView()));
    if (packing && packing->isString())
        PbsMaterial::settings()
            .find(row.channelsSetting)
            ->set(material, String(readPacking(row, packing->getValueAsStringView())));
}

/// Takes over one member of an entry where the library does not. What is of another kind changes nothing;
/// what is out of range is taken, as the library takes it.
void readMember(PbsMaterial& material, const MaterialMember& member, const Node& value,
                ovGraphics::TextureManager& textures) {
    if (!member.setting || member.isInTree)
        return;
    const Setting& setting = *member.setting;
    const StringView text = value.getValueAsStringView();
    const bool isText = (setting.kind == SETTING_KIND::TEXT && isIdentifier(text)) ||
                        (setting.kind == SETTING_KIND::ENUMERATION && isChoice(setting, text));
    ovMaths::Vector vector;
    if (setting.kind == SETTING_KIND::TEXTURE)
        readTexture(material, member, value, textures);
    else if (setting.kind == SETTING_KIND::FLAG && value.isBool())
        setting.set(material, value.getValueAsBool());
    else if (isText)
        setting.set(material, String(text));
    else if (setting.kind == SETTING_KIND::VECTOR && vector.fromString(text))
        setting.set(material, vector);
    else if (setting.kind == SETTING_KIND::NUMBER && value.isValueTypeNumber())
        setting.set(material, value.getValueAsFloat());
}

} // namespace

MaterialSettingsWriter::~MaterialSettingsWriter() = default;

void MaterialSettingsWriter::onMaterial(Material* material, Node* node) {
    if (const auto* const pbs = dynamic_cast<const PbsMaterial*>(material))
        for (const MaterialMember& member : materialMembers())
            writeMember(*pbs, member, *node);
}

MaterialSettingsReader::~MaterialSettingsReader() = default;

void MaterialSettingsReader::onMaterial(Material* material, Node* node) {
    auto* const pbs = dynamic_cast<PbsMaterial*>(material);
    const ovGraphics::System* const graphics = graphicsSystemOf(&_system);
    if (!pbs || !graphics)
        return;
    for (const MaterialMember& member : materialMembers())
        if (const Node* const value = node->getMemberValue(member.name))
            readMember(*pbs, member, *value, *graphics->getTextureManager());
}

} // namespace ovVeldris

#include <veldris/materials/MaterialFile.h>

#include <algorithm>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <unordered_set>
#include <veldris/materials/MaterialMembers.h>

namespace veldris {

namespace {

using ovExport::Node;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::PbsMaterial;
using ovVeldris::SETTING_KIND;
using ovVeldris::SettingValue;

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
    object->addMember(ovVeldris::PBS_TEXTURE_NAME)->setAsString(texture->getName());
    object->addMember(ovVeldris::PBS_TEXTURE_PACKING)
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
    const Node* const name = value.getMemberValue(ovVeldris::PBS_TEXTURE_NAME);
    const Node* const packing = value.getMemberValue(ovVeldris::PBS_TEXTURE_PACKING);
    const ovVeldris::PbsTextureRow& row = member.property->texture;
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
    const ovVeldris::Setting& setting = *member.setting;
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

void readMembers(PbsMaterial& material, const Node& entry, ovVeldris::System& system) {
    ovGraphics::TextureManager& textures =
        *system.getGraphicsEngine()->getGraphicsSystem()->getTextureManager();
    for (const MaterialMember& member : materialMembers())
        if (const Node* const value = entry.getMemberValue(member.name))
            readMember(material, member, *value, textures);
}

/// Whether an entry has all that the library asks for before it asks its manager.
bool isDeclaration(const Node& entry) {
    const Node* const name = entry.getMemberValue("name");
    const Node* const type = entry.getMemberValue("type");
    return name && name->isString() && type && type->isString() &&
           ovVeldris::MaterialTypeUtils::stringToEnum(type->getValueAsStringView()) ==
               ovVeldris::MATERIAL_TYPE::PBS;
}

PbsMaterial* readEntry(const DeclaredEntry& entry, ovVeldris::System& system,
                       Buffer<DeclarationProblem>& problems) {
    // Asked before the loader, so that its only failure left is the manager's, which then gets the right
    // message.
    if (!isDeclaration(*entry.node))
        return nullptr; // the check has told why
    const auto result = system.getContentLoader()->processMaterialTree(entry.node, false);
    auto* const material =
        result._results.empty() ? nullptr : dynamic_cast<PbsMaterial*>(result._results.front());
    if (material)
        readMembers(*material, *entry.node, system);
    else
        problems.push_back(
            {entry.line, "material \"" + entry.node->getMemberValue("name")->getValueAsString() +
                             "\": the material manager refuses the name; rename the material."});
    return material;
}

} // namespace

ovMemory::String writeMaterialFile(ovMemory::BufferView<PbsMaterial* const> materials) {
    const auto root = Node::create(ovExport::NODE_NATURE::ARRAY);
    for (PbsMaterial* const material : materials) {
        Node* const entry = root->addElement();
        material->exportClassToTree(entry);
        for (const MaterialMember& member : materialMembers())
            writeMember(*material, member, *entry);
    }
    return ovExport::JsonExporter().exportTreeIntoString(root.get()) + "\n";
}

Buffer<PbsMaterial*> readMaterialFile(StringView path, ovVeldris::System& system,
                                      Buffer<DeclarationProblem>& problems) {
    DeclarationFile file;
    ovMemory::String error;
    problems.clear();
    if (!checkDeclarationFile(path, file, error)) {
        problems.push_back({0, error});
        return {};
    }
    problems = std::move(file.problems);
    Buffer<PbsMaterial*> materials;
    std::unordered_set<const PbsMaterial*> seen;
    for (const DeclaredEntry& entry : file.entries) {
        PbsMaterial* const material = readEntry(entry, system, problems);
        // Two entries of one name describe one material, the second over the first.
        if (material && seen.insert(material).second)
            materials.push_back(material);
    }
    std::stable_sort(problems.begin(), problems.end(),
                     [](const auto& left, const auto& right) { return left.line < right.line; });
    return materials;
}

} // namespace veldris

#include <veldris/materials/MaterialFile.h>

#include <algorithm>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Managers.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/System.h>
#include <unordered_set>
#include <veldris/materials/MaterialMembers.h>

namespace veldris {

namespace {

using ovExport::Node;
using ovMemory::Buffer;
using ovMemory::StringView;
using ovVeldris::OneChannelPackUtils;
using ovVeldris::PbsMaterial;

/// Adds a member to an entry that has what the library itself writes.
class MemberWriter {
public:
    MemberWriter(const PbsMaterial& material, Node& entry, StringView name)
        : _material(material)
        , _entry(entry)
        , _name(name) {}

    void operator()(const IdentityMember&) const {} // the library writes both

    void operator()(const SwitchMember& member) const {
        if (!member.isInTree)
            _entry.addMember(_name)->setAsBool(member.get(_material));
    }

    void operator()(const AttributeMember& member) const {
        _entry.addMember(_name)->setAsString((_material.*member.get)());
    }

    void operator()(const ModelMember&) const {
        _entry.addMember(_name)->setAsString(toText(_material.getPbsModel()));
    }

    void operator()(const TextureMember& member) const {
        const ovGraphics::Texture* const texture = member.get ? (_material.*member.get)() : nullptr;
        if (!texture)
            return;
        Node* const object = _entry.addMember(_name);
        object->addMember(TEXTURE_NAME)->setAsString(texture->getName());
        object->addMember(TEXTURE_PACKING)
            ->setAsString(OneChannelPackUtils::enumToStringLower((_material.*member.getChannel)()));
    }

    void operator()(const VectorMember& member) const {
        if (_isMissing(member.replacement))
            _entry.addMember(_name)->setAsString((_material.*member.get)().toString());
    }

    void operator()(const FactorMember& member) const {
        if (_isMissing(member.replacement))
            _entry.addMember(_name)->setAsFloat((_material.*member.get)());
    }

private:
    /// The library leaves out colours and numbers beside their texture, also where the material uses both.
    bool _isMissing(const Replacement& replacement) const {
        return !_entry.getMemberValue(_name) && !isReplaced(_entry, replacement);
    }

    const PbsMaterial& _material;
    Node& _entry;
    StringView _name;
};

/// Takes over one member of an entry where the library does not. What is of another kind changes nothing.
class MemberReader {
public:
    MemberReader(PbsMaterial& material, const Node& value, ovGraphics::TextureManager& textures)
        : _material(material)
        , _value(value)
        , _textures(textures) {}

    void operator()(const IdentityMember&) const {}

    void operator()(const SwitchMember& member) const {
        if (!member.isInTree && _value.isBool())
            member.set(_material, _value.getValueAsBool());
    }

    void operator()(const AttributeMember& member) const {
        if (isIdentifier(_value.getValueAsStringView()))
            (_material.*member.set)(_value.getValueAsStringView());
    }

    void operator()(const ModelMember&) const {
        if (const ovVeldris::PBS_MODEL* const model = findPbsModel(_value.getValueAsStringView()))
            _material.setPbsModel(*model);
    }

    void operator()(const TextureMember& member) const {
        if (!member.set || !_value.isObject())
            return;
        const Node* const name = _value.getMemberValue(TEXTURE_NAME);
        const Node* const packing = _value.getMemberValue(TEXTURE_PACKING);
        ovGraphics::Texture* const texture = name && name->isString()
                                                 ? _textures.createOrRetrieve(name->getValueAsStringView())
                                                 : (_material.*member.get)();
        (_material.*member.set)(texture,
                                packing && packing->isString()
                                    ? OneChannelPackUtils::stringLowerToEnum(packing->getValueAsStringView())
                                    : (_material.*member.getChannel)());
    }

    void operator()(const VectorMember& member) const {
        ovMaths::Vector vector;
        if (vector.fromString(_value.getValueAsStringView()))
            (_material.*member.set)(vector);
    }

    void operator()(const FactorMember& member) const {
        if (_value.isValueTypeNumber())
            (_material.*member.set)(_value.getValueAsFloat());
    }

private:
    PbsMaterial& _material;
    const Node& _value;
    ovGraphics::TextureManager& _textures;
};

void readMembers(PbsMaterial& material, const Node& entry, ovVeldris::System& system) {
    ovGraphics::TextureManager& textures =
        *system.getGraphicsEngine()->getGraphicsSystem()->getTextureManager();
    for (const MaterialMember& member : materialMembers())
        if (const Node* const value = entry.getMemberValue(member.name))
            std::visit(MemberReader(material, *value, textures), member.kind);
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
            std::visit(MemberWriter(*material, *entry, member.name), member.kind);
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
        if (material && seen.insert(material).second)
            materials.push_back(material);
    }
    std::stable_sort(problems.begin(), problems.end(),
                     [](const auto& left, const auto& right) { return left.line < right.line; });
    return materials;
}

} // namespace veldris

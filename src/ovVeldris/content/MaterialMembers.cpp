#include <ovVeldris/content/MaterialMembers.h>

#include <algorithm>
#include <ovExport/Node.h>

namespace ovVeldris {

namespace {

using ovExport::Node;
using ovMemory::StringView;

const Setting* settingOf(const PbsName& name) {
    return PbsMaterial::settings().find(name.setting);
}

MaterialMember memberOf(const PbsName& name, bool isInTree = false) {
    return {name.member, settingOf(name), nullptr, isInTree};
}

// Made of the library's own table: a second list in the program would soon lack what the library has learnt.
ovMemory::Buffer<MaterialMember> listMembers() {
    ovMemory::Buffer<MaterialMember> members = {{.name = "name"}, {.name = "type"}};
    members.push_back(memberOf(PBS_MODEL_NAME));
    for (const PbsProperty& property : pbsProperties()) {
        const PbsName& name = property.texture.name;
        if (!name.member.empty())
            members.push_back({name.member, settingOf(name), &property, property.texture.isInTree});
    }
    forEachPbsSwitch([&](const PbsSwitch& row) { members.push_back(memberOf(row.name, row.isInTree)); });
    for (const PbsAttribute& row : pbsAttributes())
        members.push_back(memberOf(row.name));
    for (const PbsProperty& property : pbsProperties()) {
        if (property.value)
            members.push_back({property.value.name.member, settingOf(property.value.name), &property});
        if (property.second)
            members.push_back(memberOf(property.second.name));
    }
    return members;
}

bool hasObject(const Node& entry, const PbsTextureRow& texture) {
    const Node* const member = texture ? entry.getMemberValue(texture.name.member) : nullptr;
    return member && member->isObject();
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '_';
}

} // namespace

ovMemory::BufferView<const MaterialMember> materialMembers() {
    static const ovMemory::Buffer<MaterialMember> MEMBERS = listMembers();
    return MEMBERS;
}

const MaterialMember* findMaterialMember(StringView name) {
    const auto members = materialMembers();
    const auto member = std::find_if(members.begin(), members.end(),
                                     [&](const MaterialMember& row) { return row.name == name; });
    return member == members.end() ? nullptr : &*member;
}

bool isReplaced(const Node& entry, const PbsProperty& property) {
    if (!hasObject(entry, property.texture))
        return false;
    // With the mix switch the value counts beside the texture. A switch of another kind than a bool is not
    // one.
    const Node* const mix = entry.getMemberValue(property.mix.name.member);
    if (mix && mix->isBool() && mix->getValueAsBool())
        return false;
    return !property.substitute || hasObject(entry, getPbsProperty(property.substitute).texture);
}

StringView readPacking(const PbsTextureRow& texture, StringView text) {
    return texture.vectorChannels
               ? ThreeChannelPackUtils::enumToStringLower(ThreeChannelPackUtils::stringLowerToEnum(text))
               : OneChannelPackUtils::enumToStringLower(OneChannelPackUtils::stringLowerToEnum(text));
}

bool isChoice(const Setting& enumeration, StringView text) {
    const auto& choices = enumeration.choices;
    return std::find(choices.begin(), choices.end(), text) != choices.end();
}

bool isIdentifier(StringView text) {
    const auto isNext = [](char character) {
        return isLetter(character) || (character >= '0' && character <= '9');
    };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isNext);
}

} // namespace ovVeldris

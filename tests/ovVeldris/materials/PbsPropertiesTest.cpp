#include <ovVeldris/materials/PbsProperties.h>

#include <cctype>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <set>

using namespace ovVeldris;
using ovMaths::Vector;

namespace {

/// Every name of the tables.
ovMemory::Buffer<PbsName> allNames() {
    ovMemory::Buffer<PbsName> names = {PBS_MODEL_NAME};
    for (const PbsProperty& property : pbsProperties()) {
        for (const PbsValue& value : {property.value, property.second})
            if (value)
                names.push_back(value.name);
        if (property.texture)
            names.push_back(property.texture.name);
    }
    forEachPbsSwitch([&](const PbsSwitch& row) { names.push_back(row.name); });
    for (const PbsAttribute& attribute : pbsAttributes())
        names.push_back(attribute.name);
    return names;
}

/// "albedo-color" as "albedoColor".
ovMemory::String toCamelCase(ovMemory::StringView name) {
    ovMemory::String camel;
    bool upper = false;
    for (const char character : name) {
        if (character != '-')
            camel += upper ? static_cast<char>(std::toupper(character)) : character;
        upper = character == '-';
    }
    return camel;
}

} // namespace

TEST(PbsPropertiesTest, SettingsAndMembersHaveNamesOfTheirOwn) {
    std::set<ovMemory::StringView> settings;
    std::set<ovMemory::StringView> members;
    for (const PbsName& name : allNames()) {
        EXPECT_TRUE(settings.insert(name.setting).second) << name.setting;
        EXPECT_TRUE(name.member.empty() || members.insert(name.member).second) << name.member;
        EXPECT_FALSE(name.help.empty()) << name.setting;
        EXPECT_NE(name.help.back(), '.') << name.setting;
    }
    EXPECT_EQ(settings.size(), 39u);
    EXPECT_EQ(members.size(), 38u) << "the shadow map is in no file";
}

TEST(PbsPropertiesTest, MembersAreCalledLikeTheSettings) {
    const std::set<ovMemory::StringView> others = {"metalnessValue", "roughnessGlossinessValue", "alphaValue",
                                                   "normalMap", ""};
    for (const PbsName& name : allNames())
        EXPECT_TRUE(others.contains(name.member) || name.member == toCamelCase(name.setting)) << name.member;
}

TEST(PbsPropertiesTest, BitsOfTheKeyBelongToOneRow) {
    uint64_t key = 0;
    const auto take = [&](int first, unsigned int count, ovMemory::StringView name) {
        for (unsigned int i = 0; first != PBS_NONE && i < count; ++i) {
            const uint64_t bit = uint64_t(1) << (static_cast<unsigned int>(first) + i);
            EXPECT_FALSE(key & bit) << name;
            key |= bit;
        }
    };
    uint64_t hashed = 0;
    for (const PbsProperty& property : pbsProperties()) {
        take(property.texture.keyBit, 1, property.texture.name.setting);
        take(property.texture.channelsBit, property.texture.vectorChannels ? 3 : 2, property.define);
    }
    forEachPbsSwitch([&](const PbsSwitch& row) {
        take(row.keyBit, 1, row.name.setting);
        if (row.hashedKeyBit != PBS_NONE)
            hashed += uint64_t(1) << row.hashedKeyBit;
    });
    EXPECT_EQ(key, (uint64_t(1) << 39) - 1);
    EXPECT_EQ(hashed, 255u);
}

TEST(PbsPropertiesTest, TexturesHaveARankOrAUnit) {
    std::multiset<int> ranks;
    std::multiset<int> units;
    for (const PbsProperty& property : pbsProperties()) {
        if (!property.texture)
            continue;
        EXPECT_NE(property.texture.isPacked(), property.texture.unit != PBS_NONE) << property.define;
        (property.texture.isPacked() ? ranks : units)
            .insert(property.texture.isPacked() ? property.texture.packingRank : property.texture.unit);
    }
    EXPECT_EQ(ranks, (std::multiset<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(units, (std::multiset<int>{8, 9, 10}));
}

TEST(PbsPropertiesTest, FieldsLeadToTheirRows) {
    for (const PbsProperty& property : pbsProperties()) {
        if (property.value.vector) {
            EXPECT_EQ(&getPbsProperty(property.value.vector), &property);
        }
        for (const auto number : {property.value.number, property.second.number}) {
            if (number) {
                EXPECT_EQ(&getPbsProperty(number), &property);
            }
        }
        if (property.texture) {
            EXPECT_EQ(&getPbsProperty(property.texture.field), &property);
        }
        EXPECT_EQ(&pbsProperties()[getPbsRow(property)], &property);
    }
    EXPECT_EQ(getPbsProperty(&PbsSettings::normalMapTexture).define, "NORMAL_MAP");
    EXPECT_EQ(getPbsProperty(&PbsSettings::alphaCutoff).define, "ALPHA");
}

TEST(PbsPropertiesTest, ValuesCountWithoutATextureAndMixed) {
    ovGraphics::System graphics;
    ovGraphics::Texture texture(&graphics);
    for (const PbsProperty& property : pbsProperties()) {
        PbsSettings settings;
        EXPECT_TRUE(property.isValueUsed(settings)) << property.define;
        if (!property.texture)
            continue;
        settings.*property.texture.field = &texture;
        EXPECT_FALSE(property.isValueUsed(settings)) << property.define;
        if (!property.mix)
            continue;
        settings.*property.mix.field = true;
        EXPECT_TRUE(property.isValueUsed(settings)) << property.define;
    }
}

TEST(PbsPropertiesTest, ConstantsHoldVectorsOrOneOrTwoNumbers) {
    PbsSettings settings;
    settings.emissiveColor = {1.0f, 2.0f, 3.0f, 4.0f};
    settings.metalness = 0.25f;
    settings.alpha = 0.5f;
    settings.alphaCutoff = 0.125f;
    EXPECT_EQ(getPbsProperty(&PbsSettings::emissiveColor).getConstant(settings),
              Vector(1.0f, 2.0f, 3.0f, 4.0f));
    EXPECT_EQ(getPbsProperty(&PbsSettings::metalness).getConstant(settings), Vector(0.25f, 0.0f, 0.0f, 0.0f));
    EXPECT_EQ(getPbsProperty(&PbsSettings::alpha).getConstant(settings), Vector(0.5f, 0.125f, 0.0f, 0.0f));
}

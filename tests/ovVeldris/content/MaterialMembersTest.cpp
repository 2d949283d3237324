#include <ovVeldris/content/MaterialMembers.h>

#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/System.h>
#include <ovVeldris/System.h>
#include <set>

using namespace ovVeldris;

namespace {

/// Whether the table has every member that the library writes for a material.
void expectKnownMembers(ovVeldris::PbsMaterial& material) {
    const auto entry = ovExport::Node::create();
    material.exportClassToTree(entry.get());
    for (unsigned int i = 0; i < entry->getMemberCount(); ++i)
        EXPECT_NE(findMaterialMember(entry->getMemberKey(i)), nullptr) << entry->getMemberKey(i);
}

} // namespace

TEST(MaterialMembersTest, aNameHasOneRow) {
    std::set<ovMemory::StringView> names;
    for (const MaterialMember& member : materialMembers()) {
        EXPECT_TRUE(names.insert(member.name).second) << member.name;
        EXPECT_EQ(findMaterialMember(member.name), &member);
    }
    EXPECT_EQ(names.size(), 40u);
    for (const char* none : {"", "Name", "albedoTexture2", "shadowMap"})
        EXPECT_EQ(findMaterialMember(none), nullptr) << none;
}

TEST(MaterialMembersTest, hasEverythingThatTheLibraryWrites) {
    ovVeldris::System system;
    ovVeldris::PbsMaterial material(&system);
    expectKnownMembers(material);

    ovGraphics::System graphics;
    ovGraphics::Texture texture(&graphics);
    material.setAlbedoTexture(&texture, THREE_CHANNEL_PACK::RGB);
    material.setSpecularTexture(&texture, THREE_CHANNEL_PACK::RGB);
    material.setEmissiveTexture(&texture, THREE_CHANNEL_PACK::RGB);
    material.setMetalnessTexture(&texture, ONE_CHANNEL_PACK::R);
    material.setRoughnessGlossinessTexture(&texture, ONE_CHANNEL_PACK::R);
    material.setAlphaTexture(&texture, ONE_CHANNEL_PACK::R);
    material.setOcclusionTexture(&texture, ONE_CHANNEL_PACK::R);
    material.setNormalMapTexture(&texture, THREE_CHANNEL_PACK::RGB);
    material.setEnvironmentTexture(&texture, THREE_CHANNEL_PACK::RGB, true);
    material.setIrradianceTexture(&texture, THREE_CHANNEL_PACK::RGB);
    material.setEnvironmentTextureIsCubeByDefault(false);
    material.setIrradianceTextureIsCubeByDefault(false);
    expectKnownMembers(material);
}

TEST(MaterialMembersTest, hasASettingForEverythingButNames) {
    for (const MaterialMember& member : materialMembers())
        EXPECT_EQ(member.setting == nullptr, member.name == "name" || member.name == "type") << member.name;
    EXPECT_EQ(findMaterialMember("metalnessValue")->setting->name, "metalness");
    EXPECT_EQ(findMaterialMember("normalMap")->setting->name, "normal-map-texture");
    EXPECT_EQ(findMaterialMember("pbsModel")->setting->choices.size(), 2u);
}

TEST(MaterialMembersTest, tellsWhatATextureReplaces) {
    struct Case {
        const char* entry;
        bool albedo;      ///< whether its colour is replaced
        bool environment; ///< whose colour is used as long as there is no irradiance
    };
    const Case cases[] = {
        {"{}", false, false},
        {R"({"albedoTexture": {}, "environmentTexture": {}})", true, false},
        {R"({"albedoTexture": {}, "environmentTexture": {}, "irradianceTexture": {}})", true, true},
        {R"({"albedoTexture": "x", "environmentTexture": [], "irradianceTexture": {}})", false, false},
        {R"({"environmentTexture": {}, "irradianceTexture": {}, "mixEnvironmentColorAndTexture": false})",
         false, true},
        {R"({"environmentTexture": {}, "irradianceTexture": {}, "mixEnvironmentColorAndTexture": true})",
         false, false},
        {R"({"environmentTexture": {}, "irradianceTexture": 1})", false, false},
        {R"({"albedoTexture": {}, "mixAlbedoColorAndTexture": true})", false, false},
        {R"({"albedoTexture": {}, "mixAlbedoColorAndTexture": "true"})", true, false},
        {R"({"albedoTexture": {}, "mixSpecularColorAndTexture": true})", true, false},
    };
    using ovVeldris::getPbsProperty;
    using ovVeldris::PbsSettings;
    for (const Case& row : cases) {
        const auto entry = ovExport::JsonExporter().importIntoTree(row.entry)._tree;
        EXPECT_EQ(isReplaced(*entry, getPbsProperty(&PbsSettings::albedoColor)), row.albedo) << row.entry;
        EXPECT_EQ(isReplaced(*entry, getPbsProperty(&PbsSettings::environmentColor)), row.environment)
            << row.entry;
        EXPECT_FALSE(isReplaced(*entry, getPbsProperty(&PbsSettings::lightColor)));
    }
    EXPECT_EQ(findMaterialMember("alphaCutoff")->property, nullptr) << "no texture replaces it";
}

TEST(MaterialMembersTest, knowsPackingsAndChoices) {
    const auto& vector = findMaterialMember("normalMap")->property->texture;
    const auto& number = findMaterialMember("alphaTexture")->property->texture;
    EXPECT_EQ(readPacking(vector, "bga"), "bga");
    EXPECT_EQ(readPacking(vector, "r"), "rgb");
    EXPECT_EQ(readPacking(number, "g"), "g");
    EXPECT_EQ(readPacking(number, "rgb"), "a");
    const ovVeldris::Setting& model = *findMaterialMember("pbsModel")->setting;
    EXPECT_TRUE(isChoice(model, "metalness-roughness"));
    EXPECT_TRUE(isChoice(model, "specular-glossiness"));
    EXPECT_FALSE(isChoice(model, "glossiness"));
    EXPECT_FALSE(isChoice(model, ""));
}

TEST(MaterialMembersTest, knowsIdentifiers) {
    for (const char* text : {"POSITION", "a", "_", "a1_Z9"})
        EXPECT_TRUE(isIdentifier(text)) << text;
    for (const char* text : {"", "1a", "a b", "a;", "\xc3\xa4", "a\n"})
        EXPECT_FALSE(isIdentifier(text)) << text;
}

#include <veldris/materials/MaterialMembers.h>

#include <gtest/gtest.h>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/System.h>
#include <ovVeldris/core/System.h>
#include <set>

using namespace veldris;
using ovVeldris::ONE_CHANNEL_PACK;
using ovVeldris::THREE_CHANNEL_PACK;

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

TEST(MaterialMembersTest, tellsWhatATextureReplaces) {
    const Replacement plain = {"t", "mix", ""};
    const Replacement conditional = {"t", "mix", "u"};
    struct Case {
        const char* entry;
        bool plain;
        bool conditional;
    };
    const Case cases[] = {
        {"{}", false, false},
        {R"({"t": {}})", true, false},
        {R"({"t": {}, "u": {}})", true, true},
        {R"({"t": "x", "u": {}})", false, false},
        {R"({"t": {}, "u": {}, "mix": false})", true, true},
        {R"({"t": {}, "u": {}, "mix": true})", false, false},
        {R"({"t": {}, "u": {}, "mix": "true"})", true, true},
        {R"({"t": {}, "u": 1})", true, false},
    };
    for (const Case& row : cases) {
        const auto entry = ovExport::JsonExporter().importIntoTree(row.entry)._tree;
        EXPECT_EQ(isReplaced(*entry, plain), row.plain) << row.entry;
        EXPECT_EQ(isReplaced(*entry, conditional), row.conditional) << row.entry;
        EXPECT_FALSE(isReplaced(*entry, {}));
    }
}

TEST(MaterialMembersTest, namesModels) {
    using ovVeldris::PBS_MODEL;
    for (const PBS_MODEL model : {PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS, PBS_MODEL::SPECULAR_GLOSSINESS})
        EXPECT_EQ(*findPbsModel(toText(model)), model);
    EXPECT_EQ(toText(PBS_MODEL::SPECULAR_METALNESS_ROUGHNESS), "metalness-roughness");
    EXPECT_EQ(toText(PBS_MODEL::SPECULAR_GLOSSINESS), "specular-glossiness");
    EXPECT_EQ(toText(static_cast<PBS_MODEL>(7)), "metalness-roughness") << "as the material reads it";
    EXPECT_EQ(findPbsModel("glossiness"), nullptr);
    EXPECT_EQ(findPbsModel(""), nullptr);
}

TEST(MaterialMembersTest, knowsIdentifiers) {
    for (const char* text : {"POSITION", "a", "_", "a1_Z9"})
        EXPECT_TRUE(isIdentifier(text)) << text;
    for (const char* text : {"", "1a", "a b", "a;", "\xc3\xa4", "a\n"})
        EXPECT_FALSE(isIdentifier(text)) << text;
}

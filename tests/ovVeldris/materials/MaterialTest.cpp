#include <ovVeldris/materials/Material.h>

#include <gtest/gtest.h>
#include <ovExport/Node.h>
#include <ovGraphics/System.h>
#include <ovVeldris/materials/TestMaterial.h>

using ovVeldris::MATERIAL_TYPE;

TEST(MaterialTest, StartsWithItsTypeAlone) {
    for (const MATERIAL_TYPE type : {MATERIAL_TYPE::PBS, MATERIAL_TYPE::UNKNOWN}) {
        const TestMaterial material(type);
        EXPECT_EQ(material.getName(), "");
        EXPECT_EQ(material.getShader(), nullptr);
        EXPECT_EQ(material.getType(), type);
    }
}

TEST(MaterialTest, NamesItsShaderLikeItself) {
    ovGraphics::System graphics;
    TestMaterial material(MATERIAL_TYPE::PBS);
    material.setName("before");
    EXPECT_EQ(material.getName(), "before");

    ovMemory::UniquePtr<ovGraphics::Shader> shader = ovGraphics::Shader::create(&graphics);
    shader->setName("its own");
    ovGraphics::Shader* const held = shader.get();
    material.giveShader(std::move(shader));
    EXPECT_EQ(material.getShader(), held);
    EXPECT_EQ(held->getName(), "before") << "a shader takes the name when it comes";
    material.setName("after");
    EXPECT_EQ(held->getName(), "after");
    material.giveShader(nullptr);
    EXPECT_EQ(material.getShader(), nullptr);
    material.setName("without shader");
    EXPECT_EQ(material.getName(), "without shader");
}

TEST(MaterialTest, WritesItsNameAndItsType) {
    const std::pair<MATERIAL_TYPE, const char*> types[] = {{MATERIAL_TYPE::PBS, "PBS"},
                                                           {MATERIAL_TYPE::UNKNOWN, "UNKNOWN"}};
    for (const auto& [type, text] : types) {
        TestMaterial material(type);
        material.setName("a");
        const auto node = ovExport::Node::create();
        material.exportClassToTree(node.get());
        ASSERT_EQ(node->getMemberCount(), 2u);
        EXPECT_EQ(node->getMemberKey(0), "name");
        EXPECT_EQ(node->getMemberValueIndex(0)->getValueAsStringView(), "a");
        EXPECT_EQ(node->getMemberKey(1), "type");
        EXPECT_EQ(node->getMemberValueIndex(1)->getValueAsStringView(), text);
    }
}

TEST(MaterialTest, ReadsItsNameAloneAndLeavesItsShaderAlone) {
    ovGraphics::System graphics;
    TestMaterial material(MATERIAL_TYPE::UNKNOWN);
    material.setName("before");
    material.giveShader(ovGraphics::Shader::create(&graphics));
    const auto node = ovExport::Node::create();
    node->addMember("type")->setAsString("PBS");
    material.importClassFromTree(node.get());
    EXPECT_EQ(material.getName(), "before") << "no member";
    node->addMember("name")->setAsInt(3);
    material.importClassFromTree(node.get());
    EXPECT_EQ(material.getName(), "before") << "no string";
    node->getMemberValue("name")->setAsString("after");
    material.importClassFromTree(node.get());
    EXPECT_EQ(material.getName(), "after");
    EXPECT_EQ(material.getShader()->getName(), "before");
    EXPECT_EQ(material.getType(), MATERIAL_TYPE::UNKNOWN);
}

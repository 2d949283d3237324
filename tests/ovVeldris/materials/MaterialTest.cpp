#include <ovVeldris/materials/Material.h>

#include <gtest/gtest.h>
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

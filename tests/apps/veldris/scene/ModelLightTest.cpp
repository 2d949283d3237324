#include <veldris/scene/ModelLight.h>

#include <gtest/gtest.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/SessionTesting.h>

namespace {

using ovMaths::Vector;

class ModelLightTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session));
        ovGraphics::GltfPrimitive primitive;
        primitive.composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
        primitive.vertices.resize(36);
        primitive.vertexCount = 3;
        _scene.meshes.push_back({"mesh", {primitive}});
        _scene.nodes.resize(1);
        _scene.nodes[0].mesh = 0;
        _scene.roots = {0};
    }
    ovMemory::UniquePtr<ovVeldris::Model> lit() {
        ovVeldris::ModelLoadResult result = ovVeldris::ModelLoader(&_session.getSystem()).create(_scene);
        EXPECT_TRUE(result) << result.error;
        veldris::giveModelLight(*result.model);
        return std::move(result.model);
    }

    veldris::Session _session;
    ovGraphics::GltfScene _scene;
};

TEST_F(ModelLightTest, aModelWithoutLightGetsTheDefault) {
    const auto model = lit();
    const auto materials = veldris::materialsOf(*model);
    ASSERT_EQ(materials.size(), 1u);
    EXPECT_EQ(materials[0], model->getMaterials()[0].material.get());
    EXPECT_EQ(materials[0]->getLightDirection(), veldris::DEFAULT_LIGHT_DIRECTION);
    EXPECT_EQ(materials[0]->getLightColor(), veldris::DEFAULT_LIGHT_COLOR);
    EXPECT_EQ(materials[0]->getEnvironmentColor(), veldris::DEFAULT_AMBIENT_COLOR);
}

TEST_F(ModelLightTest, theFilesLightGivesDirectionAndHue) {
    auto& light = _scene.light.emplace();
    light.direction = {0.0f, -1.0f, 0.0f};
    light.color = {50000.0f, 100000.0f, 25000.0f};
    const auto model = lit();
    const ovVeldris::PbsMaterial& material = *model->getMaterials()[0].material;
    EXPECT_EQ(material.getLightDirection(), Vector(0.0f, -1.0f, 0.0f));
    EXPECT_EQ(material.getLightColor(), Vector(1.5f, 3.0f, 0.75f));
    light.color = {0.0f, 1e-40f, 0.0f};
    EXPECT_EQ(lit()->getMaterials()[0].material->getLightColor(), Vector(0.0f, 3.0f, 0.0f)) << "faint";
    light.color = {};
    EXPECT_EQ(lit()->getMaterials()[0].material->getLightColor(), Vector());
}

} // namespace

#include <gtest/gtest.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/content/ModelTesting.h>

using namespace ovVeldris;
using ovGraphics::GLTF_ALPHA_MODE;
using ovGraphics::GltfMaterial;

namespace {

class ModelTest : public ModelFixture {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ModelTest, bothLanguages(), languageName);

TEST_P(ModelTest, loadedMaterialsReadTexturesAsTheFileSays) {
    GltfMaterial material;
    material.metallic = 0.0f;
    material.baseColorTexture = _scene.addTexture("picture", pngOf({{1, 2, 3, 255}}));
    material.normalTexture = _scene.addTexture("bumps", pngOf({{128, 128, 255, 255}}));
    _scene.textures[0].addressU = ovGraphics::TEXTURE_ADDRESS::MIRROR;
    _scene.addMaterial(material);
    const auto model = make(_scene);
    ASSERT_TRUE(model->loadMaterials()) << getLog().getText() << getGraphicsLogger().getText();
    const PbsMaterial& loaded = *model->getMaterials()[0].material;
    for (unsigned int unit = 0; unit < 2; ++unit) {
        ovGraphics::Texture* texture = loaded.getShader()->getTexture(unit, 0);
        ASSERT_NE(texture, nullptr) << unit;
        EXPECT_EQ(loaded.getShader()->getSampler(unit, 0), model->getSampler(texture)) << unit;
    }
    EXPECT_EQ(model->getSampler(loaded.getAlbedoTexture())->getDesc().addressU,
              ovGraphics::TEXTURE_ADDRESS::MIRROR);
    EXPECT_EQ(model->getSampler(nullptr), nullptr);
    const auto stranger = ovGraphics::Texture::create(&getGraphics());
    EXPECT_EQ(model->getSampler(stranger.get()), nullptr);
}

TEST_P(ModelTest, blendedPartsGoToAQueueOfTheirOwn) {
    const GLTF_ALPHA_MODE modes[] = {GLTF_ALPHA_MODE::OPAQUE, GLTF_ALPHA_MODE::BLEND, GLTF_ALPHA_MODE::MASK};
    for (const GLTF_ALPHA_MODE mode : modes) {
        GltfMaterial material;
        material.alphaMode = mode;
        _scene.addMaterial(material);
    }
    const auto model = make(_scene);
    ASSERT_TRUE(model->loadMaterials());
    const auto solid = ovGraphics::RenderQueue::create(&getGraphics());
    const auto blended = ovGraphics::RenderQueue::create(&getGraphics());
    model->addTo(*solid, *blended);
    ASSERT_EQ(solid->getEntityCount(), 2u);
    ASSERT_EQ(blended->getEntityCount(), 1u);
    EXPECT_EQ(solid->getEntity(0)->getMesh(), model->getParts()[0].mesh);
    EXPECT_EQ(solid->getEntity(1)->getNode(), model->getParts()[2].node);
    EXPECT_EQ(blended->getEntity(0)->getShader(), model->getMaterials()[1].material->getShader());
}

TEST_P(ModelTest, oneMaterialThatFailsDoesNotStopTheOthers) {
    _scene.addMaterial({});
    _scene.addMaterial({});
    const auto model = make(_scene);
    model->getMaterials()[0].material->setPositionAttributeName("no identifier");
    EXPECT_FALSE(model->loadMaterials());
    EXPECT_TRUE(getLog().contains("Could not load the pbs material program for 'material 0'"))
        << getLog().getText();
    EXPECT_FALSE(model->getMaterials()[1].material->getShader()->isUnloaded());
    getGraphicsLogger().messages.clear();
}

TEST_P(ModelTest, mayOutliveItsSystemsShutdown) {
    System own;
    ASSERT_TRUE(initializeOwn(own));
    _scene.addMaterial({});
    ModelLoadResult result = ModelLoader(&own).create(_scene);
    ASSERT_TRUE(result);
    ASSERT_TRUE(result.model->loadMaterials());
    own.shutdown();
    result.model.reset(); // its materials went with the manager
}

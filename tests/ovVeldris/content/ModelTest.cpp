#include <gtest/gtest.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/content/ModelTesting.h>

using namespace ovVeldris;
using ovGraphics::GLTF_ALPHA_MODE;
using ovGraphics::GltfMaterial;

namespace {

using ovGraphics::TEXTURE_ADDRESS;

class ModelTest : public ModelFixture {
protected:
    /// Adds a square that gives off a texture of a red and a green texel, eight of which it shows side by
    /// side.
    void addStripes(TEXTURE_ADDRESS address) {
        GltfMaterial material;
        material.baseColor = {0.0f, 0.0f, 0.0f, 1.0f};
        material.emissive = {1.0f, 1.0f, 1.0f};
        material.emissiveTexture = _scene.addTexture("stripes", pngOf({{255, 0, 0, 255}, {0, 255, 0, 255}}));
        _scene.textures.back().filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT;
        _scene.textures.back().mipmapped = false;
        _scene.textures.back().addressU = address;
        _scene.addMaterial(material);
        ovGraphics::GltfPrimitive& primitive = _scene.meshes.back().primitives[0];
        const float vertices[4][8] = {{-1, -1, 0, 0, 0, -1, 0, 1},
                                      {-1, 1, 0, 0, 0, -1, 0, 0},
                                      {1, -1, 0, 0, 0, -1, 4, 1},
                                      {1, 1, 0, 0, 0, -1, 4, 0}};
        primitive.vertices.resize(sizeof(vertices));
        std::memcpy(primitive.vertices.data(), vertices, sizeof(vertices));
        primitive.vertexCount = 4;
        primitive.indices = {0, 1, 2, 2, 1, 3};
    }

    /// The colours of the first part of a model from left to right: "R", "G", or "?" for another one.
    ovMemory::String drawStripes(const Model& model) {
        const auto solid = ovGraphics::RenderQueue::create(&getGraphics());
        const auto blended = ovGraphics::RenderQueue::create(&getGraphics());
        model.addTo(*solid, *blended);
        const auto camera = ovGraphics::Camera::create(&getGraphics());
        camera->setPosition({0.0f, 0.0f, -2.0f});
        camera->setOrthographic(2.0f, 2.0f, 0.5f, 4.0f);
        const auto target = makeTarget(8, 1);
        const auto compositor = ovGraphics::Compositor::create(&getGraphics());
        auto* const block = compositor->appendNode()->appendOperationsBlock();
        block->appendClearPass();
        ovGraphics::ScenePass* const pass = block->appendScenePass();
        pass->setRenderQueue(solid.get());
        pass->setCamera(camera.get());
        const auto context = ovGraphics::RenderContext::create(&getGraphics());
        context->setDescriptor({.texture = target.get()});
        context->setCompositor(compositor.get());
        EXPECT_TRUE(getGraphics().frame(context.get())) << getGraphicsLogger().getText();
        ovMemory::String stripes;
        for (const FloatPixel& pixel : readFloats(*target).pixels) {
            const bool isRed = pixel[0] > 0.9f && pixel[1] < 0.1f;
            const bool isGreen = pixel[1] > 0.9f && pixel[0] < 0.1f;
            stripes += isRed ? 'R' : isGreen ? 'G' : '?';
        }
        return stripes;
    }

    /// A loaded shadow map in which everything is lit.
    ovMemory::UniquePtr<ovGraphics::Texture> makeShadowMap() {
        auto map = ovGraphics::Texture::create(&getGraphics());
        map->setFormat(ovGraphics::FORMAT::D32_FLOAT);
        map->setWidth(1);
        map->setHeight(1);
        const float depth = 1.0f;
        map->setCpuData(0, 0, {reinterpret_cast<const unsigned char*>(&depth), sizeof(depth)});
        EXPECT_TRUE(map->load()) << getGraphicsLogger().getText();
        return map;
    }
};

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

TEST_P(ModelTest, texturesKeepTheirSamplersWhoeverLoadsTheMaterial) {
    struct Case {
        TEXTURE_ADDRESS address;
        const char* stripes;
    };
    const Case cases[] = {{TEXTURE_ADDRESS::WRAP, "RGRGRGRG"},
                          {TEXTURE_ADDRESS::CLAMP, "RGGGGGGG"},
                          {TEXTURE_ADDRESS::MIRROR, "RGGRRGGR"}};
    const auto map = makeShadowMap();
    const auto light = ovGraphics::Camera::create(&getGraphics());
    for (const Case& row : cases) {
        _scene = {};
        addStripes(row.address);
        auto model = make(_scene);
        PbsMaterial& material = *model->getMaterials()[0].material;
        material.setLightColor({0.0f, 0.0f, 0.0f});
        ASSERT_TRUE(model->loadMaterials()) << getLog().getText();
        EXPECT_EQ(drawStripes(*model), row.stripes);

        // A first shadow map is another program, so that the material is loaded again.
        material.setShadowMapTexture(map.get(), light.get(), {});
        ASSERT_TRUE(material.load());
        EXPECT_EQ(drawStripes(*model), row.stripes) << "after a shadow map";

        Material* const managed = getSystem()->getMaterialManager()->get("material 0");
        managed->unload();
        ASSERT_TRUE(managed->load());
        EXPECT_EQ(drawStripes(*model), row.stripes) << "after a load through the manager";

        const auto declared = getSystem()->getContentLoader()->processMaterialSources(
            R"({"name": "material 0", "type": "PBS", "metalnessValue": 0.5})", true);
        ASSERT_EQ(declared._results.size(), 1u);
        EXPECT_EQ(drawStripes(*model), row.stripes) << "after a declaration";
    }
}

TEST_P(ModelTest, aMaterialThatOutlivesItsModelLoads) {
    addStripes(TEXTURE_ADDRESS::CLAMP);
    auto model = make(_scene);
    ASSERT_TRUE(model->loadMaterials());
    const ovMemory::UniquePtr<Material> kept = getSystem()->getMaterialManager()->relinquish("material 0");
    model.reset();
    EXPECT_TRUE(kept->load()) << getLog().getText();
}

TEST_P(ModelTest, theRootMovesPartsCamerasAndTheBox) {
    _scene.addMaterial({});
    _scene.addMaterial({});
    _scene.cameras.resize(1);
    _scene.nodes[1].camera = 0;
    const auto model = make(_scene);
    EXPECT_EQ(model->getBoundingBox(),
              ovGraphics::BoundingBox::newBox({0.0f, -0.5f, 0.0f}, {2.0f, 3.0f, 0.0f}));
    model->getRoot()->setPosition({10.0f, 20.0f, 30.0f});
    EXPECT_EQ(model->getBoundingBox(),
              ovGraphics::BoundingBox::newBox({10.0f, 19.5f, 30.0f}, {2.0f, 3.0f, 0.0f}));
    EXPECT_EQ(model->getCameraNode(0)->getWorldMatrix().getPositionComponent(),
              ovMaths::Vector(10.0f, 19.0f, 30.0f));
    EXPECT_EQ(model->findNode("node 1"), model->getCameraNode(0));
    EXPECT_EQ(model->findNode("model root"), nullptr) << "it is none of the file's";
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

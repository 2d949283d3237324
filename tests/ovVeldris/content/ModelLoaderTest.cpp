#include <fstream>
#include <gtest/gtest.h>
#include <ovVeldris/content/ModelTesting.h>
#include <support/TemporaryFolder.h>

using namespace ovVeldris;
using ovGraphics::GltfMaterial;

namespace {

class ModelLoaderTest : public ModelFixture {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ModelLoaderTest, bothLanguages(), languageName);

TEST_P(ModelLoaderTest, makesAPartOfEveryPrimitiveThatTheSceneReaches) {
    _scene.addMaterial({});
    _scene.addMaterial({});
    _scene.addPart(-1);
    _scene.addPart(0);
    _scene.roots = {0, 1};
    _scene.nodes[1].children = {2};
    _scene.nodes[2].parent = 1;
    _scene.nodes[2].world.setPositionComponent({0.0f, -3.0f, 0.0f}); // below node 1
    const auto model = make(_scene);
    ASSERT_EQ(model->getParts().size(), 3u) << "nothing hangs node 3 into the scene";
    EXPECT_EQ(model->getMaterials().size(), 3u);
    EXPECT_EQ(model->getParts()[2].material, 2u);
    EXPECT_EQ(model->getMaterials()[2].name, "default material");
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(model->getParts()[i].node->getWorldMatrix(), _scene.nodes[i].world) << i;
}

TEST_P(ModelLoaderTest, nodesShareTheMeshThatTheyWear) {
    _scene.addMaterial({});
    _scene.addPart(0);
    _scene.nodes[1].mesh = 0;
    const auto model = make(_scene);
    ASSERT_EQ(model->getParts().size(), 2u);
    EXPECT_EQ(model->getParts()[0].mesh, model->getParts()[1].mesh);
    EXPECT_NE(model->getParts()[0].node, model->getParts()[1].node);
}

TEST_P(ModelLoaderTest, twoModelsKeepTheirMaterialsAndTexturesApart) {
    GltfMaterial material;
    material.name = "paint";
    material.metallic = 0.0f;
    material.baseColorTexture = _scene.addTexture("picture", pngOf({{1, 2, 3, 255}}));
    _scene.addMaterial(material);
    auto first = make(_scene);
    const auto second = make(_scene);
    EXPECT_EQ(first->getMaterials()[0].name, "paint");
    EXPECT_EQ(second->getMaterials()[0].name, "paint (2)");
    EXPECT_EQ(make(_scene)->getMaterials()[0].name, "paint (3)");
    EXPECT_EQ(second->getMaterials()[0].material->getAlbedoTexture()->getName(), "picture (2)");
    EXPECT_EQ(getSystem()->getMaterialManager()->get("paint"), first->getMaterials()[0].material.get());
    first.reset();
    EXPECT_EQ(getSystem()->getMaterialManager()->get("paint"), nullptr);
    EXPECT_EQ(getGraphics().getTextureManager()->get("picture"), nullptr);
    EXPECT_EQ(getGraphics().getSamplerManager()->get("picture"), nullptr);
    EXPECT_NE(getSystem()->getMaterialManager()->get("paint (2)"), nullptr);
    EXPECT_EQ(texelOf(second->getMaterials()[0].material->getAlbedoTexture(), 0), (Texel{1, 2, 3, 255}));
}

TEST_P(ModelLoaderTest, carriesCamerasLightAndWarningsOver) {
    _scene.addMaterial({});
    _scene.cameras.resize(2);
    _scene.nodes[0].camera = 1;
    _scene.light.emplace().direction = {0.0f, -1.0f, 0.0f};
    _scene.warnings = {"something is ignored"};
    const auto model = make(_scene);
    EXPECT_EQ(model->getCameras().size(), 2u);
    EXPECT_EQ(model->getCameraNode(0), nullptr) << "no node wears it";
    EXPECT_EQ(model->getCameraNode(1), model->getParts()[0].node);
    EXPECT_EQ(model->getCameraNode(2), nullptr);
    ASSERT_TRUE(model->getLight());
    EXPECT_EQ(model->getLight()->direction, _scene.light->direction);
    EXPECT_EQ(model->getWarnings(), _scene.warnings);
}

TEST_P(ModelLoaderTest, tellsWhatItIsAt) {
    ovGraphics::GltfMaterial material;
    material.baseColorTexture = _scene.addTexture("base", pngOf({{200, 100, 50, 255}, {10, 20, 30, 255}}));
    material.metallicRoughnessTexture =
        _scene.addTexture("metal", pngOf({{0, 90, 0, 255}, {0, 90, 255, 255}}));
    material.metallic = 1.0f;
    _scene.addMaterial(material);
    _scene.roots = {static_cast<unsigned int>(_scene.nodes.size()) - 1};
    ModelLoader loader(getSystem());
    ovMemory::Buffer<MODEL_LOAD_STEP> steps;
    double lastShare = 0.0;
    loader.setProgress([&](MODEL_LOAD_STEP step, double share) {
        if (steps.empty() || steps.back() != step)
            steps.push_back(step);
        EXPECT_GE(share, lastShare);
        lastShare = share;
    });
    ASSERT_TRUE(loader.create(_scene));
    EXPECT_EQ(lastShare, 1.0);
    // Its mesh; then the roughness, and the metalness that makes two pictures of base colours.
    using enum MODEL_LOAD_STEP;
    EXPECT_EQ(steps, (ovMemory::Buffer<MODEL_LOAD_STEP>{UPLOADING, DECODING, UPLOADING, DECODING, CONVERSION,
                                                        DECODING, UPLOADING, DECODING, CONVERSION, DECODING,
                                                        UPLOADING, DECODING}));
}

TEST_P(ModelLoaderTest, tellsWhyThereIsNoModel) {
    const ModelLoadResult missing = ModelLoader(getSystem()).load("nowhere/at-all.glb");
    EXPECT_FALSE(missing);
    EXPECT_NE(missing.error.find("nowhere/at-all.glb"), ovMemory::String::npos) << missing.error;

    GltfMaterial material;
    material.baseColorTexture = _scene.addTexture("picture", pngOf({{1, 2, 3, 255}}));
    _scene.addMaterial(material);
    _scene.addPart(0);
    _scene.meshes[1].primitives[0].indices = {7};
    const ModelLoadResult broken = ModelLoader(getSystem()).create(_scene);
    EXPECT_FALSE(broken);
    EXPECT_EQ(broken.error, "the mesh 'mesh 1' could not be loaded; the log says why.");
    EXPECT_EQ(getGraphics().getTextureManager()->get("picture"), nullptr) << "it leaves nothing behind";
    EXPECT_EQ(getSystem()->getMaterialManager()->get("material 0"), nullptr);
    getGraphicsLogger().messages.clear();

    System closed;
    EXPECT_EQ(ModelLoader(&closed).create(_scene).error,
              "the system is not initialised; call System::initialize first.");
}

TEST_P(ModelLoaderTest, filesThatAreCutGiveNoModel) {
    const ovMemory::String whole = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
"nodes": [{"name": "Wheel", "children": [1, 2]}, {"name": "Wheel", "translation": [1, 2, 3]}, {}]})";
    const TemporaryFolder folder;
    const ovMemory::String path = folder.getPath("cut.gltf");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::ofstream(path, std::ios::binary) << whole.substr(0, length);
        const ModelLoadResult result = ModelLoader(getSystem()).load(path);
        EXPECT_FALSE(result) << length;
        EXPECT_NE(result.error.find(path), ovMemory::String::npos) << result.error;
    }
    std::ofstream(path, std::ios::binary) << whole;
    const ModelLoadResult result = ModelLoader(getSystem()).load(path);
    ASSERT_TRUE(result) << result.error;
    EXPECT_EQ(result.place, path);
    const ovGraphics::Node* const second = result.model->findNode("Wheel (2)");
    ASSERT_NE(second, nullptr) << "names that clash are told apart";
    EXPECT_EQ(second->getParent(), result.model->findNode("Wheel"));
    EXPECT_EQ(second->getWorldMatrix().getPositionComponent(), ovMaths::Vector(1.0f, 2.0f, -3.0f));
    EXPECT_EQ(result.model->findNode("Wheel")->getParent(), result.model->getRoot());
    EXPECT_EQ(result.model->findNode("wheel"), nullptr);
}

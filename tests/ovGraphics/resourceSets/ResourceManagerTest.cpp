#include <ovGraphics/resourceSets/ResourceManager.h>

#include <cstring>
#include <limits>
#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resourceSets/SetTesting.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovImages/PngEncoder.h>
#include <support/HeadlessSystem.h>

using namespace ovGraphics;
using ovMemory::String;

namespace {

void start(System& system, RecordingLogger& log) {
    ASSERT_TRUE(system.initialize(HeadlessSystem::makeConfiguration(SHADER_LANGUAGE::GLSL, &log)))
        << log.getText();
}

ovMemory::Buffer<unsigned char> countingBytes(std::size_t size, unsigned char first) {
    ovMemory::Buffer<unsigned char> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(first + 37 * i);
    return bytes;
}

void writePicture(const String& path) {
    ovImages::Image image(2, 2, 1, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::LINEAR);
    const unsigned char texels[] = {0, 85, 170, 255};
    std::copy_n(texels, 4, image.getBytes().begin());
    const auto png = ovImages::PngEncoder().encode(image.view());
    writeBytes(path, {reinterpret_cast<const char*>(png.bytes.data()), png.bytes.size()});
}

void makeTextures(System& system, const String& folder) {
    TextureManager& textures = *system.getTextureManager();
    Texture* const computed = textures.createOrRetrieve("computed mips");
    computed->setWidth(4);
    computed->setHeight(2);
    computed->setMipCount(0);
    computed->setGammaCorrected(true);
    computed->setCpuData(0, 0, countingBytes(4 * 2 * 4, 3));
    ASSERT_TRUE(computed->load());
    ASSERT_TRUE(computed->dropCpuCopies());

    Texture* const cube = textures.createOrRetrieve("cube");
    cube->setTexType(TEXTURE_TYPE::CUBE);
    cube->setFormat(FORMAT::R32G32B32A32_FLOAT);
    cube->setWidth(2);
    cube->setHeight(2);
    cube->setMipCount(2);
    for (unsigned int face = 0; face < 6; ++face) {
        for (unsigned int mip = 0; mip < 2; ++mip) {
            const ovMemory::Buffer<float> values(mip == 0 ? 16 : 4,
                                                 0.1f + static_cast<float>(face * 2 + mip));
            cube->setCpuData(
                face, mip,
                {reinterpret_cast<const unsigned char*>(values.data()), values.size() * sizeof(float)});
        }
    }
    ASSERT_TRUE(cube->load());
    ASSERT_TRUE(cube->dropCpuCopies());

    Texture* const pitched = textures.createOrRetrieve("rows with gaps");
    pitched->setWidth(1);
    pitched->setHeight(2);
    pitched->setCpuData(0, 0, countingBytes(12, 9), 8);

    Texture* const target = textures.createOrRetrieve("target");
    target->setWidth(8);
    target->setUsableAsRenderTarget(true);
    target->setMightManuallyGenerateMip(true);
    ASSERT_TRUE(target->load());

    writePicture(folder + "/grey.png");
    Texture* const file = textures.createOrRetrieve("of a file");
    ASSERT_TRUE(file->setFromFile(folder + "/grey.png", TEXTURE_READING::COLORS));
    file->setMipCount(0);
    file->setSampler(system.getSamplerManager()->createOrRetrieve("sampler"));
    ASSERT_TRUE(file->load());
    textures.createOrRetrieve("hidden")->setHidden(true);
}

void makeSampler(System& system) {
    Sampler* const sampler = system.getSamplerManager()->createOrRetrieve("sampler");
    sampler->setFilter(FILTER::COMPARISON_MIN_MAG_MIP_LINEAR);
    sampler->setAddressU(TEXTURE_ADDRESS::BORDER);
    sampler->setAddressV(TEXTURE_ADDRESS::MIRROR);
    sampler->setAddressW(TEXTURE_ADDRESS::WRAP);
    sampler->setBorderColor(0.1f, 1e-20f, -3.0f, 1.0f);
    sampler->setLodRange(0.3f, std::numeric_limits<float>::infinity());
    sampler->setLodBias(-0.7f);
    sampler->setMaxAnisotropy(100);
    sampler->setComparison(COMPARISON::GREATER);
    ASSERT_TRUE(sampler->load());
}

/// Two meshes, nodes above each other, and queues; half of it is managed by nobody.
struct UnmanagedScene {
    explicit UnmanagedScene(System& system)
        : mesh(Mesh::create(&system))
        , above(Node::create(&system))
        , below(Node::create(&system))
        , shader(Shader::create(&system))
        , texture(Texture::create(&system)) {
        for (Mesh* made : {system.getMeshManager()->createOrRetrieve("plane"), mesh.get()}) {
            VertexComposition composition;
            composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT);
            composition.addAttribute("TEXCOORD", FORMAT::R16G16_UNORM);
            made->setName("plane");
            made->setVertexComposition(composition);
            made->setTopology(PRIMITIVE_TOPOLOGY::TRIANGLESTRIP);
            made->setNewVertexArray(countingBytes(3 * 16, made == mesh.get() ? 1 : 2));
            made->setNewIndexArray({0, 1, 2, 0xffffffffu, 2});
            EXPECT_TRUE(made->load());
        }
        above->setName("above");
        above->setPosition({0.1f, 0.2f, 0.3f});
        above->setScale({-2.0f, 1.0f, 0.5f});
        above->setOrientation({0.1f, 0.2f, 0.3f, 0.9f});
        below->setName("below");
        ovMaths::Matrix sheared;
        sheared.m[0][1] = 0.25f;
        below->setLocalMatrix(sheared);
        EXPECT_TRUE(below->setParent(above.get()));
        texture->setName("of a shader");
        shader->setName("a material");
        shader->addTexture(texture.get(), 3, 0);
        RenderQueue* const queue = system.getRenderQueueManager()->createOrRetrieve("solid");
        queue->addEntity(mesh.get(), shader.get(), below.get())->setDoubleSided(true);
        queue->addEntity(system.getMeshManager()->get("plane"), nullptr, nullptr)->setVisible(false);
        system.getRenderQueueManager()->createOrRetrieve("empty");
    }
    ovMemory::UniquePtr<Mesh> mesh;
    ovMemory::UniquePtr<Node> above;
    ovMemory::UniquePtr<Node> below;
    ovMemory::UniquePtr<Shader> shader;
    ovMemory::UniquePtr<Texture> texture;
};

void expectEqualTexels(Texture* left, Texture* right, unsigned int slices, unsigned int mips) {
    ASSERT_TRUE(left && right);
    for (unsigned int slice = 0; slice < slices; ++slice)
        for (unsigned int mip = 0; mip < mips; ++mip)
            EXPECT_EQ(left->readBack(slice, mip), right->readBack(slice, mip)) << slice << " " << mip;
}

} // namespace

TEST(ResourceManagerTest, givesBackEverythingAndSavesItAsTheSameBytes) {
    const TemporaryFolder first;
    RecordingLogger log;
    System saved;
    start(saved, log);
    makeSampler(saved);
    makeTextures(saved, first.getPath());
    const UnmanagedScene scene(saved);
    const ovMemory::Result written = saveSet(saved, first.getPath("x.ovs"));
    ASSERT_TRUE(written) << written.error;
    EXPECT_EQ(written.warning, "");

    System loaded;
    start(loaded, log);
    const ResourceSetLoadResult result = loadSet(loaded, first.getPath("x.ovs"));
    EXPECT_EQ(problemsOf(result), "");
    EXPECT_EQ(result._status, ovMemory::RESULT_STATUS::DONE);
    EXPECT_EQ(result._textures.size(), 6u);
    TextureManager& before = *saved.getTextureManager();
    TextureManager& after = *loaded.getTextureManager();
    expectEqualTexels(before.get("computed mips"), after.get("computed mips"), 1, 3);
    expectEqualTexels(before.get("cube"), after.get("cube"), 6, 2);
    expectEqualTexels(before.get("of a file"), after.get("of a file"), 1, 2);
    EXPECT_TRUE(after.get("of a file")->getGammaCorrected());
    EXPECT_EQ(after.get("of a file")->getSampler(), loaded.getSamplerManager()->get("sampler"));
    EXPECT_TRUE(after.get("rows with gaps")->isUnloaded());
    EXPECT_EQ(after.get("hidden"), nullptr);
    EXPECT_TRUE(after.get("target")->getUsableAsRenderTarget());
    EXPECT_NE(after.get("of a shader"), nullptr);
    const auto& desc = loaded.getSamplerManager()->get("sampler")->getDesc();
    EXPECT_EQ(desc.borderColor, (std::array{0.1f, 1e-20f, -3.0f, 1.0f}));
    EXPECT_EQ(desc.maxLod, std::numeric_limits<float>::infinity());

    const Mesh* const mesh = loaded.getMeshManager()->get("plane (2)");
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->getCurrentVertexArray(), scene.mesh->getCurrentVertexArray());
    EXPECT_EQ(mesh->getCurrentIndexArray(), scene.mesh->getCurrentIndexArray());
    EXPECT_EQ(mesh->getVertexComposition(), scene.mesh->getVertexComposition());
    EXPECT_EQ(mesh->getTopology(), PRIMITIVE_TOPOLOGY::TRIANGLESTRIP);
    const Node* const below = loaded.getNodeManager()->get("below");
    ASSERT_NE(below, nullptr);
    EXPECT_EQ(below->getWorldMatrix(), scene.below->getWorldMatrix());
    EXPECT_EQ(below->getParent(), loaded.getNodeManager()->get("above"));
    ASSERT_EQ(result._entities.size(), 1u);
    EXPECT_EQ(result._entities.front().shader, "a material");
    EXPECT_EQ(result._entities.front().entity->getMesh(), mesh);
    EXPECT_EQ(result._entities.front().entity->getNode(), below);
    EXPECT_TRUE(result._entities.front().entity->getDoubleSided());
    const RenderQueue* const queue = loaded.getRenderQueueManager()->get("solid");
    ASSERT_EQ(queue->getEntityCount(), 2u);
    EXPECT_FALSE(queue->getEntity(1)->getVisible());
    EXPECT_NE(loaded.getRenderQueueManager()->get("empty"), nullptr);

    // The shader is the caller's to bring; its texture is managed now.
    const auto shader = Shader::create(&loaded);
    shader->setName(result._entities.front().shader);
    result._entities.front().entity->setShader(shader.get());
    const String text = bytesOf(first.getPath("x.ovs"));
    const String data = bytesOf(first.getPath("x.ovs.data"));
    ASSERT_TRUE(saveSet(loaded, first.getPath("x.ovs")));
    EXPECT_EQ(bytesOf(first.getPath("x.ovs")), text);
    EXPECT_EQ(bytesOf(first.getPath("x.ovs.data")), data);
    EXPECT_FALSE(data.empty());
}

// What lies elsewhere would be missing wherever the folder goes.
TEST(ResourceManagerTest, keepsTheTexelsOfFilesOutsideItsFolder) {
    const TemporaryFolder elsewhere;
    const TemporaryFolder folder;
    writePicture(elsewhere.getPath("grey.png"));
    System saved;
    Texture* const texture = saved.getTextureManager()->createOrRetrieve("grey");
    ASSERT_TRUE(texture->setFromFile(elsewhere.getPath("grey.png")));
    ASSERT_TRUE(saveSet(saved, folder.getPath("x.ovs")));
    System loaded;
    EXPECT_EQ(problemsOf(loadSet(loaded, folder.getPath("x.ovs"), false)), "");
    const auto& data = loaded.getTextureManager()->get("grey")->getCpuData();
    ASSERT_EQ(data.size(), 1u);
    EXPECT_EQ(data.front().bytes, texture->getCpuData().front().bytes);
    EXPECT_EQ(loaded.getTextureManager()->get("grey")->getSourceFile(), "");
}

TEST(ResourceManagerTest, tellsWhatItCouldNotKeep) {
    const TemporaryFolder folder;
    RecordingLogger log;
    System system;
    start(system, log);
    Mesh* const mesh = system.getMeshManager()->createOrRetrieve("m");
    VertexComposition composition;
    composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT);
    mesh->setVertexComposition(composition);
    mesh->setNewVertexArray(countingBytes(12, 0));
    ASSERT_TRUE(mesh->load());
    ASSERT_TRUE(mesh->dropCpuCopies());
    const ovMemory::Result saved = saveSet(system, folder.getPath("x.ovs"));
    EXPECT_EQ(saved.warning, "the vertices of the mesh 'm' are left out: its copies were dropped.");
    EXPECT_TRUE(
        log.contains("The resource set '" + folder.getPath("x.ovs") + "' is not complete: the vertices"));
    EXPECT_FALSE(saveSet(system, folder.getPath("none/x.ovs")));
    EXPECT_TRUE(log.contains("Could not save the resource set '" + folder.getPath("none/x.ovs") + "': "));
}

TEST(ResourceManagerTest, refusesMissingFilesAndWhatIsNoSet) {
    const TemporaryFolder folder;
    System system;
    EXPECT_EQ(loadSet(system, folder.getPath("none.ovs"))._status, ovMemory::RESULT_STATUS::FAILED);
    for (const char* const text :
         {"", "{", "[]", "1", "{}", R"({"resourceSet": 2})", R"({"resourceSet": "1"})"}) {
        const ResourceSetLoadResult result = readSet(text);
        EXPECT_EQ(result._status, ovMemory::RESULT_STATUS::FAILED) << text;
        EXPECT_EQ(result._problems.size(), 1u) << text;
    }
    EXPECT_EQ(readSet(R"({"resourceSet": 1})")._status, ovMemory::RESULT_STATUS::DONE);
}

TEST(ResourceManagerTest, survivesFilesThatAreCutAnywhere) {
    const TemporaryFolder folder;
    System saved;
    Texture* const texture = saved.getTextureManager()->createOrRetrieve("t");
    texture->setCpuData(0, 0, countingBytes(4, 1));
    saved.getNodeManager()->createOrRetrieve("n");
    ASSERT_TRUE(saveSet(saved, folder.getPath("x.ovs")));
    const String text = bytesOf(folder.getPath("x.ovs"));
    const String data = bytesOf(folder.getPath("x.ovs.data"));
    for (std::size_t size = 0; size + 2 < text.size(); ++size) // without its brace and line feed
        EXPECT_EQ(readSet({text.data(), size}, folder.getPath())._status, ovMemory::RESULT_STATUS::FAILED)
            << size;
    EXPECT_EQ(problemsOf(readSet(text, folder.getPath())), "");
    for (std::size_t size = 0; size < data.size(); ++size) {
        writeBytes(folder.getPath("x.ovs.data"), {data.data(), size});
        EXPECT_EQ(readSet(text, folder.getPath())._problems.size(), 2u) << "of the data and of the texture";
    }
}

TEST(ResourceManagerTest, isThatOfTheSystem) {
    const System system;
    EXPECT_NE(system.getResourceManager(), nullptr);
    EXPECT_EQ(ResourceManager::getInstance(), System::getInstance()->getResourceManager());
    System::kill();
}

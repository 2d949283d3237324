#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/scene/DepthShader.h>
#include <ovGraphics/scene/SceneTesting.h>
#include <support/PictureTest.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

class DepthShaderTest : public PictureTest {
protected:
    /// Draws a mesh of 1 x 1 at z = 0 with the shader; the depths of 2 x 2 texels, rows from the top.
    ovMemory::Buffer<float> drawDepth(Shader* shader, Mesh& mesh) {
        auto depth = Texture::create(&getGraphics());
        depth->setFormat(FORMAT::D32_FLOAT);
        depth->setWidth(2);
        depth->setHeight(2);
        depth->setUsableAsRenderTarget(true);
        EXPECT_TRUE(depth->load());
        const auto unused = makeTarget(2, 2);
        Stage stage(getGraphics(), *unused, 1.0f);
        auto* block = stage.canvas.addBlock();
        block->setDepthBuffer(depth.get());
        block->appendClearPass();
        ScenePass* pass = block->appendScenePass();
        pass->setRenderQueue(stage.queue.get());
        pass->setCamera(stage.camera.get());
        pass->setShaderVariant(1);
        stage.queue->addEntity(&mesh, nullptr, nullptr)->setShader(shader, 1);
        EXPECT_TRUE(stage.canvas.frame()) << getGraphicsLogger().getText();
        const auto bytes = depth->readBack();
        ovMemory::Buffer<float> depths(4);
        std::memcpy(depths.data(), bytes->data(), sizeof(float) * 4);
        return depths;
    }
};

constexpr float SURFACE = 9.0f / 99.0f; // 10 m from the camera, planes at 1 and 100
constexpr float FAR = 1.0f;

} // namespace

INSTANTIATE_TEST_SUITE_P(, DepthShaderTest, bothLanguages(), languageName);

TEST_P(DepthShaderTest, drawsDepthEverywhereWithoutATexture) {
    const auto shader = DepthShader::create(&getGraphics(), {});
    ASSERT_TRUE(shader) << getGraphicsLogger().getText();
    const auto square = makeSquare(getGraphics());
    for (const float depth : drawDepth(shader->getShader(), *square))
        EXPECT_NEAR(depth, SURFACE, 1e-6f);
}

TEST_P(DepthShaderTest, leavesHolesWhereTheTextureHasThem) {
    FloatPicture picture(2, 2);
    // Green holds 0.4, 0.5, 0.6, 1 in reading order; the factor halves them.
    const float greens[] = {0.4f, 0.5f, 0.6f, 1.0f};
    for (unsigned int i = 0; i < 4; ++i)
        picture.at(i % 2, i / 2) = {0.0f, greens[i], 0.0f, 0.0f};
    const auto texture = makeTexture(picture);
    const auto sampler = Sampler::create(&getGraphics());
    sampler->setFilter(FILTER::MIN_MAG_MIP_POINT);
    ASSERT_TRUE(sampler->load());
    const auto shader = DepthShader::create(&getGraphics(), {texture.get(), sampler.get(), 1, 0.5f, 0.25f});
    ASSERT_TRUE(shader) << getGraphicsLogger().getText();

    VertexComposition composition;
    ASSERT_TRUE(composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT));
    ASSERT_TRUE(composition.addAttribute("TEXCOORD", FORMAT::R32G32_FLOAT));
    const auto mesh = Mesh::create(&getGraphics());
    mesh->setVertexComposition(composition);
    mesh->setTopology(PRIMITIVE_TOPOLOGY::TRIANGLESTRIP);
    ASSERT_TRUE(mesh->fillPackedFromUnpacked(ovMemory::Buffer<Vector>{{-0.5f, -0.5f},
                                                                      {0.0f, 1.0f},
                                                                      {-0.5f, 0.5f},
                                                                      {0.0f, 0.0f},
                                                                      {0.5f, -0.5f},
                                                                      {1.0f, 1.0f},
                                                                      {0.5f, 0.5f},
                                                                      {1.0f, 0.0f}}));
    ASSERT_TRUE(mesh->load());
    const auto depths = drawDepth(shader->getShader(), *mesh);
    const float expected[] = {FAR, FAR, SURFACE, SURFACE}; // equal to the cut-off is a hole
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(depths[i], expected[i], 1e-6f) << i;
}

TEST_P(DepthShaderTest, drawsPositionsAndNormalsOfTheView) {
    const auto shader = DepthShader::create(&getGraphics(), {.drawsGeometry = true});
    ASSERT_TRUE(shader) << getGraphicsLogger().getText();
    EXPECT_EQ(shader->getShader()->getName(), "ORVANE_GEOMETRY");
    const auto mesh = Mesh::create(&getGraphics());
    mesh->setVertexComposition(positionsAndNormals());
    const Vector slanted(0.6f, 0.0f, -0.8f);
    ASSERT_TRUE(mesh->fillPackedFromUnpacked(ovMemory::Buffer<Vector>{{-0.1f, -0.5f, 0.0f},
                                                                      slanted,
                                                                      {-0.1f, 0.5f, 0.0f},
                                                                      slanted,
                                                                      {0.1f, 0.5f, 0.0f},
                                                                      slanted,
                                                                      {0.1f, -0.5f, 0.0f},
                                                                      slanted}));
    mesh->setNewIndexArray({0, 1, 2, 0, 2, 3});
    ASSERT_TRUE(mesh->load());
    const auto node = makeNode(getGraphics(), {0.0f, 0.0f, 5.0f});
    node->setScale({2.0f, 1.0f, 1.0f});

    const auto positions = makeTarget(4, 4);
    const auto normals = makeTarget(4, 4);
    Stage stage(getGraphics(), *positions, 1.0f);
    stage.block->setTarget(1, normals.get());
    stage.pass->setShaderVariant(1);
    // Rolled: the view's x is -y of the world, its y is x.
    stage.camera->lookAt({0.0f, 0.0f, 1.0f}, {1.0f, 0.0f, 0.0f});
    stage.queue->addEntity(mesh.get(), nullptr, node.get())->setShader(shader->getShader(), 1);
    ASSERT_TRUE(stage.canvas.frame()) << getGraphicsLogger().getText();
    const FloatPicture positionsSeen = readFloats(*positions);
    const FloatPicture normalsSeen = readFloats(*normals);
    // Wider by two in x, the surface turns its normal away from x.
    const double length = std::sqrt(0.3 * 0.3 + 0.8 * 0.8);
    for (unsigned int y = 0; y < 4; ++y) {
        for (unsigned int x = 0; x < 4; ++x) {
            const FloatPixel& position = positionsSeen.at(x, y);
            const FloatPixel& normal = normalsSeen.at(x, y);
            if (y == 0 || y == 3) {
                EXPECT_EQ(position, FloatPixel{}) << "beside the surface";
                continue;
            }
            EXPECT_NEAR(position[0], (x + 0.5) / 4.0 - 0.5, 1e-6);
            EXPECT_NEAR(position[1], 0.5 - (y + 0.5) / 4.0, 1e-6);
            EXPECT_NEAR(position[2], 15.0, 1e-5);
            EXPECT_EQ(position[3], 1.0f);
            EXPECT_NEAR(normal[0], 0.0, 1e-6);
            EXPECT_NEAR(normal[1], 0.3 / length, 1e-6);
            EXPECT_NEAR(normal[2], -0.8 / length, 1e-6);
            EXPECT_EQ(normal[3], 1.0f);
        }
    }
}

TEST(DepthShaderSystemTest, needsAnInitialisedSystem) {
    System closed;
    EXPECT_EQ(DepthShader::create(&closed, {}), nullptr);
}

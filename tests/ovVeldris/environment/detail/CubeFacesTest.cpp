#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/environment/EnvironmentFixture.h>
#include <ovVeldris/environment/detail/CubeFaces.h>

using namespace ovVeldris;

namespace {

class CubeFacesTest : public EnvironmentFixture {};

const CubeFaceViews VIEWS = {{
    {"a", {1.0f, 0.0f, 0.0f}, {}},
    {"b", {-1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}},
    {"c", {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, -1.0f}},
    {"d", {0.0f, -1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}},
    {"e", {0.0f, 0.0f, 1.0f}, {}},
    {"f", {0.0f, 0.0f, -1.0f}, {0.0f, 1.0f, 0.0f}},
}};

} // namespace

INSTANTIATE_TEST_SUITE_P(, CubeFacesTest, bothLanguages(), languageName);

TEST_P(CubeFacesTest, makesHiddenCamerasThatSeeOneFaceEach) {
    const CubeFaceCameras cameras = makeCubeFaceCameras(&getGraphics(), VIEWS);
    for (unsigned int face = 0; face < CUBE_FACE_COUNT; ++face) {
        const ovGraphics::Camera& camera = *cameras[face];
        EXPECT_EQ(camera.getName(), VIEWS[face].cameraName);
        EXPECT_TRUE(camera.getHidden());
        EXPECT_EQ(camera.getSystem(), &getGraphics());
        EXPECT_FALSE(camera.isOrthographic());
        EXPECT_EQ(camera.getPerspectiveFov(), 1.5707964f);
        EXPECT_EQ(camera.getAspect(), 1.0f);
        EXPECT_EQ(camera.getDirection(), VIEWS[face].direction);
        for (const double u : {0.0, 0.3, 1.0})
            for (const double v : {0.0, 0.8, 1.0}) {
                const ovMaths::Vector seen = camera.getDirectionAtPixelWorld(float(u), float(v));
                const environmentReference::Direction expected =
                    environmentReference::faceDirection(face, u, v);
                EXPECT_NEAR(double(seen.x), expected[0], 2e-7);
                EXPECT_NEAR(double(seen.y), expected[1], 2e-7);
                EXPECT_NEAR(double(seen.z), expected[2], 2e-7);
            }
    }
}

TEST_P(CubeFacesTest, appendsABlockForEachFace) {
    const CubeFaceCameras cameras = makeCubeFaceCameras(&getGraphics(), VIEWS);
    const auto cube = makeOutput();
    const auto shader = ovGraphics::Shader::create(&getGraphics());
    const auto compositor = ovGraphics::Compositor::create(&getGraphics());
    ovGraphics::CompositorNode& node = *compositor->appendNode();
    appendCubeFaces(node, *cube, 0, cameras, *shader);
    ASSERT_EQ(node.getOperationsBlockCount(), CUBE_FACE_COUNT);
    for (unsigned int face = 0; face < CUBE_FACE_COUNT; ++face) {
        const ovGraphics::CompositorOperationsBlock& block = *node.getOperationsBlock(face);
        EXPECT_EQ(block.getTarget(0), cube.get());
        ASSERT_EQ(block.getPassCount(), 1u);
        const auto* pass = dynamic_cast<ovGraphics::PostProcessPass*>(block.getPass(0));
        ASSERT_NE(pass, nullptr);
        EXPECT_EQ(pass->getShader(), shader.get());
        EXPECT_EQ(pass->getCamera(), cameras[face].get());
    }
}

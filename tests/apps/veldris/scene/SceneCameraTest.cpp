#include <veldris/scene/SceneCamera.h>

#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ModelLoader.h>
#include <veldris/SessionTesting.h>

namespace {

using ovGraphics::BoundingBox;
using ovMaths::Vector;
using veldris::CameraChoice;

TEST(SceneCameraTest, readsNumbers) {
    EXPECT_EQ(veldris::parseNumbers("1,-2.5,3e2"), (ovMemory::Buffer<float>{1.0f, -2.5f, 300.0f}));
    EXPECT_EQ(veldris::parseNumbers(""), ovMemory::Buffer<float>());
    for (const char* text : {",", "1,", ",1", "1,,2", "a", "1 2", "1,nan", "inf", "1,2x", "1;2"})
        EXPECT_EQ(veldris::parseNumbers(text), std::nullopt) << text;
}

TEST(SceneCameraTest, readsPointsOfView) {
    ovMemory::String error;
    const auto orbit = veldris::parseCamera("45,-10", error);
    ASSERT_TRUE(orbit) << error;
    EXPECT_EQ(orbit->kind, CameraChoice::KIND::ORBIT);
    EXPECT_EQ(orbit->azimuth, 45.0f);
    EXPECT_EQ(orbit->elevation, -10.0f);
    EXPECT_EQ(orbit->zoom, 1.0f);
    EXPECT_EQ(veldris::parseCamera("0,0,2", error)->zoom, 2.0f);
    const auto place = veldris::parseCamera("1,2,3,4,5,6", error);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->kind, CameraChoice::KIND::PLACE);
    EXPECT_EQ(place->position, Vector(1.0f, 2.0f, -3.0f)) << "files have z the other way";
    EXPECT_EQ(place->target, Vector(4.0f, 5.0f, -6.0f));
    EXPECT_EQ(veldris::parseCamera("file", error)->kind, CameraChoice::KIND::FILE);
}

TEST(SceneCameraTest, tellsWhatWouldBeRight) {
    for (const char* text :
         {"", "30", "1,2,0", "1,2,-3", "1,2,3,4", "1,2,3,4,5,6,7", "1,1,1,1,1,1", "File", "a,b"}) {
        ovMemory::String error;
        EXPECT_FALSE(veldris::parseCamera(text, error)) << text;
        EXPECT_EQ(error,
                  "the camera '" + ovMemory::String(text) +
                      "' is not AZIMUTH,ELEVATION in degrees, the same with ,ZOOM above 0, "
                      "X,Y,Z,TARGET-X,TARGET-Y,TARGET-Z with two different points in metres, or file.");
    }
}

/// The largest distance of the box's corners from the picture's middle, 1 at its edges; beyond 2 planes cut.
float furthestCorner(const ovGraphics::Camera& camera, const BoundingBox& box) {
    const ovMaths::Matrix toClip = camera.getProjectionMatrix() * camera.getViewMatrix();
    const Vector corners[] = {box.getMinimum(), box.getMaximum()};
    float furthest = 0.0f;
    for (unsigned int i = 0; i < 8; ++i) {
        const Vector corner(corners[i & 1].x, corners[i >> 1 & 1].y, corners[i >> 2 & 1].z, 1.0f);
        const Vector clip = toClip * corner;
        const float depth = clip.z / clip.w;
        furthest = std::max({furthest, std::abs(clip.x / clip.w), std::abs(clip.y / clip.w)});
        furthest = std::max(furthest, depth < 0.0f || depth > 1.0f ? 2.0f : 0.0f);
    }
    return furthest;
}

TEST(SceneCameraTest, anOrbitSeesAllOfTheModelAndFillsThePicture) {
    ovGraphics::System system;
    const auto camera = ovGraphics::Camera::create(&system);
    const BoundingBox boxes[] = {
        BoundingBox::newCube({}, 2.0f), BoundingBox::newBox({5.0f, -3.0f, 2.0f}, {9.0f, 0.1f, 1.0f}),
        BoundingBox::newBox({}, {0.001f, 0.02f, 0.001f}), BoundingBox::newCube({}, 4000.0f)};
    ovMemory::String error;
    for (const BoundingBox& box : boxes) {
        for (const char* text : {"0,0", "30,15", "180,0", "-77,60", "0,90", "0,-90"}) {
            for (const float aspect : {0.5f, 1.0f, 2.4f}) {
                ASSERT_TRUE(veldris::placeCamera(*veldris::parseCamera(text, error), box, nullptr, aspect,
                                                 *camera, error));
                const float furthest = furthestCorner(*camera, box);
                EXPECT_NEAR(furthest, 0.94f, 0.01f) << text << ' ' << aspect;
            }
        }
    }
}

TEST(SceneCameraTest, azimuthAndElevationTurnAroundTheModel) {
    ovGraphics::System system;
    const auto camera = ovGraphics::Camera::create(&system);
    const BoundingBox box = BoundingBox::newCube({1.0f, 2.0f, 3.0f}, 2.0f);
    struct Case {
        const char* text;
        Vector towardsEye;
    };
    const Case cases[] = {{"0,0", {0.0f, 0.0f, -1.0f}}, // the fronts of models look along -z
                          {"90,0", {1.0f, 0.0f, 0.0f}},
                          {"180,0", {0.0f, 0.0f, 1.0f}},
                          {"0,90", {0.0f, 1.0f, 0.0f}},
                          {"0,-45", {0.0f, -0.70710678f, -0.70710678f}}};
    ovMemory::String error;
    for (const Case& current : cases) {
        ASSERT_TRUE(veldris::placeCamera(*veldris::parseCamera(current.text, error), box, nullptr, 1.0f,
                                         *camera, error));
        const Vector offset = (camera->getPosition() - box.getCenter()).getNormalizedVec3();
        EXPECT_LT(Vector::distanceVec3(offset, current.towardsEye), 1e-5f) << current.text;
        EXPECT_LT(Vector::distanceVec3(camera->getDirection(), -current.towardsEye), 1e-5f) << current.text;
    }
}

TEST(SceneCameraTest, withinAModelDepthStaysPrecise) {
    ovGraphics::System system;
    const auto camera = ovGraphics::Camera::create(&system);
    ovMemory::String error;
    // 1 m beside the middle of a box whose corners are 2 sqrt(3) m away.
    ASSERT_TRUE(veldris::placeCamera(*veldris::parseCamera("1,0,0,5,0,0", error),
                                     BoundingBox::newCube({}, 4.0f), nullptr, 1.0f, *camera, error));
    EXPECT_NEAR(camera->getNear(), 0.01f * (1.0f + 2.0f * std::sqrt(3.0f)), 1e-5f);
    EXPECT_NEAR(camera->getFar(), 1.0f + 4.0f * std::sqrt(3.0f), 1e-4f);
}

TEST(SceneCameraTest, aModelWithoutCameraHasNoneToOffer) {
    ovGraphics::System system;
    const auto camera = ovGraphics::Camera::create(&system);
    CameraChoice choice;
    choice.kind = CameraChoice::KIND::FILE;
    ovMemory::String error;
    EXPECT_FALSE(veldris::placeCamera(choice, {}, nullptr, 1.0f, *camera, error));
    EXPECT_EQ(error, "the model has no camera; give --camera AZIMUTH,ELEVATION or leave the option out.");
}

/// A triangle with a camera that stands at (1, 2, 3) and is rolled by 0.5 about where it looks, +x.
ovGraphics::GltfScene sceneWith(const ovGraphics::GltfCamera& camera) {
    ovGraphics::GltfScene scene;
    ovGraphics::GltfPrimitive primitive;
    primitive.composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    primitive.vertices.resize(36);
    primitive.vertexCount = 3;
    scene.meshes.push_back({"mesh", {primitive}});
    scene.cameras.push_back(camera);
    ovGraphics::GltfNode& node = scene.nodes.emplace_back();
    node.mesh = 0;
    node.camera = 0;
    node.position = {1.0f, 2.0f, 3.0f};
    ovMaths::Quaternion roll;
    roll.setFromAxisAngle({0.0f, 0.0f, 1.0f}, 0.5f);
    ovMaths::Quaternion turn;
    turn.setFromRotationBetween({0.0f, 0.0f, 1.0f}, {1.0f, 0.0f, 0.0f});
    ovMaths::Matrix rolled;
    ovMaths::Matrix turned;
    rolled.setOrientationComponent(roll);
    turned.setOrientationComponent(turn);
    node.local = turned * rolled;
    node.local.setPositionComponent(node.position);
    node.orientation = node.local.getOrientationComponent();
    node.world = node.local;
    scene.roots = {0};
    return scene;
}

TEST(SceneCameraTest, theFilesCameraKeepsItsRollAndItsHeight) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    ovMemory::String error;
    CameraChoice choice;
    choice.kind = CameraChoice::KIND::FILE;
    for (const bool isOrthographic : {false, true}) {
        ovGraphics::GltfCamera source;
        source.orthographic = isOrthographic;
        source.verticalFov = 0.8f;
        source.height = 3.0f;
        source.aspect = 2.5f; // that of the picture decides
        source.nearPlane = 0.3f;
        source.farPlane = 70.0f;
        const auto loaded = ovVeldris::ModelLoader(&session.getSystem()).create(sceneWith(source));
        ASSERT_TRUE(loaded) << loaded.error;
        const auto camera = ovGraphics::Camera::create(&session.getGraphics());
        ASSERT_TRUE(veldris::placeCamera(choice, {}, loaded.model.get(), 1.5f, *camera, error)) << error;
        EXPECT_EQ(camera->getPosition(), Vector(1.0f, 2.0f, 3.0f));
        EXPECT_LT((camera->getDirection() - Vector(1.0f, 0.0f, 0.0f)).getLengthVec3(), 1e-5f);
        // The camera's up is the node's +y: (-sin, cos) of the roll in the plane of its x, which lies along
        // -z, and y.
        const Vector up(camera->getViewMatrix().m[1][0], camera->getViewMatrix().m[1][1],
                        camera->getViewMatrix().m[1][2]);
        EXPECT_LT((up - Vector(0.0f, std::cos(0.5f), std::sin(0.5f))).getLengthVec3(), 1e-5f)
            << up.toString();
        ovMaths::Matrix expected;
        ASSERT_TRUE(isOrthographic ? expected.setToOrthographicMatrix(4.5f, 3.0f, 0.3f, 70.0f)
                                   : expected.setToPerspectiveMatrix(0.8f, 1.5f, 0.3f, 70.0f));
        EXPECT_EQ(camera->getProjectionMatrix(), expected);
    }
}

} // namespace

#include <veldris/scene/ShadowGround.h>

#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <veldris/SessionTesting.h>
#include <veldris/pictures/PictureTextures.h>

namespace {

using ovGraphics::BoundingBox;
using ovMaths::Vector;

class ShadowGroundTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session));
        _map = veldris::makeTarget(_session.getGraphics(), "map", ovGraphics::FORMAT::D32_FLOAT, 64, 64);
        _camera = ovGraphics::Camera::create(&_session.getGraphics());
        _ground = veldris::ShadowGround::create(_session.getGraphics(), *_map, *_camera);
        ASSERT_TRUE(_ground);
        _queue = ovGraphics::RenderQueue::create(&_session.getGraphics());
        _ground->addTo(*_queue);
    }

    ovGraphics::Node& node() { return *_queue->getEntity(0)->getNode(); }

    veldris::Session _session;
    ovMemory::UniquePtr<ovGraphics::Texture> _map;
    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
    ovMemory::UniquePtr<veldris::ShadowGround> _ground;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _queue;
};

// A cube of side 2 on the ground under a light at 45 degrees: the shadow reaches from -1 to 1 + 2 along x.
TEST_F(ShadowGroundTest, liesWhereTheShadowFalls) {
    const float share = std::sqrt(0.5f);
    const float radius = std::sqrt(3.0f);
    const float reach = _ground->place(BoundingBox::newCube({5.0f, 1.0f, 0.0f}, 2.0f), {share, -share, 0.0f});
    const Vector position = node().getPosition();
    const Vector scale = node().getScale();
    constexpr float MARGIN = 0.06f; // the soft edge, and the gap below the model
    EXPECT_NEAR(position.x, 6.0f, MARGIN);
    EXPECT_NEAR(position.y, 0.0f, 0.01f * radius);
    EXPECT_LT(position.y, 0.0f) << "below what stands on it";
    EXPECT_NEAR(scale.x, 2.0f, MARGIN);
    EXPECT_GE(scale.x, 2.0f);
    EXPECT_NEAR(scale.z, 1.0f, MARGIN);
    // From the centre (5, 1) to the far corner (8, 0).
    EXPECT_NEAR(reach, 4.0f * share, MARGIN);
    EXPECT_GE(reach, 4.0f * share);
}

TEST_F(ShadowGroundTest, liesBelowWhatFloats) {
    const float share = std::sqrt(0.5f);
    _ground->place(BoundingBox::newCube({5.0f, 1.0f, 0.0f}, 2.0f), {share, -share, 0.0f});
    const Vector onTheGround = node().getPosition();
    const Vector scale = node().getScale();
    _ground->place(BoundingBox::newCube({5.0f, 11.0f, 0.0f}, 2.0f), {share, -share, 0.0f});
    EXPECT_NEAR(node().getPosition().x, onTheGround.x, 1e-4f);
    EXPECT_NEAR(node().getPosition().y, onTheGround.y + 10.0f, 1e-4f);
    EXPECT_NEAR(node().getScale().x, scale.x, 1e-4f);
}

TEST_F(ShadowGroundTest, aLowLightThrowsNoEndlessShadow) {
    const Vector low = Vector(1.0f, -0.06f, 0.0f).getNormalizedVec3();
    const float radius = std::sqrt(3.0f);
    _ground->place(BoundingBox::newCube({0.0f, 1.0f, 0.0f}, 2.0f), low);
    EXPECT_NEAR(node().getPosition().x + node().getScale().x, 1.0f + 6.0f * radius, 0.1f);
}

TEST_F(ShadowGroundTest, alightFromBelowThrowsNone) {
    for (const float y : {0.0f, 1.0f}) {
        EXPECT_EQ(_ground->place(BoundingBox::newCube({}, 2.0f), Vector(1.0f, y, 0.0f).getNormalizedVec3()),
                  0.0f);
        EXPECT_EQ(node().getScale(), Vector());
    }
}

} // namespace

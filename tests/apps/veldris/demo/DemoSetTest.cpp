#include <veldris/demo/DemoSet.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Shapes.h>
#include <veldris/SessionTesting.h>

namespace {

class DemoSetTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.timings = true}));
        ovMemory::String error;
        veldris::SceneSettings settings;
        settings.width = settings.height = 33;
        settings.background = {0.0f, 0.0f, 0.0f};
        settings.lightDirection = ovMaths::Vector(0.0f, 0.0f, 1.0f);
        settings.lightColor = ovMaths::Vector(1.0f, 1.0f, 1.0f);
        _scene = veldris::ScenePicture::create(_session, settings, error);
        ASSERT_TRUE(_scene) << error;
        _sphere = ovGraphics::makeSphere(_session.getGraphics());
    }

    veldris::Session _session;
    ovMemory::UniquePtr<veldris::ScenePicture> _scene;
    ovMemory::UniquePtr<ovGraphics::Mesh> _sphere;
};

TEST_F(DemoSetTest, framesItsSpheres) {
    veldris::DemoSet set(_session, *_scene);
    set.addSphere(*_sphere, {100.0f, 50.0f, 0.0f}, 3.0f, [](ovVeldris::PbsMaterial& material) {
        material.setAlbedoColor({0.5f, 0.5f, 0.5f});
    });
    veldris::CameraChoice front;
    front.azimuth = front.elevation = 0.0f;
    veldris::MaterialPicture picture;
    ovMemory::String error;
    ASSERT_TRUE(set.draw(front, picture, error)) << error;
    const auto image = picture.texture->convertToImage();
    EXPECT_GT(image->getComponent(16, 16, 0), 0.3f) << "the sphere is in the middle";
    EXPECT_EQ(image->getComponent(0, 0, 0), 0.0f) << "and its corner is empty";
    EXPECT_GT(veldris::sumOf(picture.passes), 0.0);
    EXPECT_EQ(&set.getGraphics(), &_session.getGraphics());
    const ovGraphics::Texture* kept = set.keep(ovGraphics::Texture::create(&set.getGraphics()));
    EXPECT_NE(kept, nullptr);
}

TEST_F(DemoSetTest, shapesAreStretched) {
    veldris::DemoSet set(_session, *_scene);
    set.addShape(*_sphere, {0.0f, 0.0f, 0.0f}, {4.0f, 1.0f, 1.0f}, [](ovVeldris::PbsMaterial& material) {
        material.setAlbedoColor({0.5f, 0.5f, 0.5f});
    });
    veldris::CameraChoice front;
    front.azimuth = front.elevation = 0.0f;
    veldris::MaterialPicture picture;
    ovMemory::String error;
    ASSERT_TRUE(set.draw(front, picture, error)) << error;
    const auto image = picture.texture->convertToImage();
    const auto isSeen = [&](unsigned int x, unsigned int y) { return image->getComponent(x, y, 0) > 0.0f; };
    EXPECT_TRUE(isSeen(16, 16) && isSeen(5, 16) && isSeen(27, 16)) << "wide";
    EXPECT_FALSE(isSeen(16, 9) || isSeen(16, 23) || isSeen(0, 16)) << "low, and whole";
}

TEST_F(DemoSetTest, aMaterialThatCannotBeLoadedFailsThePicture) {
    veldris::DemoSet set(_session, *_scene);
    set.addGround(*_sphere, 0.0f, 1.0f, [](ovVeldris::PbsMaterial& material) {
        material.setPositionAttributeName("no identifier");
    });
    veldris::MaterialPicture picture;
    ovMemory::String error;
    EXPECT_FALSE(set.draw({}, picture, error));
    EXPECT_NE(error.find("demo material 0"), ovMemory::String::npos) << error;
}

} // namespace

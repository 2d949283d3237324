#include <veldris/effects/SceneResources.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/effects/SsaoEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <veldris/SessionTesting.h>
#include <veldris/effects/EffectChain.h>

namespace {

using ovMaths::Vector;
using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::SCENE_INPUT;
using veldris::PlannedEffect;

class SceneResourcesTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {}));
        for (ovGraphics::Texture** texture :
             {&_scene.depth, &_scene.positions, &_scene.normals, &_scene.shadowMap})
            *texture = _textures.emplace_back(ovGraphics::Texture::create(&_session.getGraphics())).get();
        for (ovGraphics::Camera** camera : {&_scene.camera, &_scene.lightCamera})
            *camera = _cameras.emplace_back(ovGraphics::Camera::create(&_session.getGraphics())).get();
        _scene.toLight = {1.0f, 2.0f, 3.0f};
    }

    static PlannedEffect plan(const char* text) {
        Buffer<PlannedEffect> effects;
        String error;
        EXPECT_TRUE(veldris::planEffects(text, effects, error)) << error;
        return effects.front();
    }
    /// The effect as it reads the scene.
    template <typename T>
    const T& bind(const char* text) {
        const PlannedEffect planned = plan(text);
        _effect = veldris::makeEffect(_session, planned);
        bindScene(planned, _scene, *_effect);
        return static_cast<const T&>(*_effect);
    }

    veldris::Session _session;
    Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> _textures;
    Buffer<ovMemory::UniquePtr<ovGraphics::Camera>> _cameras;
    veldris::SceneResources _scene;
    ovMemory::UniquePtr<ovVeldris::Effect> _effect;
};

TEST_F(SceneResourcesTest, occlusionGetsWhatItReads) {
    const auto& ofDepth = bind<ovVeldris::SsaoEffect>("ssao");
    EXPECT_EQ(ofDepth.getDepthBuffer(), _scene.depth);
    EXPECT_EQ(ofDepth.getPositionBuffer(), nullptr);
    EXPECT_EQ(ofDepth.getCamera(), _scene.camera);
    EXPECT_FALSE(ofDepth.getLinearDepth());
    const auto& ofPositions = bind<ovVeldris::SsaoEffect>("ssao:reads=positions");
    EXPECT_EQ(ofPositions.getDepthBuffer(), nullptr);
    EXPECT_EQ(ofPositions.getPositionBuffer(), _scene.positions);
    EXPECT_EQ(ofPositions.getNormalBuffer(), nullptr);
    EXPECT_EQ(ofPositions.getCamera(), _scene.camera);
    const auto& ofBoth = bind<ovVeldris::SsaoEffect>("ssao:reads=positions-and-normals");
    EXPECT_EQ(ofBoth.getPositionBuffer(), _scene.positions);
    EXPECT_EQ(ofBoth.getNormalBuffer(), _scene.normals);
}

TEST_F(SceneResourcesTest, theSunStandsWhereTheLightComesFromUnlessItIsWritten) {
    const auto& plain = bind<ovVeldris::AtmosphereEffect>("atmosphere");
    EXPECT_EQ(plain.getSourceDepthTexture(), _scene.depth);
    EXPECT_EQ(plain.getShadowTexture(), nullptr);
    EXPECT_EQ(plain.getShadowCamera(), nullptr);
    EXPECT_EQ(plain.getSunPosition(), Vector(1.0f, 2.0f, 3.0f));
    const auto& own =
        bind<ovVeldris::AtmosphereEffect>("atmosphere:sun-position=0,1,4,reads=depth-and-shadows");
    EXPECT_EQ(own.getSunPosition(), Vector(0.0f, 1.0f, 4.0f));
    EXPECT_EQ(own.getSourceDepthTexture(), _scene.depth);
    EXPECT_EQ(own.getShadowTexture(), _scene.shadowMap);
    EXPECT_EQ(own.getShadowCamera(), _scene.lightCamera);
}

TEST(SceneResourcesOfEffectsTest, whatIsReadIsWhatAnyReads) {
    Buffer<PlannedEffect> effects;
    String error;
    ASSERT_TRUE(veldris::planEffects("tone-mapping;atmosphere;ssao:reads=positions", effects, error))
        << error;
    EXPECT_TRUE(readAny(effects, SCENE_INPUT::DEPTH));
    EXPECT_TRUE(readAny(effects, SCENE_INPUT::POSITIONS));
    EXPECT_FALSE(readAny(effects, SCENE_INPUT::NORMALS));
    EXPECT_FALSE(readAny(effects, SCENE_INPUT::SHADOW_MAP));
    EXPECT_FALSE(veldris::readAny({}, SCENE_INPUT::DEPTH));
}

TEST(SceneResourcesOfEffectsTest, depthIsReadOfPerspectiveViews) {
    const auto check = [](const char* list, bool isOrthographic) {
        Buffer<PlannedEffect> effects;
        String error;
        EXPECT_TRUE(veldris::planEffects(list, effects, error)) << error;
        return veldris::checkView(effects, isOrthographic);
    };
    EXPECT_EQ(check("ssao;atmosphere", false), "");
    EXPECT_EQ(check("ssao:reads=positions-and-normals", true), "");
    EXPECT_EQ(check("ssao:reads=positions;ssao", true),
              "'ssao' reads the depth of a perspective view, and the camera's is orthographic; take another "
              "camera, or reads=positions.");
    EXPECT_EQ(check("atmosphere", true),
              "'atmosphere' reads the depth of a perspective view, and the camera's "
              "is orthographic; take another camera.");
}

} // namespace

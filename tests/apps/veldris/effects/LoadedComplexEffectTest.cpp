#include <veldris/effects/LoadedComplexEffect.h>

#include <gtest/gtest.h>
#include <veldris/SessionTesting.h>
#include <veldris/pictures/PictureTextures.h>

namespace {

using ovGraphics::FORMAT;
using veldris::LoadedComplexEffect;

class LoadedComplexEffectTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.language = "glsl"}));
        _picture = veldris::makeTarget(_session.getGraphics(), "picture", FORMAT::R32G32B32A32_FLOAT, 16, 8);
        _depth = veldris::makeTarget(_session.getGraphics(), "depth", FORMAT::R32_FLOAT, 16, 8);
    }

    ovMemory::UniquePtr<LoadedComplexEffect> load(const char* text, const veldris::PictureScene& scene) {
        ovMemory::Buffer<veldris::PlannedEffect> effects;
        ovMemory::String error;
        EXPECT_TRUE(veldris::planEffects(text, effects, error)) << error;
        auto loaded = LoadedComplexEffect::load(_session, effects.at(0), *_picture, scene);
        EXPECT_NE(loaded, nullptr) << _session.getLogger().take();
        return loaded;
    }

    veldris::Session _session;
    ovMemory::UniquePtr<ovGraphics::Texture> _picture;
    ovMemory::UniquePtr<ovGraphics::Texture> _depth;
};

TEST_F(LoadedComplexEffectTest, isLoadedOverThePicture) {
    const auto loaded = load("blur:radius=7,preserve-alpha=true", {});
    const ovVeldris::ComplexEffect& blur = loaded->getEffect();
    EXPECT_EQ(blur.getName(), "blur");
    EXPECT_EQ(blur.getSettingAsText("radius"), "7");
    EXPECT_EQ(blur.getSettingAsText("preserve-alpha"), "true");
    EXPECT_EQ(blur.getSetting("source-texture"), ovVeldris::SettingValue(_picture.get()));
    EXPECT_EQ(loaded->getOutput().getWidth(), 16u);
    EXPECT_FALSE(loaded->getOutput().isUnloaded());
    EXPECT_EQ(loaded->getCompositor().getNode(0)->getOperationsBlockCount(), 2u);
}

TEST_F(LoadedComplexEffectTest, focusesOnTheMiddleOfTheScene) {
    ovGraphics::Camera camera(&_session.getGraphics());
    const veldris::PictureScene scene = {_depth.get(), &camera, 6.0f};
    camera.setPerspective(1.0f, 2.0f, 0.5f, 50.0f);
    const auto perspective = load("dof:focus=auto,near=2", scene);
    const ovVeldris::ComplexEffect& dof = perspective->getEffect();
    // z = 6 is 0.12 of the far plane.
    EXPECT_FLOAT_EQ(std::get<float>(*dof.getSetting("focus")), 0.5f + 0.12f * 49.5f);
    EXPECT_EQ(dof.getSettingAsText("near"), "2");
    EXPECT_EQ(dof.getSettingAsText("linear-depth"), "false");
    EXPECT_EQ(dof.getSetting("source-depth"), ovVeldris::SettingValue(_depth.get()));
    EXPECT_EQ(dof.getSetting("camera"), ovVeldris::SettingValue(&camera));

    camera.setOrthographic(4.0f, 2.0f, 0.5f, 50.0f); // writes linear depth
    const auto orthographic = load("dof:focus=auto", scene);
    EXPECT_FLOAT_EQ(std::get<float>(*orthographic->getEffect().getSetting("focus")), 6.0f);
    EXPECT_EQ(orthographic->getEffect().getSettingAsText("linear-depth"), "true");

    const auto written = load("dof:focus=3", scene);
    EXPECT_EQ(written->getEffect().getSettingAsText("focus"), "3");
}

} // namespace

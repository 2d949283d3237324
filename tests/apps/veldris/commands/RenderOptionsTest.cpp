#include <veldris/commands/RenderOptions.h>

#include <gtest/gtest.h>

using namespace veldris;

TEST(RenderOptionsTest, arePlannedBeforeAnythingIsRead) {
    RenderOptions options;
    options.output = "x.png";
    options.light = "0,-1,0.5";
    options.camera = "10,20,2";
    RenderPlan plan;
    ovMemory::String error;
    ASSERT_TRUE(makePlan(options, plan, error)) << error;
    EXPECT_EQ(plan.scene.lightDirection, ovMaths::Vector(0.0f, -1.0f, -0.5f)) << "files have another z";
    EXPECT_EQ(plan.camera.zoom, 2.0f);
    EXPECT_TRUE(plan.scene.ground) << "before the built-in sky";
}

TEST(RenderOptionsTest, areCheckedWithoutAFile) {
    ovMemory::String error;
    EXPECT_TRUE(checkSceneOptions({}, error)) << error;
    RenderOptions options;
    options.effects = "none such";
    EXPECT_FALSE(checkSceneOptions(options, error));
    EXPECT_NE(error, "");
    options = {};
    options.camera = "behind";
    EXPECT_FALSE(checkSceneOptions(options, error));
    EXPECT_EQ(error.rfind("the camera 'behind' is not", 0), 0u) << error;
}

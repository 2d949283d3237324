#include <ovVeldris/scripts/imagesWrap/ImageWrapper.h>

#include "Pictures.h"

#include <ovImages/CompositeEncoder.h>
#include <support/TemporaryFolder.h>

TEST(ImageWrapperTest, tellsItsSize) {
    luaTest::PictureEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"local i = ovImages.CompositeEncoder.decode(png) return i:getWidth() .. ' x ' .. "
             "i:getHeight()",
             "24 x 16"},
            {"return pcall(function() return ovImages.Image() end)", "false"},
        });
}

TEST(ImageWrapperTest, countsItsPixels) {
    luaTest::PictureEnvironment environment;
    ovScripts::Environment& scripts = environment.get();
    luaTest::evaluate(scripts, "collectgarbage()");
    const std::size_t before = scripts.getUsedMemory();
    luaTest::evaluate(scripts,
                      "held = {} for i = 1, 100 do held[i] = ovImages.CompositeEncoder.decode(png) end");
    EXPECT_GE(scripts.getUsedMemory(), before + 100 * 24 * 16 * 3);
    luaTest::evaluate(scripts, "held = nil collectgarbage()");
    EXPECT_LT(scripts.getUsedMemory(), before + 100 * 24 * 16 * 3 / 2);
}

TEST(ImageWrapperTest, isSavedByTheExtension) {
    const TemporaryFolder folder;
    luaTest::PictureEnvironment environment;
    luaTest::evaluate(environment.get(), "FOLDER = '" + folder.getPath("") + "'");
    luaTest::expectCases(
        environment.get(),
        {
            {"return ovImages.CompositeEncoder.decode(png):save(FOLDER .. 'ramp.png')", "nil"},
            {"return ovImages.CompositeEncoder.decode(png):save(FOLDER .. 'ramp.exr', true)", "nil"},
            {"return ovImages.CompositeEncoder.decode(png):save('a')",
             "error: test:1: ovImages.Image.save: Encoding file 'a' failed: its extension names no image "
             "format; expected one of png, jpg, jpeg, jpe, exr, hdr, pic, rgbe"},
            {"return ovImages.CompositeEncoder.decode(png):save(7)",
             "error: test:1: ovImages.Image.save: argument 2 (path) expected string, got number"},
        });
    const ovImages::Image ramp = luaTest::makeRamp(24, 16, ovImages::COMPONENT_TYPE::UINT8);
    for (const char* name : {"ramp.png", "ramp.exr"}) {
        const auto file = ovImages::CompositeEncoder().decodeFile(folder.getPath(name));
        ASSERT_TRUE(file) << file.error;
        EXPECT_FLOAT_EQ(file.image->getComponent(20, 9, 1), ramp.getComponent(20, 9, 1)) << name;
    }
}

#include <ovVeldris/scripts/imagesWrap/ImageWrapper.h>

#include "Pictures.h"

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

#include <ovVeldris/scripts/imagesWrap/ImageViewWrapper.h>

#include "Pictures.h"

TEST(ImageViewWrapperTest, showsItsPictureAndKeepsItAlive) {
    luaTest::PictureEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"local v = ovImages.ImageView.new(ovImages.CompositeEncoder.decode(png)) "
             "for i = 1, 3 do collectgarbage() end return v:getWidth() .. ' x ' .. v:getHeight()",
             "24 x 16"},
            {"ovImages.ImageView.new(png)", "error: test:1: ovImages.ImageView.new: argument 1 (image) "
                                            "expected ovImages.Image, got ovMemory.Buffer"},
        });
}

#include <ovVeldris/scripts/imagesWrap/CompositeEncoderWrapper.h>

#include "Pictures.h"

TEST(CompositeEncoderWrapperTest, readsEveryFormat) {
    luaTest::PictureEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"return ovImages.CompositeEncoder.canDecode(png)", "true"},
            {"return ovImages.CompositeEncoder.canDecode(jpg)", "true"},
            {"return ovImages.CompositeEncoder.canDecode(ovMemory.Buffer.fromString('text'))", "false"},
            {"return ovImages.CompositeEncoder.decode(jpg):getWidth()", "24"},
            {"return ovImages.CompositeEncoder.decode(png):getHeight()", "16"},
            {"return (pcall(ovImages.CompositeEncoder.decode, ovMemory.Buffer.fromString('text')))", "false"},
            {"return (select(2, pcall(ovImages.CompositeEncoder.decode, ovMemory.Buffer.new(0))):find("
             "'ovImages.CompositeEncoder.decode: ', 1, true))",
             "1"},
        });
}

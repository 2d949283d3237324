#include <ovVeldris/scripts/imagesWrap/JpgEncoderWrapper.h>

#include "Pictures.h"

TEST(JpgEncoderWrapperTest, encodesWithTheQualityThatIsPromised) {
    luaTest::PictureEnvironment environment;
    // Quality 92 scales the tables of the standard (ITU-T T.81, K.1: 16, 11, 12 first) by 200 - 2 * 92
    // percent: 2.56, 1.76, 1.92, rounded. Full colour: each component is sampled 1 x 1.
    luaTest::expectCases(
        environment.get(),
        {
            {"local s = tostring(ovImages.JpgEncoder.encode(ovImages.CompositeEncoder.decode(png))) "
             "local tables = s:find('\\xFF\\xDB', 1, true) "
             "return table.concat({s:byte(1, 3)}, ' ') .. ' / ' .. table.concat({s:byte(tables + 5, tables + "
             "7)}, ' ')",
             "255 216 255 / 3 2 2"},
            {"local s = tostring(ovImages.JpgEncoder.encode(ovImages.CompositeEncoder.decode(png))) "
             "local frame = s:find('\\xFF\\xC0', 1, true) "
             "return table.concat({s:byte(frame + 9, frame + 9)}) .. ' ' .. s:byte(frame + 11) .. ' ' .. "
             "s:byte(frame + 14) .. ' ' .. s:byte(frame + 17)",
             "3 17 17 17"},
        });
}

TEST(JpgEncoderWrapperTest, decodesItsFormatOnly) {
    luaTest::PictureEnvironment environment;
    luaTest::expectCases(
        environment.get(),
        {
            {"return ovImages.JpgEncoder.canDecode(jpg)", "true"},
            {"return ovImages.JpgEncoder.canDecode(png)", "false"},
            {"local i = ovImages.JpgEncoder.decode(jpg) return i:getWidth() .. ' x ' .. i:getHeight()",
             "24 x 16"},
            {"return (pcall(ovImages.JpgEncoder.decode, png))", "false"},
            {"return (pcall(ovImages.JpgEncoder.encode, ovImages.CompositeEncoder.decode(deep)))", "false"},
            // Half a file is damaged, and refused as the options say.
            {"return (pcall(ovImages.JpgEncoder.decode, ovMemory.Buffer.fromString(tostring(jpg):sub(1, "
             "-60))))",
             "false"},
            {"ovImages.JpgEncoder.encode(jpg)",
             "error: test:1: ovImages.JpgEncoder.encode: argument 1 (image) "
             "expected ovImages.Image, got ovMemory.Buffer"},
        });
}

TEST(JpgEncoderWrapperTest, keepsToTheMemoryOfItsEnvironment) {
    ovScripts::EnvironmentOptions options;
    options.memoryLimit = 16 << 20;
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize(options);
    // 2048 x 2048 x 3 bytes are 12 MiB: the second picture does not fit.
    const ovImages::Image image(2048, 2048, 3, ovImages::COMPONENT_TYPE::UINT8,
                                ovImages::COLOR_ENCODING::SRGB);
    const ovMemory::Buffer<unsigned char> bytes = ovImages::JpgEncoder().encode(image.view()).bytes;
    engine.getEnvironment()->setGlobal("bytes", ovMemory::String(bytes.begin(), bytes.end()));
    luaTest::expectCases(
        *engine.getEnvironment(),
        {
            {"file = ovMemory.Buffer.fromString(bytes) first = ovImages.JpgEncoder.decode(file) "
             "return first:getWidth()",
             "2048"},
            {"return (pcall(ovImages.JpgEncoder.decode, file))", "false"},
        });
}

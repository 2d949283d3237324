#include <veldris/pictures/PictureTextures.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <veldris/SessionTesting.h>

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;

class PictureTexturesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.timings = true})); }

    veldris::Session _session;
};

TEST_F(PictureTexturesTest, uploadedNumbersAreNotConverted) {
    using ovGraphics::FORMAT;
    struct Case {
        COMPONENT_TYPE type;
        FORMAT format;
    };
    for (const Case& row : {Case{COMPONENT_TYPE::UINT8, FORMAT::R8G8B8A8_UNORM},
                            {COMPONENT_TYPE::UINT16, FORMAT::R16G16B16A16_UNORM},
                            {COMPONENT_TYPE::HALF, FORMAT::R16G16B16A16_FLOAT},
                            {COMPONENT_TYPE::FLOAT, FORMAT::R32G32B32A32_FLOAT}}) {
        for (const unsigned int channels : {1u, 3u, 4u}) {
            Image picture(2, 1, channels, row.type, COLOR_ENCODING::SRGB);
            picture.setComponent(1, 0, 0, 128.0f / 255.0f);
            const float stored = picture.getComponent(1, 0, 0);
            const auto texture = veldris::uploadPicture(_session.getGraphics(), picture.view());
            ASSERT_NE(texture, nullptr);
            EXPECT_EQ(texture->getFormat(), row.format);
            EXPECT_FALSE(texture->getGammaCorrected());
            const auto back = texture->convertToImage();
            EXPECT_EQ(back->getComponent(1, 0, 0), stored);
            EXPECT_EQ(back->getComponent(1, 0, 2), channels == 1 ? stored : 0.0f);
            EXPECT_EQ(back->getComponent(0, 0, 3), channels == 4 ? 0.0f : 1.0f);
        }
    }
}

TEST_F(PictureTexturesTest, whatTheDeviceCannotHoldIsNull) {
    const Image wide(100000, 1, 4, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    EXPECT_EQ(veldris::uploadPicture(_session.getGraphics(), wide.view()), nullptr);
    EXPECT_EQ(
        veldris::makeTarget(_session.getGraphics(), "wide", ovGraphics::FORMAT::R8G8B8A8_UNORM, 100000, 1),
        nullptr);
    EXPECT_NE(_session.getLogger().take().find("100000"), ovMemory::String::npos);
}

TEST_F(PictureTexturesTest, aShaderIsDrawnOverTheWholeTarget) {
    Image picture(3, 2, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int x = 0; x < 3; ++x)
        picture.setComponent(x, 1, 1, static_cast<float>(x) + 0.5f);
    ovGraphics::System& graphics = _session.getGraphics();
    const auto texture = veldris::uploadPicture(graphics, picture.view());
    ovVeldris::TextureCopyEffect copy(&_session.getSystem());
    copy.setSourceTexture(texture.get());
    ASSERT_TRUE(copy.load());
    auto target = veldris::makeTarget(graphics, "copy", ovGraphics::FORMAT::R32G32B32A32_FLOAT, 3, 2);
    EXPECT_EQ(target->getMipCount(), 1u) << "pictures are drawn and read, never sampled from afar";
    ASSERT_TRUE(veldris::drawPicture(graphics, *copy.getShader(), *target, "copies"));
    const auto drawn = veldris::downloadPicture(std::move(target));
    const auto expected = picture.getBytes();
    const auto bytes = drawn->getBytes();
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), expected.begin(), expected.end()));
    ASSERT_EQ(graphics.getPassTimings().size(), 1u);
    EXPECT_EQ(graphics.getPassTimings()[0].name, "copies");
}

TEST_F(PictureTexturesTest, passesAreDrawnOneOverAnother) {
    ovGraphics::System& graphics = _session.getGraphics();
    const auto texture =
        veldris::uploadPicture(graphics, Image(2, 2, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR));
    Image light(1, 1, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    light.setComponent(0, 0, 0, 1.5f);
    const auto lightTexture = veldris::uploadPicture(graphics, light.view());
    ovVeldris::TextureCopyEffect dark(&_session.getSystem());
    ovVeldris::TextureCopyEffect bright(&_session.getSystem());
    dark.setSourceTexture(texture.get());
    bright.setSourceTexture(lightTexture.get());
    ASSERT_TRUE(dark.load() && bright.load());
    veldris::PicturePass added = {*bright.getShader(), "added"};
    added.blending.setBlendEnabled(true, 0);
    added.blending.setDestinationFactor(ovGraphics::BLEND::ONE, 0);
    const veldris::PicturePass passes[] = {{*dark.getShader(), "below"}, added, added};
    auto target = veldris::makeTarget(graphics, "sum", ovGraphics::FORMAT::R32G32B32A32_FLOAT, 2, 2);
    ASSERT_TRUE(veldris::drawPasses(graphics, passes, *target));
    EXPECT_EQ(veldris::downloadPicture(std::move(target))->getComponent(1, 1, 0), 3.0f);
    ASSERT_EQ(graphics.getPassTimings().size(), 3u);
    EXPECT_EQ(graphics.getPassTimings()[2].name, "added");
}

} // namespace

#include <veldris/pictures/PictureTextures.h>

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <veldris/Session.h>

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;

class PictureTexturesTest : public testing::Test {
protected:
    void SetUp() override {
        veldris::DrawingOptions options;
        options.device = "software";
        options.noCache = true;
        options.timings = true;
        ovMemory::String error;
        ASSERT_TRUE(_session.open(options, error)) << error;
    }

    veldris::Session _session;
};

TEST_F(PictureTexturesTest, uploadedNumbersAreFloatsAndNotConverted) {
    Image picture(2, 1, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    picture.setComponent(1, 0, 2, 128.0f / 255.0f);
    const auto texture = veldris::uploadPicture(_session.getGraphics(), picture.view());
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->getFormat(), ovGraphics::FORMAT::R32G32B32A32_FLOAT);
    const auto back = texture->convertToImage();
    EXPECT_FLOAT_EQ(back->getComponent(1, 0, 2), 128.0f / 255.0f);
    EXPECT_EQ(back->getComponent(0, 0, 2), 0.0f);
    EXPECT_EQ(back->getComponent(0, 0, 3), 1.0f);
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
    ASSERT_TRUE(veldris::drawPicture(graphics, *copy.getShader(), *target, "copies"));
    const auto drawn = veldris::downloadPicture(std::move(target));
    const auto expected = picture.getBytes();
    const auto bytes = drawn->getBytes();
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), expected.begin(), expected.end()));
    ASSERT_EQ(graphics.getPassTimings().size(), 1u);
    EXPECT_EQ(graphics.getPassTimings()[0].name, "copies");
}

} // namespace

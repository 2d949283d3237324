#include <ovGraphics/resources/RenderTarget.h>

#include <ovGraphics/resources/Texture.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

class RenderTargetTest : public PictureTest {};

} // namespace

INSTANTIATE_TEST_SUITE_P(, RenderTargetTest, testing::Values(SHADER_LANGUAGE::GLSL), languageName);

TEST_P(RenderTargetTest, whateverATextureWasItBecomesATarget) {
    const auto texture = Texture::create(&getGraphics());
    texture->setName("t");
    texture->setTexType(TEXTURE_TYPE::CUBE);
    texture->setMipCount(0);
    texture->setGammaCorrected(true);
    ASSERT_TRUE(texture->load());
    texture->setCpuData(0, 0, ovMemory::Buffer<unsigned char>{1, 2, 3, 4});
    texture->setMultisampleQuality(3);
    for (const FORMAT format : {FORMAT::R32G32B32A32_FLOAT, FORMAT::D32_FLOAT, FORMAT::R8G8B8A8_UNORM_SRGB}) {
        ASSERT_TRUE(loadAsRenderTarget(*texture, 5, 3, format)) << getGraphicsLogger().getText();
        EXPECT_EQ(texture->getName(), "t");
        EXPECT_FALSE(texture->isUnloaded());
        EXPECT_TRUE(texture->getUsableAsRenderTarget());
        EXPECT_EQ(texture->getTexType(), TEXTURE_TYPE::TEXTURE_2D);
        EXPECT_EQ(texture->getFormat(), format);
        EXPECT_EQ(texture->getWidth(), 5u);
        EXPECT_EQ(texture->getHeight(), 3u);
        EXPECT_EQ(texture->getMipCount(), 1u);
        EXPECT_EQ(texture->getMultisampleQuality(), 0u);
        EXPECT_FALSE(texture->getGammaCorrected());
    }
}

TEST_P(RenderTargetTest, whatTheDeviceRefusesIsLogged) {
    const auto texture = Texture::create(&getGraphics());
    texture->setName("t");
    EXPECT_FALSE(loadAsRenderTarget(*texture, 0, 3, FORMAT::R8G8B8A8_UNORM));
    EXPECT_TRUE(texture->isUnloaded());
    EXPECT_NE(getGraphicsLogger().getText().find("Could not load the texture 't'"), ovMemory::String::npos);
    EXPECT_FALSE(loadAsRenderTarget(*texture, 4000000000u, 3, FORMAT::R8G8B8A8_UNORM));
    EXPECT_FALSE(loadAsRenderTarget(*texture, 3, 3, FORMAT::BC1_UNORM)) << "nothing draws compressed texels";
    EXPECT_TRUE(loadAsRenderTarget(*texture, 3, 3, FORMAT::R8G8B8A8_UNORM)) << "it can be made good again";
}

#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/environment/EnvironmentFixture.h>
#include <ovVeldris/environment/detail/ToolTarget.h>

using namespace ovVeldris;
using ovGraphics::FORMAT;

namespace {
class ToolTargetTest : public EnvironmentFixture {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, ToolTargetTest, bothLanguages(), languageName);

TEST_P(ToolTargetTest, turnsAnyTextureIntoATarget) {
    const auto texture = makeTexture(FloatPicture(7, 3, {1.0f, 1.0f, 1.0f, 1.0f}));
    texture->unload();
    texture->setSliceCount(5);
    texture->setMultisampleQuality(3);
    ASSERT_TRUE(loadToolTarget(*texture, {.type = ovGraphics::TEXTURE_TYPE::CUBE,
                                          .format = FORMAT::R8G8B8A8_UNORM,
                                          .gammaCorrected = true,
                                          .width = 8,
                                          .height = 8,
                                          .mipCount = 2,
                                          .mipsAreGenerated = true}))
        << getGraphicsLogger().getText();
    EXPECT_EQ(texture->getTexType(), ovGraphics::TEXTURE_TYPE::CUBE);
    EXPECT_EQ(texture->getFormat(), FORMAT::R8G8B8A8_UNORM);
    EXPECT_TRUE(texture->getGammaCorrected());
    EXPECT_EQ(texture->getWidth(), 8u);
    EXPECT_EQ(texture->getHeight(), 8u);
    EXPECT_EQ(texture->getSliceCount(), 6u);
    EXPECT_EQ(texture->getMipCount(), 2u);
    EXPECT_EQ(texture->getMultisampleQuality(), 0u);
    EXPECT_TRUE(texture->getMightManuallyGenerateMip());
    EXPECT_TRUE(texture->getUsableAsRenderTarget());

    ASSERT_TRUE(loadToolTarget(*texture, {.width = 9, .height = 4}));
    EXPECT_EQ(texture->getTexType(), ovGraphics::TEXTURE_TYPE::TEXTURE_2D);
    EXPECT_EQ(texture->getSliceCount(), 1u);
    EXPECT_EQ(texture->getMipCount(), 4u);
    EXPECT_FALSE(texture->getGammaCorrected());
    EXPECT_FALSE(texture->getMightManuallyGenerateMip());
}

TEST_P(ToolTargetTest, leavesATextureThatTheDeviceRefusesUnloaded) {
    const auto texture = makeTexture(FloatPicture(1, 1));
    EXPECT_FALSE(loadToolTarget(*texture, {.width = 0, .height = 4}));
    EXPECT_TRUE(texture->isUnloaded());
    EXPECT_TRUE(getGraphicsLogger().contains("Could not load the texture"));
}

TEST_P(ToolTargetTest, leavesATextureAloneThatWouldHoldDepth) {
    const auto texture = makeTexture(FloatPicture(1, 1));
    EXPECT_FALSE(loadToolTarget(*texture, {.format = FORMAT::D24_UNORM_S8_UINT, .width = 4, .height = 4}));
    EXPECT_FALSE(texture->isUnloaded());
    EXPECT_EQ(texture->getFormat(), FORMAT::R32G32B32A32_FLOAT);
}

TEST(ToolTargetFormatTest, tellsWholeNumbers) {
    for (const FORMAT format : {FORMAT::R8G8B8A8_UINT, FORMAT::R32_SINT, FORMAT::R10G10B10A2_UINT})
        EXPECT_TRUE(holdsWholeNumbers(format));
    for (const FORMAT format : {FORMAT::R8G8B8A8_UNORM, FORMAT::R8_SNORM, FORMAT::R16_FLOAT,
                                FORMAT::BC7_UNORM, FORMAT::D32_FLOAT, FORMAT::UNKNOWN})
        EXPECT_FALSE(holdsWholeNumbers(format));
}

#include <ovVeldris/complexEffects/detail/EffectTargets.h>

#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <support/PictureTest.h>

using namespace ovVeldris;
using ovGraphics::FORMAT;

namespace {

class EffectTargetsTest : public PictureTest {};

TargetShape shape(unsigned int width, unsigned int height) {
    return {width, height, FORMAT::R16G16B16A16_FLOAT, false};
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, EffectTargetsTest, bothLanguages(), languageName);

TEST_P(EffectTargetsTest, ShapesFollowTheSource) {
    EXPECT_EQ(shapeOf(nullptr), (TargetShape{1, 1, FORMAT(30), false}));
    ovGraphics::Texture source(&getGraphics());
    source.setWidth(7);
    source.setHeight(3);
    for (const auto& [format, isGammaCorrected] : {std::pair(FORMAT::R8G8B8A8_UNORM, true),
                                                   {FORMAT::B8G8R8A8_UNORM, true},
                                                   {FORMAT::BC1_UNORM, true},
                                                   {FORMAT::R8_UNORM, false},
                                                   {FORMAT::R32G32B32A32_FLOAT, false},
                                                   {FORMAT::R8G8B8A8_UNORM_SRGB, false}}) {
        source.setFormat(format);
        source.setGammaCorrected(true);
        EXPECT_EQ(shapeOf(&source), (TargetShape{7, 3, format, isGammaCorrected}));
        source.setGammaCorrected(false);
        EXPECT_EQ(shapeOf(&source), (TargetShape{7, 3, format, false}));
    }
}

TEST_P(EffectTargetsTest, QuartersAreOfOneTexelAtLeast) {
    const std::pair<TargetShape, TargetShape> CASES[] = {
        {shape(1024, 768), shape(256, 192)}, {shape(1023, 7), shape(255, 1)}, {shape(4, 8), shape(1, 2)},
        {shape(3, 1), shape(1, 1)},          {shape(2, 401), shape(1, 100)},
    };
    for (const auto& [whole, quarter] : CASES)
        EXPECT_EQ(quarterOf(whole), quarter) << whole.width << " x " << whole.height;
}

TEST_P(EffectTargetsTest, TargetsAreMadeOnceForASystem) {
    ovMemory::UniquePtr<ovGraphics::Texture> target;
    createTarget(target, getGraphics(), "a");
    ovGraphics::Texture* const first = target.get();
    EXPECT_EQ(first->getName(), "a");
    createTarget(target, getGraphics(), "b");
    EXPECT_EQ(target.get(), first);
    EXPECT_EQ(first->getName(), "b");
    ovGraphics::System other;
    createTarget(target, other, "c");
    EXPECT_EQ(target->getSystem(), &other);
    target.reset();
}

TEST_P(EffectTargetsTest, TargetsKeepWhatTheyHoldUnlessTheirShapeChanges) {
    ovGraphics::Texture target(&getGraphics());
    ASSERT_TRUE(prepareTarget(target, {4, 5, FORMAT::R8G8B8A8_UNORM, true}));
    const ovGraphics::device::TextureDesc& desc = target.getGpuTexture()->getDesc();
    EXPECT_EQ(desc.width, 4u);
    EXPECT_EQ(desc.height, 5u);
    EXPECT_EQ(desc.format, FORMAT::R8G8B8A8_UNORM);
    EXPECT_TRUE(desc.gammaCorrected);
    EXPECT_TRUE(target.getUsableAsRenderTarget());
    EXPECT_EQ(target.getMipCount(), 1u);
    const unsigned int count = target.getLoadCount();
    EXPECT_TRUE(prepareTarget(target, {4, 5, FORMAT::R8G8B8A8_UNORM, true}));
    EXPECT_EQ(target.getLoadCount(), count);
    EXPECT_TRUE(prepareTarget(target, {4, 6, FORMAT::R8G8B8A8_UNORM, true}));
    EXPECT_EQ(target.getLoadCount(), count + 1);
    EXPECT_FALSE(prepareTarget(target, {4, 6, FORMAT::BC1_UNORM, false}));
    EXPECT_TRUE(target.isUnloaded());
    getGraphicsLogger().messages.clear();
}

TEST_P(EffectTargetsTest, SamplersAndViewportsAreLoaded) {
    const auto sampler = makeClampingSampler(getGraphics(), "s", ovGraphics::FILTER::MIN_MAG_MIP_POINT);
    ASSERT_NE(sampler, nullptr);
    EXPECT_EQ(sampler->getName(), "s");
    EXPECT_EQ(sampler->getDesc().filter, ovGraphics::FILTER::MIN_MAG_MIP_POINT);
    EXPECT_EQ(sampler->getDesc().addressU, ovGraphics::TEXTURE_ADDRESS::CLAMP);
    EXPECT_EQ(sampler->getDesc().addressV, ovGraphics::TEXTURE_ADDRESS::CLAMP);
    EXPECT_EQ(sampler->getDesc().maxLod, 0.0f);
    EXPECT_TRUE(sampler->getHidden());
    const auto viewport = makeViewport(getGraphics(), "v");
    ASSERT_NE(viewport, nullptr);
    EXPECT_EQ(viewport->getName(), "v");
    ovGraphics::System closed;
    EXPECT_EQ(makeClampingSampler(closed, "s", ovGraphics::FILTER::MIN_MAG_MIP_POINT), nullptr);
}

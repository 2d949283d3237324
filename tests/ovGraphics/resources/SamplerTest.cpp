#include <functional>
#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Sampler.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {
class SamplerTest : public PictureTest {};
} // namespace

INSTANTIATE_TEST_SUITE_P(, SamplerTest, bothLanguages(), languageName);

TEST_P(SamplerTest, reloadsOnlyAfterAChange) {
    const auto sampler = Sampler::create(&getGraphics());
    const ovMemory::Buffer<std::function<void(Sampler&)>> setters = {
        [](Sampler& s) { s.setFilter(FILTER::MIN_MAG_MIP_POINT); },
        [](Sampler& s) { s.setAddressU(TEXTURE_ADDRESS::BORDER); },
        [](Sampler& s) { s.setAddressV(TEXTURE_ADDRESS::MIRROR); },
        [](Sampler& s) { s.setAddressW(TEXTURE_ADDRESS::WRAP); },
        [](Sampler& s) { s.setBorderColor(0.1f, 0.2f, 0.3f, 0.4f); },
        [](Sampler& s) { s.setLodRange(0.0f, 0.0f); },
        [](Sampler& s) { s.setLodBias(0.5f); },
        [](Sampler& s) { s.setMaxAnisotropy(4); },
        [](Sampler& s) { s.setComparison(COMPARISON::LESS); },
    };
    ASSERT_TRUE(sampler->load()) << getGraphicsLogger().getText();
    for (std::size_t i = 0; i < setters.size(); ++i) {
        const device::GpuSampler* before = sampler->getGpuSampler();
        setters[i](*sampler);
        EXPECT_EQ(sampler->getGpuSampler(), before) << i; // a setting waits for load()
        ASSERT_TRUE(sampler->load()) << i;
        const device::GpuSampler* loaded = sampler->getGpuSampler();
        setters[i](*sampler); // the same value again
        ASSERT_TRUE(sampler->load()) << i;
        EXPECT_EQ(sampler->getGpuSampler(), loaded) << i;
    }
    EXPECT_EQ(sampler->getDesc().filter, FILTER::MIN_MAG_MIP_POINT);
    EXPECT_EQ(sampler->getDesc().maxLod, 0.0f);
    sampler->reset();
    EXPECT_TRUE(sampler->isUnloaded());
    EXPECT_EQ(sampler->getGpuSampler(), nullptr);
    EXPECT_EQ(sampler->getDesc().filter, FILTER::MIN_MAG_MIP_LINEAR);
    EXPECT_EQ(sampler->getDesc().addressU, TEXTURE_ADDRESS::CLAMP);
}

TEST_P(SamplerTest, decidesWhatIsReadAfterItsReload) {
    const TestShader shader(getGraphics(),
                            pixelText("ovSampleLevel(image, state, PIX_TEXCOORD * 3.0 - 1.0, 0.0)",
                                      "ovTexture2dDecl(image, 0);\novSamplerDecl(state, 0);\n"));
    ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
    FloatPicture picture(2, 1);
    picture.pixels = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    const auto texture = makeTexture(picture);
    const auto sampler = Sampler::create(&getGraphics());
    sampler->setFilter(FILTER::MIN_MAG_MIP_POINT);
    sampler->setBorderColor(9, 10, 11, 12);
    shader->addTexture(texture.get(), 0, 0);
    shader->addSampler(sampler.get(), 0, 0);
    // Six pixels: two beyond the left edge, the texture, two beyond the right edge.
    const std::array<std::pair<TEXTURE_ADDRESS, std::array<float, 6>>, 4> rows = {{
        {TEXTURE_ADDRESS::CLAMP, {1, 1, 1, 5, 5, 5}},
        {TEXTURE_ADDRESS::WRAP, {1, 5, 1, 5, 1, 5}},
        {TEXTURE_ADDRESS::MIRROR, {5, 1, 1, 5, 5, 1}},
        {TEXTURE_ADDRESS::BORDER, {9, 9, 1, 5, 9, 9}},
    }};
    for (const auto& [address, expected] : rows) {
        sampler->setAddressU(address);
        ASSERT_TRUE(sampler->load()) << getGraphicsLogger().getText();
        const FloatPicture drawn = draw(*shader, 6, 1);
        for (unsigned int x = 0; x < 6; ++x)
            EXPECT_EQ(drawn.at(x, 0)[0], expected[x]) << int(address) << ' ' << x;
    }
}

TEST_P(SamplerTest, withoutADeviceLoadSaysSo) {
    ovMemory::UniquePtr<Sampler> sampler;
    {
        System system;
        sampler = Sampler::create(&system);
        EXPECT_FALSE(sampler->load());
    }
    EXPECT_FALSE(sampler->load());
}

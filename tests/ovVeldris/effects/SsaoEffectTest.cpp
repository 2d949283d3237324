#include <ovVeldris/effects/SsaoEffect.h>

#include <ovGraphics/resources/BlendState.h>
#include <ovGraphics/resources/Program.h>
#include <ovVeldris/effects/SsaoFixture.h>

using namespace ovVeldris;
using namespace ssaoReference;
using Defines = ovMemory::Buffer<ovGraphics::shading::Define>;

namespace {

class SsaoEffectTest : public SsaoFixture {};

ovMemory::String programName(const SsaoEffect& effect) {
    return ovMemory::String(effect.getShader()->getProgram()->getName());
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, SsaoEffectTest, bothLanguages(), languageName);

TEST_P(SsaoEffectTest, isNewWithDefaults) {
    const auto effect = SsaoEffect::create(getSystem());
    EXPECT_EQ(effect->getType(), EFFECT_TYPE::SSAO);
    EXPECT_EQ(effect->getPositionBuffer(), nullptr);
    EXPECT_EQ(effect->getNormalBuffer(), nullptr);
    EXPECT_EQ(effect->getDepthBuffer(), nullptr);
    EXPECT_EQ(effect->getCamera(), nullptr);
    EXPECT_EQ(effect->getSamplingRadius(), 0.05f);
    EXPECT_EQ(effect->getMaxOcclusionDistance(), 1.0f);
    EXPECT_EQ(effect->getStrength(), 0.8f);
    EXPECT_EQ(effect->getDepthBias(), 0.00001f);
    EXPECT_EQ(effect->getKernelSampleCount(), 16u);
    EXPECT_FALSE(effect->getOcclusionDrivesAlpha());
    EXPECT_FALSE(effect->getLinearDepth());
    EXPECT_EQ(effect->getShader(), nullptr);
}

TEST_P(SsaoEffectTest, keepsNumbersInTheirRanges) {
    SsaoEffect effect(getSystem());
    effect.setKernelSampleCount(0);
    EXPECT_EQ(effect.getKernelSampleCount(), 1u);
    effect.setKernelSampleCount(17);
    EXPECT_EQ(effect.getKernelSampleCount(), 16u);
    effect.setKernelSampleCount(7);
    EXPECT_EQ(effect.getKernelSampleCount(), 7u);
    effect.setStrength(-0.5f);
    EXPECT_EQ(effect.getStrength(), 0.0f);
    effect.setStrength(2.0f);
    EXPECT_EQ(effect.getStrength(), 1.0f);
    effect.setSamplingRadius(-3.0f);
    effect.setMaxOcclusionDistance(-4.0f);
    effect.setDepthBias(-5.0f);
    EXPECT_EQ(effect.getSamplingRadius(), -3.0f);
    EXPECT_EQ(effect.getMaxOcclusionDistance(), -4.0f);
    EXPECT_EQ(effect.getDepthBias(), -5.0f);
}

TEST_P(SsaoEffectTest, readsEitherDepthOrPositions) {
    const auto a = makeTexture(FloatPicture(1, 1));
    const auto b = makeTexture(FloatPicture(1, 1));
    SsaoEffect effect(getSystem());
    effect.setEffectFromDepthInfo(a.get(), true);
    EXPECT_EQ(effect.getDepthBuffer(), a.get());
    EXPECT_TRUE(effect.getLinearDepth());
    effect.setEffectFromGBufferInfo(a.get(), b.get());
    EXPECT_EQ(effect.getDepthBuffer(), nullptr);
    EXPECT_EQ(effect.getPositionBuffer(), a.get());
    EXPECT_EQ(effect.getNormalBuffer(), b.get());
    EXPECT_TRUE(effect.getLinearDepth());
    effect.setEffectFromDepthInfo(b.get(), false);
    EXPECT_EQ(effect.getPositionBuffer(), nullptr);
    EXPECT_EQ(effect.getNormalBuffer(), nullptr);
    EXPECT_EQ(effect.getDepthBuffer(), b.get());
    EXPECT_FALSE(effect.getLinearDepth());
}

TEST_P(SsaoEffectTest, identifiesItsProgram) {
    SsaoEffectInfo info;
    EXPECT_EQ(SsaoIdGenerator()(info), 0x3727c5ac10000000u); // 0.00001 as a float, 16 samples
    info.readsPositions = true;
    EXPECT_EQ(SsaoIdGenerator()(info), 0x3727c5ac10010000u);
    info.readsNormals = true; // in no bit
    EXPECT_EQ(SsaoIdGenerator()(info), 0x3727c5ac10010000u);
    info.occlusionDrivesAlpha = true;
    info.linearDepth = true;
    info.kernelSampleCount = 5;
    info.depthBias = -2.0f;
    EXPECT_EQ(SsaoIdGenerator()(info), 0xc00000000501c000u);
}

TEST_P(SsaoEffectTest, definesWhatItsSettingsSelect) {
    const auto a = makeTexture(FloatPicture(1, 1));
    struct Case {
        std::function<void(SsaoEffect&)> prepare;
        uint64_t id;
        Defines vertex;
        Defines pixel;
    };
    const Case cases[] = {
        {[](SsaoEffect&) {},
         0x3727c5ac10000000u,
         {{"DEPTH_BUFFER", ""}},
         {{"DEPTH_BIAS", "0.000010"}, {"MAX_KERNEL_SAMPLES", "16"}, {"DEPTH_BUFFER", ""}}},
        {[&](SsaoEffect& effect) {
             effect.setEffectFromDepthInfo(a.get(), true);
             effect.setOcclusionDrivesAlpha(true);
             effect.setKernelSampleCount(3);
             effect.setDepthBias(1.5f);
         },
         0x3fc000000300c000u,
         {{"DEPTH_BUFFER", ""}},
         {{"DEPTH_BIAS", "1.500000"},
          {"MAX_KERNEL_SAMPLES", "3"},
          {"DEPTH_BUFFER", ""},
          {"LINEAR_DEPTH", ""},
          {"OCCLUSION_DRIVES_ALPHA", ""}}},
        {[&](SsaoEffect& effect) {
             effect.setEffectFromGBufferInfo(a.get(), nullptr);
             effect.setDepthBias(1e-8f);
         },
         0x322bcc7710010000u,
         {},
         {{"DEPTH_BIAS", "0.000000"}, {"MAX_KERNEL_SAMPLES", "16"}, {"GBUFFER_POSITION", ""}}},
        {[&](SsaoEffect& effect) { effect.setEffectFromGBufferInfo(a.get(), a.get()); },
         0x3727c5ac10010000u,
         {},
         {{"DEPTH_BIAS", "0.000010"},
          {"MAX_KERNEL_SAMPLES", "16"},
          {"GBUFFER_POSITION", ""},
          {"GBUFFER_NORMAL", ""}}},
    };
    for (const Case& row : cases) {
        const auto effect = SsaoEffect::create(getSystem());
        row.prepare(*effect);
        ASSERT_TRUE(effect->load()) << getGraphicsLogger().getText();
        EXPECT_EQ(programName(*effect), "ORVANE_SSAO_PROGRAM_" + std::to_string(row.id));
        const ovGraphics::Program& program = *effect->getShader()->getProgram();
        EXPECT_EQ(program.getSources().getVertex().defines, row.vertex);
        EXPECT_EQ(program.getSources().getPixel().defines, row.pixel);
        EXPECT_TRUE(program.getActivateCrossCompilerDefines());
    }
}

TEST_P(SsaoEffectTest, sharesAProgramWhateverTheNormals) {
    const auto a = makeTexture(FloatPicture(1, 1));
    SsaoEffect first(getSystem());
    SsaoEffect second(getSystem());
    first.setEffectFromGBufferInfo(a.get(), nullptr);
    second.setEffectFromGBufferInfo(a.get(), a.get());
    ASSERT_TRUE(first.load());
    ASSERT_TRUE(second.load());
    EXPECT_EQ(first.getShader()->getProgram(), second.getShader()->getProgram());
    EXPECT_EQ(second.getShader()->getProgram()->getSources().getPixel().defines.size(), 3u);
}

TEST_P(SsaoEffectTest, releasesTheProgramThatItAcquired) {
    auto positions = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    effect->setEffectFromGBufferInfo(positions.get(), nullptr);
    ASSERT_TRUE(effect->load());
    const ovMemory::Borrowed<ovGraphics::Program> program = effect->getShader()->getProgram();
    effect->setDepthBias(3.0f);
    positions.reset(); // the loaded effect still reads positions
    effect->unload();
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(SsaoEffectTest, setsItsSampler) {
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    ovGraphics::Sampler* sampler = getGraphics().getSamplerManager()->get("VELDRIS_SSAO_SAMPLER");
    ASSERT_NE(sampler, nullptr);
    EXPECT_EQ(effect->getShader()->getSampler(0, 0), sampler);
    sampler->setFilter(ovGraphics::FILTER::ANISOTROPIC); // put right by the next load
    sampler->setBorderColor(1.0f, 1.0f, 1.0f, 1.0f);
    ASSERT_TRUE(effect->load());
    const ovGraphics::device::SamplerDesc& desc = sampler->getDesc();
    EXPECT_EQ(int(desc.filter), 0);
    EXPECT_EQ(int(desc.addressU), 4);
    EXPECT_EQ(int(desc.addressV), 4);
    EXPECT_EQ(desc.borderColor, (std::array{0.0f, 0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(desc.minLod, 0.0f);
    EXPECT_EQ(desc.maxLod, 0.0f);
    EXPECT_FALSE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());
}

TEST_P(SsaoEffectTest, bindsTexturesOfTheLoadedKindAtOnce) {
    const auto a = makeTexture(FloatPicture(1, 1));
    const auto b = makeTexture(FloatPicture(1, 1));
    const auto c = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    const auto bound = [&](unsigned int unit) { return effect->getShader()->getTexture(unit, 0); };

    effect->setEffectFromGBufferInfo(a.get(), b.get());
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(bound(0), a.get());
    EXPECT_EQ(bound(1), b.get());
    effect->setEffectFromDepthInfo(c.get(), false);
    EXPECT_EQ(bound(0), a.get());
    EXPECT_EQ(bound(1), b.get());
    effect->setEffectFromGBufferInfo(c.get(), a.get());
    EXPECT_EQ(bound(0), c.get());
    EXPECT_EQ(bound(1), a.get());

    effect->setDepthBias(0.25f); // another program, for positions alone
    effect->setEffectFromGBufferInfo(a.get(), nullptr);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(bound(1), nullptr);
    effect->setEffectFromGBufferInfo(b.get(), c.get());
    EXPECT_EQ(bound(0), b.get());
    EXPECT_EQ(bound(1), nullptr);

    effect->setEffectFromDepthInfo(a.get(), false);
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(bound(0), a.get());
    effect->setEffectFromGBufferInfo(b.get(), b.get());
    EXPECT_EQ(bound(0), a.get());
    effect->setEffectFromDepthInfo(c.get(), true);
    EXPECT_EQ(bound(0), c.get());
    effect->unload();
    effect->setEffectFromDepthInfo(a.get(), true);
    EXPECT_EQ(bound(0), nullptr);
}

TEST_P(SsaoEffectTest, hasTheConstantsOfItsKind) {
    const auto a = makeTexture(FloatPicture(1, 1));
    const auto effect = makeEffect();
    ASSERT_TRUE(effect->load());
    const auto registers = [&](unsigned int buffer) {
        ovMemory::Buffer<unsigned int> counts;
        if (const ovGraphics::ConstantBuffer* constants = effect->getShader()->getConstantBuffer(buffer, 0))
            for (unsigned int i = 0; i < constants->getPassMemorySlotCount(); ++i)
                counts.push_back(constants->getPassMemorySlot(i)->getRegisterCount());
        return counts;
    };
    EXPECT_EQ(registers(0), (ovMemory::Buffer<unsigned int>{1, 4, 1}));
    EXPECT_EQ(registers(1), (ovMemory::Buffer<unsigned int>{4}));
    effect->setEffectFromGBufferInfo(a.get(), nullptr);
    ASSERT_TRUE(effect->load());
    effect->setCamera(nullptr);
    EXPECT_EQ(registers(0), (ovMemory::Buffer<unsigned int>{1, 4}));
    EXPECT_EQ(registers(1), (ovMemory::Buffer<unsigned int>{}));
}

TEST_P(SsaoEffectTest, tellsWhyItDoesNotLoad) {
    System never;
    never.getLogManager()->setReceiver(&getLog());
    SsaoEffect effect(&never);
    effect.setName("corners");
    EXPECT_FALSE(effect.load());
    const ovMemory::Buffer<RecordingLogger::Message> expected = {
        loadFailure("ssao", "SsaoEffect", "program", "corners")};
    EXPECT_EQ(getLog().messages, expected);
}

TEST_P(SsaoEffectTest, preparesABlendStateForItsAlpha) {
    ovGraphics::BlendState state;
    state.setAlphaToCoverageEnabled(true);
    state.setIndependentBlendEnabled(true);
    state.setWriteMask(0, 0);
    SsaoEffectUtils::prepareBlendStateForAoBlending(&state);
    const auto& desc = state.getDesc();
    EXPECT_FALSE(desc.alphaToCoverage);
    EXPECT_FALSE(desc.independentBlend);
    const auto& target = desc.targets[0];
    EXPECT_TRUE(target.enabled);
    EXPECT_EQ(int(target.operation), 1);
    EXPECT_EQ(int(target.alphaOperation), 5);
    EXPECT_EQ(int(target.destinationFactor), 5);
    EXPECT_EQ(int(target.alphaDestinationFactor), 2);
    EXPECT_EQ(int(target.sourceFactor), 1);
    EXPECT_EQ(int(target.alphaSourceFactor), 5);
    EXPECT_EQ(int(target.writeMask), 15);
}

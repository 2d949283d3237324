#include <ovGraphics/Managers.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <ovVeldris/effects/ToneMappingEffect.h>

using namespace ovVeldris;
using ovGraphics::Program;

namespace {

/// An effect on the tone mapping programs whose preparation can be made to fail.
class BreakableEffect final : public ScreenEffect<ToneMappingEffectInfo, ToneMappingProgramTracker> {
public:
    explicit BreakableEffect(System* system)
        : ScreenEffect(EFFECT_TYPE::TONE_MAPPING, system, "breakable", "BreakableEffect") {}

    bool breakProgram = false;
    bool breakShader = false;
    ToneMappingEffectInfo& info() { return _currentInfo; }
    using ScreenEffectBase::_getLoadedShader;
    using ScreenEffectBase::_prepareSampler;

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override {
        sources.setPixelMemory(breakProgram ? "#line 1 \"Breakable.pixel.ovsl\"\nthis is no shader" : R"(
#ifdef OV_HLSL
float4 main() : SV_TARGET { return float4(1.0, 2.0, 3.0, 4.0); }
#endif
#ifdef OV_GLSL
out vec4 OUT_COLOR;
void main() { OUT_COLOR = vec4(1.0, 2.0, 3.0, 4.0); }
#endif
)");
    }
    void _bindResources(ovGraphics::Shader& shader) override {
        if (breakShader)
            shader.setProgram(nullptr);
    }
};

class ScreenEffectTest : public EffectFixture {
protected:
    ToneMappingProgramTracker& tracker() { return *getTrackers().get<ToneMappingProgramTracker>(); }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ScreenEffectTest, bothLanguages(), languageName);

TEST_P(ScreenEffectTest, sharesOneProgram) {
    BreakableEffect first(getSystem());
    BreakableEffect second(getSystem());
    ASSERT_TRUE(first.load() && second.load());
    const ovMemory::Borrowed<Program> program = first.getShader()->getProgram();
    EXPECT_EQ(second.getShader()->getProgram(), program.get());
    EXPECT_NE(first.getShader(), second.getShader());
    first.unload();
    ASSERT_NE(program.get(), nullptr);
    EXPECT_FALSE(program->isUnloaded());
    EXPECT_EQ(draw(*second.getShader(), 1, 1).at(0, 0), (FloatPixel{1.0f, 2.0f, 3.0f, 4.0f}));
    second.unload();
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(ScreenEffectTest, preparesALoadedProgramOnlyOnce) {
    BreakableEffect first(getSystem());
    ASSERT_TRUE(first.load());
    BreakableEffect second(getSystem());
    second.breakProgram = true; // would fail if it were compiled again
    EXPECT_TRUE(second.load());
}

TEST_P(ScreenEffectTest, holdsOneReferenceHoweverOftenItIsLoaded) {
    BreakableEffect effect(getSystem());
    const ovMemory::Borrowed<Program> program = tracker().getProgram({});
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(effect.load());
    EXPECT_EQ(effect.getShader()->getProgram(), program.get());
    tracker().releaseProgram({});
    ASSERT_NE(program.get(), nullptr);
    effect.unload();
    EXPECT_EQ(program.get(), nullptr);
    effect.unload();
}

TEST_P(ScreenEffectTest, releasesTheProgramThatItLoaded) {
    auto effect = std::make_unique<BreakableEffect>(getSystem());
    ASSERT_TRUE(effect->load());
    const ovMemory::Borrowed<Program> program = effect->getShader()->getProgram();
    ToneMappingEffectInfo other;
    other.useLuminance = false;
    const ovMemory::Borrowed<Program> otherProgram = tracker().getProgram(other);
    effect->info() = other;
    effect.reset();
    EXPECT_EQ(program.get(), nullptr);
    EXPECT_NE(otherProgram.get(), nullptr);
    tracker().releaseProgram(other);
}

TEST_P(ScreenEffectTest, dropsItsBindingsWhenUnloaded) {
    TextureCopyEffect effect(getSystem());
    const auto texture = makeTexture(FloatPicture(1, 1));
    effect.setSourceTexture(texture.get());
    ASSERT_TRUE(effect.load());
    effect.unload();
    EXPECT_TRUE(effect.getShader()->isUnloaded());
    EXPECT_EQ(effect.getShader()->getProgram(), nullptr);
    EXPECT_EQ(effect.getShader()->getTexture(0, 0), nullptr);
    EXPECT_EQ(effect.getShader()->getSampler(0, 0), nullptr);
    EXPECT_EQ(effect.getSourceTexture(), texture.get());
}

TEST_P(ScreenEffectTest, failsWithoutAProgram) {
    BreakableEffect effect(getSystem());
    effect.setName("broken one");
    effect.breakProgram = true;
    EXPECT_FALSE(effect.load());
    EXPECT_EQ(effect.getShader(), nullptr);
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages{
                                     loadFailure("breakable", "BreakableEffect", "program", "broken one")});
    EXPECT_TRUE(getGraphicsLogger().contains("'ORVANE_TONE_PROGRAM_9'")) << getGraphicsLogger().getText();
    EXPECT_TRUE(getGraphicsLogger().contains("Breakable.pixel.ovsl:1:")) << getGraphicsLogger().getText();

    // The program that the failed effect still holds is prepared anew by whoever comes next.
    const ovMemory::Borrowed<Program> program = tracker().getProgram({});
    EXPECT_TRUE(program->isUnloaded());
    BreakableEffect sound(getSystem());
    EXPECT_TRUE(sound.load());
    EXPECT_EQ(sound.getShader()->getProgram(), program.get());

    effect.breakProgram = false;
    EXPECT_TRUE(effect.load());
    EXPECT_EQ(draw(*effect.getShader(), 1, 1).at(0, 0), (FloatPixel{1.0f, 2.0f, 3.0f, 4.0f}));
    effect.unload();
    sound.unload();
    ASSERT_NE(program.get(), nullptr);
    tracker().releaseProgram({});
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(ScreenEffectTest, releasesTheProgramOfAFailedLoad) {
    BreakableEffect effect(getSystem());
    ASSERT_TRUE(effect.load());
    effect.info().useLuminance = false;
    const ToneMappingEffectInfo failed = effect.info();
    effect.breakProgram = true;
    EXPECT_FALSE(effect.load());
    const ovMemory::Borrowed<Program> program = tracker().getProgram(failed);
    tracker().releaseProgram(failed);
    ASSERT_NE(program.get(), nullptr); // the effect's reference
    effect.info().useLuminance = true;
    effect.unload();
    EXPECT_EQ(program.get(), nullptr);
}

TEST_P(ScreenEffectTest, failsWithoutAShader) {
    BreakableEffect effect(getSystem());
    effect.setName("broken");
    effect.breakShader = true;
    EXPECT_FALSE(effect.load());
    EXPECT_EQ(getLog().messages,
              RecordingLogger::Messages{loadFailure("breakable", "BreakableEffect", "shader", "broken")});
    ASSERT_NE(effect.getShader(), nullptr);
    EXPECT_TRUE(effect.getShader()->isUnloaded());
    EXPECT_EQ(effect._getLoadedShader(), nullptr);
    effect.breakShader = false;
    EXPECT_TRUE(effect.load());
    EXPECT_EQ(effect._getLoadedShader(), effect.getShader());
}

TEST_P(ScreenEffectTest, setsOnlyTheSamplerSettingsGiven) {
    const BreakableEffect effect(getSystem());
    ovGraphics::SamplerManager& samplers = *getGraphics().getSamplerManager();
    ovGraphics::Sampler* sampler = samplers.createOrRetrieve("TEST_SAMPLER");
    sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::MIRROR);
    sampler->setAddressV(ovGraphics::TEXTURE_ADDRESS::WRAP);
    sampler->setBorderColor(1.0f, 2.0f, 3.0f, 4.0f);
    sampler->setLodRange(1.0f, 2.0f);

    using enum ovGraphics::FILTER;
    EffectSamplerSettings settings = {
        .name = "TEST_SAMPLER", .filter = MIN_MAG_LINEAR_MIP_POINT, .firstMipOnly = false, .hidden = false};
    EXPECT_EQ(effect._prepareSampler(settings), sampler);
    EXPECT_EQ(sampler->getDesc().filter, MIN_MAG_LINEAR_MIP_POINT);
    EXPECT_EQ(sampler->getDesc().addressU, ovGraphics::TEXTURE_ADDRESS::MIRROR);
    EXPECT_EQ(sampler->getDesc().addressV, ovGraphics::TEXTURE_ADDRESS::WRAP);
    EXPECT_EQ(sampler->getDesc().borderColor, (std::array{1.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_EQ(sampler->getDesc().maxLod, 2.0f);
    EXPECT_FALSE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());

    settings.address = ovGraphics::TEXTURE_ADDRESS::BORDER;
    settings.borderColor = {5.0f, 6.0f, 7.0f, 8.0f};
    settings.firstMipOnly = true;
    settings.hidden = true;
    EXPECT_EQ(effect._prepareSampler(settings), sampler);
    EXPECT_EQ(sampler->getDesc().addressU, ovGraphics::TEXTURE_ADDRESS::BORDER);
    EXPECT_EQ(sampler->getDesc().addressV, ovGraphics::TEXTURE_ADDRESS::BORDER);
    EXPECT_EQ(sampler->getDesc().addressW, ovGraphics::TEXTURE_ADDRESS::CLAMP);
    EXPECT_EQ(sampler->getDesc().borderColor, (std::array{5.0f, 6.0f, 7.0f, 8.0f}));
    EXPECT_EQ(sampler->getDesc().minLod, 0.0f);
    EXPECT_EQ(sampler->getDesc().maxLod, 0.0f);
    EXPECT_TRUE(sampler->getHidden());
    EXPECT_FALSE(sampler->isUnloaded());
    samplers.erase("TEST_SAMPLER");
}

TEST_P(ScreenEffectTest, failsOnASystemThatIsNotInitialised) {
    System own;
    own.getLogManager()->setReceiver(&getLog());
    TextureCopyEffect effect(&own);
    effect.setName("early");
    effect.setSourceTexture(nullptr);
    effect.setSourceSampler(nullptr);
    EXPECT_FALSE(effect.load());
    EXPECT_EQ(effect.getShader(), nullptr);
    EXPECT_EQ(getLog().messages, RecordingLogger::Messages{
                                     loadFailure("texture copy", "TextureCopyEffect", "program", "early")});
    effect.unload();
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    EXPECT_TRUE(effect.load());
}

TEST_P(ScreenEffectTest, outlivesAShutdown) {
    System own;
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    TextureCopyEffect loaded(&own);
    TextureCopyEffect never(&own);
    ASSERT_TRUE(loaded.load());
    own.shutdown();
    for (TextureCopyEffect* effect : {&loaded, &never}) {
        effect->setName("late");
        effect->setSourceTexture(nullptr);
        effect->setSourceSampler(nullptr);
        EXPECT_FALSE(effect->load());
        effect->unload();
    }
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
    ASSERT_TRUE(initializeOwn(own));
    EXPECT_TRUE(loaded.load());
}

TEST_P(ScreenEffectTest, takesNoReferenceFromAnothersTracker) {
    System own;
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    TextureCopyEffect old(&own);
    ASSERT_TRUE(old.load());
    // Starting anew replaces the trackers: the old effect's program is gone with its reference.
    ASSERT_TRUE(initializeOwn(own));
    TextureCopyEffect current(&own);
    ASSERT_TRUE(current.load());
    const ovMemory::Borrowed<Program> program = current.getShader()->getProgram();
    old.unload();
    EXPECT_NE(program.get(), nullptr);
    EXPECT_TRUE(old.load());
    EXPECT_EQ(old.getShader()->getProgram(), program.get());
}

TEST_P(ScreenEffectTest, outlivesItsSystem) {
    auto own = std::make_unique<System>();
    ASSERT_TRUE(initializeOwn(*own)) << getLog().getText();
    auto effect = TextureCopyEffect::create(own.get());
    ASSERT_TRUE(effect->load());
    own.reset();
    effect->unload();
    effect.reset();
}

TEST_P(ScreenEffectTest, failsWhileTheGraphicsSystemIsShutDown) {
    System own;
    ASSERT_TRUE(initializeOwn(own)) << getLog().getText();
    ToneMappingEffect effect(&own);
    effect.setName("dark");
    own.getGraphicsEngine()->getGraphicsSystem()->shutdown();
    EXPECT_FALSE(effect.load());
    ASSERT_FALSE(getLog().messages.empty());
    EXPECT_EQ(getLog().messages.back(), loadFailure("tone mapping", "ToneMappingEffect", "program", "dark"));
}

TEST_P(ScreenEffectTest, forgetsADestroyedTexture) {
    TextureCopyEffect effect(getSystem());
    auto texture = makeTexture(FloatPicture(1, 1, {5.0f, 5.0f, 5.0f, 5.0f}));
    effect.setSourceTexture(texture.get());
    texture.reset();
    EXPECT_EQ(effect.getSourceTexture(), nullptr);
    ASSERT_TRUE(effect.load());
    EXPECT_EQ(draw(*effect.getShader(), 1, 1).at(0, 0), (FloatPixel{0.0f, 0.0f, 0.0f, 1.0f}));
}

TEST(ScreenEffectSingletonTest, isMadeForTheSingletonWithoutASystem) {
    ASSERT_EQ(System::getInstanceIfExisting(), nullptr);
    for (int i = 0; i < 2; ++i) {
        ovMemory::UniquePtr<Effect> effect;
        if (i == 0)
            effect = TextureCopyEffect::create(nullptr);
        else
            effect = ToneMappingEffect::create(nullptr);
        ASSERT_NE(System::getInstanceIfExisting(), nullptr);
        RecordingLogger log;
        System::getInstance()->getLogManager()->setReceiver(&log);
        EXPECT_FALSE(effect->load()); // the singleton is not initialised
        EXPECT_EQ(log.messages.size(), 1u);
        effect.reset();
        System::kill();
    }
}

// The base of tests of effects: a library system on the shared graphics system of each language.
#pragma once

#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovMemory/Borrowed.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/ProgramTrackersHolder.h>
#include <ovVeldris/effects/EffectManager.h>
#include <support/PictureCompare.h>
#include <support/PictureTest.h>

/// Gives a test an initialised ovVeldris::System whose log it records. The system is shared: a test that
/// shuts one down makes its own with initializeOwn().
class EffectFixture : public PictureTest {
protected:
    void useLanguage(ovGraphics::SHADER_LANGUAGE language) override {
        if (_system)
            _system->getLogManager()->setReceiver(nullptr);
        PictureTest::useLanguage(language);
        _system = &getHeadless().getDependent<ovVeldris::System>([&] {
            auto* system = new ovVeldris::System;
            ovVeldris::Configuration configuration;
            configuration.graphicsSystem = &getGraphics();
            EXPECT_TRUE(system->initialize(configuration));
            return system;
        });
        _system->getLogManager()->setReceiver(&_log);
    }

    void TearDown() override {
        _system->getLogManager()->setReceiver(nullptr);
        PictureTest::TearDown();
    }

    ovVeldris::System* getSystem() { return _system; }
    RecordingLogger& getLog() { return _log; }
    const ovVeldris::ProgramTrackersHolder& getTrackers() {
        return *_system->getGraphicsEngine()->getProgramTrackersHolder();
    }

    /// Initialises a system with a graphics system of its own, both logging to getLog().
    bool initializeOwn(ovVeldris::System& system) {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration = HeadlessSystem::makeConfiguration(getLanguage(), &_log);
        if (system.getLogManager()) // a system that was shut down has none any more
            system.getLogManager()->setReceiver(&_log);
        return system.initialize(configuration);
    }

    /// What holds for the sampler that a loaded effect binds to unit 0 where none is set. @param filter its
    /// number
    template <typename Effect>
    void expectDefaultSampler(Effect& effect, ovGraphics::Sampler* sampler, int filter) {
        ASSERT_NE(sampler, nullptr);
        EXPECT_EQ(effect.getShader()->getSampler(0, 0), sampler);
        sampler->setFilter(ovGraphics::FILTER::ANISOTROPIC); // put right by the next load
        sampler->setBorderColor(1.0f, 1.0f, 1.0f, 1.0f);
        ASSERT_TRUE(effect.load());
        const ovGraphics::device::SamplerDesc& desc = sampler->getDesc();
        EXPECT_EQ(int(desc.filter), filter);
        EXPECT_EQ(int(desc.addressU), 3);
        EXPECT_EQ(int(desc.addressV), 3);
        EXPECT_EQ(desc.borderColor, (std::array{0.0f, 0.0f, 0.0f, 0.0f}));
        EXPECT_EQ(desc.minLod, 0.0f);
        EXPECT_EQ(desc.maxLod, 0.0f);
        EXPECT_TRUE(sampler->getHidden());
        EXPECT_FALSE(sampler->isUnloaded());
    }

    /// That source texture and sampler of a new effect reach unit 0 while it is loaded, and only then.
    /// @param getDefaultSampler the sampler that stands in for none, which loading makes
    template <typename Effect, typename GetSampler>
    void expectSourcesAreBoundAtOnce(Effect& effect, const GetSampler& getDefaultSampler) {
        const auto texture = makeTexture(FloatPicture(1, 1));
        const auto sampler = ovGraphics::Sampler::create(&getGraphics());
        effect.setSourceTexture(texture.get());
        effect.setSourceSampler(sampler.get());
        EXPECT_EQ(effect.getShader(), nullptr);
        EXPECT_EQ(effect.getSourceTexture(), texture.get());
        EXPECT_EQ(effect.getSourceSampler(), sampler.get());
        ASSERT_TRUE(effect.load());
        EXPECT_EQ(effect.getShader()->getTexture(0, 0), texture.get());
        EXPECT_EQ(effect.getShader()->getSampler(0, 0), sampler.get());

        const auto other = makeTexture(FloatPicture(1, 1));
        effect.setSourceTexture(other.get());
        effect.setSourceSampler(nullptr);
        EXPECT_EQ(effect.getShader()->getTexture(0, 0), other.get());
        EXPECT_EQ(effect.getShader()->getSampler(0, 0), getDefaultSampler());
        effect.setSourceTexture(nullptr);
        EXPECT_EQ(effect.getShader()->getTexture(0, 0), nullptr);

        effect.unload();
        effect.setSourceTexture(texture.get());
        effect.setSourceSampler(sampler.get());
        EXPECT_EQ(effect.getShader()->getTexture(0, 0), nullptr);
        EXPECT_EQ(effect.getShader()->getSampler(0, 0), nullptr);
    }

private:
    ovVeldris::System* _system = nullptr;
    RecordingLogger _log;
};

/// What an effect logs when it cannot load; what is "program" or "shader".
inline RecordingLogger::Message loadFailure(const ovMemory::String& kind, const ovMemory::String& className,
                                            const ovMemory::String& what, const ovMemory::String& name) {
    return {"Could not load the " + kind + " effect " + what + " for '" + name +
                "'. Effect will be unusable as-is, this needs to be addressed within the effect creation.",
            className};
}

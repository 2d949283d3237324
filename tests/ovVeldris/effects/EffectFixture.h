// The base of tests of effects: a library system on the shared graphics system of each language.
#pragma once

#include <ovGraphics/resources/Borrowed.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/System.h>
#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/effects/ProgramTrackersHolder.h>
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

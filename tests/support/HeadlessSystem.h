// Graphics systems without a window, shared by the tests of a process.
#pragma once

#include <memory>
#include <ovGraphics/System.h>
#include <support/RecordingLogger.h>

/// A graphics system on the software rasteriser with debug output and a logger. One per shader language,
/// opened when first asked for, closed after the last test.
class HeadlessSystem {
public:
    /// The system of a language, open also when a test has shut it down. Fails the test when it cannot be
    /// opened.
    static HeadlessSystem& get(ovGraphics::SHADER_LANGUAGE language);

    /// What the systems are opened with, for tests that need one of their own.
    static ovGraphics::Configuration makeConfiguration(ovGraphics::SHADER_LANGUAGE language,
                                                       ovLog::Logger* logger);

    explicit HeadlessSystem(ovGraphics::SHADER_LANGUAGE language);
    ~HeadlessSystem();

    ovGraphics::System& getSystem() { return _system; }
    RecordingLogger& getLogger() { return _logger; }

    /// Opens the system if it is not.
    bool open();
    /// Fails the test for each error that the driver has reported since the last call, and forgets the log.
    void checkDriverErrors();

    /// An object of a layer above that is made once for this system and destroyed before it.
    template <typename T, typename Make>
    T& getDependent(const Make& make) {
        if (!_dependent)
            _dependent = std::shared_ptr<T>(make());
        return *static_cast<T*>(_dependent.get());
    }

private:
    ovGraphics::SHADER_LANGUAGE _language;
    RecordingLogger _logger;
    ovGraphics::System _system;
    std::shared_ptr<void> _dependent;
};

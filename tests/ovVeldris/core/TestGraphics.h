// Graphics systems for tests of who owns and starts them.
#pragma once

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovVeldris/Configuration.h>
#include <support/HeadlessSystem.h>

/// A graphics system of a host, which tells whether it was deleted.
class HostGraphics : public ovGraphics::System {
public:
    explicit HostGraphics(bool& deleted)
        : _deleted(deleted) {
        _deleted = false;
    }
    ~HostGraphics() override { _deleted = true; }

private:
    bool& _deleted;
};

/// Settings that open a headless device.
inline ovVeldris::Configuration makeWorkingConfiguration(ovLog::Logger* logger,
                                                         ovGraphics::System* graphicsSystem = nullptr) {
    ovVeldris::Configuration configuration;
    configuration.graphicsSystem = graphicsSystem;
    configuration.graphicsConfiguration =
        HeadlessSystem::makeConfiguration(ovGraphics::SHADER_LANGUAGE::GLSL, logger);
    return configuration;
}

/// Settings that no device fits.
inline ovVeldris::Configuration makeFailingConfiguration(ovLog::Logger* logger,
                                                         ovGraphics::System* graphicsSystem = nullptr) {
    ovVeldris::Configuration configuration = makeWorkingConfiguration(logger, graphicsSystem);
    configuration.graphicsConfiguration.software = false;
    configuration.graphicsConfiguration.device = 1000000;
    return configuration;
}

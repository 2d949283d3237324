// What the library is started with.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/Configuration.h>

namespace ovGraphics {
class System;
}

namespace ovVeldris {

/// Settings of System::initialize.
struct Configuration {
    /// A graphics system of the host to use, initialised or not. Not owned: it is shut down with the
    /// library's system but never deleted, and must outlive that system. Null: one is created and owned.
    /// Ignored by the System singleton, which uses the singleton of ovGraphics::System.
    ovGraphics::System* graphicsSystem = nullptr;
    /// What the graphics system is initialised with, unless the host did that already.
    ovGraphics::Configuration graphicsConfiguration;
};

} // namespace ovVeldris

// What a graphics system is started with.
#pragma once

#include <optional>
#include <ovGraphics/formats/Enums.h>
#include <ovMemory/Memory.h>

namespace ovLog {
class Logger;
}

namespace ovGraphics {

/// A window to open. Without one the system is headless.
struct WindowConfiguration {
    unsigned int width = 1280; ///< pixels
    unsigned int height = 720; ///< pixels
    ovMemory::String title = "OrvaneVeldris";
};

/// Settings of System::initialize.
struct Configuration {
    /// The branch of the dual-dialect shader text that is compiled. Both draw the same pictures.
    SHADER_LANGUAGE language = SHADER_LANGUAGE::GLSL;
    /// Draw with the software rasteriser even when there is a GPU.
    bool software = false;
    /// Which headless device to take, as listed by System::listDevices(); -1 takes hardware before software.
    int device = -1;
    /// Folder in which compiled programs are kept between processes, created when missing; empty keeps none.
    ovMemory::String cacheFolder;
    /// Receives one line per failure; not owned, may be null, and outlives the system.
    ovLog::Logger* logger = nullptr;
    /// Ask the driver to report misuse; its errors go to the logger.
    bool debugOutput = false;
    std::optional<WindowConfiguration> window;
};

} // namespace ovGraphics

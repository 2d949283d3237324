// What every object of one OpenGL device shares.
#pragma once

#include <ovGraphics/device/Device.h>
#include <ovGraphics/device/GlContextInternal.h>
#include <ovGraphics/device/GlPipelineInternal.h>

namespace ovGraphics::device {

struct GlCore {
    ovMemory::UniquePtr<GlContext> context;
    DeviceInfo info;
    DeviceStatistics statistics;
    ovMemory::Buffer<ovMemory::String> errors; ///< not yet taken; the oldest are kept
    GlPipeline pipeline{*this};
    uint64_t buffersMade = 0;

    void makeCurrent() { context->makeCurrent(); }

    /// Keeps an error for takeDebugErrors(): a caller's mistake, or the driver's complaint.
    void report(ovMemory::String error);
};

/// Forgets errors that OpenGL has flagged, so that the next one belongs to the calls that follow.
void glDiscardErrors();

/// The name of an error code of glGetError().
const char* glErrorName(GLenum code);

} // namespace ovGraphics::device

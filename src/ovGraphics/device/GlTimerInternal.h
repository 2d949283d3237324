// Measuring the time that the device takes.
#pragma once

#include <ovGraphics/device/Device.h>

namespace ovGraphics::device {

struct GlCore;

/// Time stamps of the device's own clock on hardware. A software rasteriser stamps the submission only, so
/// there the wall clock is read with the device idle before and after.
ovMemory::UniquePtr<GpuTimer> createGlTimer(GlCore& core);

} // namespace ovGraphics::device

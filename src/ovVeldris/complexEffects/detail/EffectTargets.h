// What complex effects draw into, and read it with.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/formats/Enums.h>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Sampler;
class System;
class Texture;
class Viewport;
} // namespace ovGraphics

namespace ovVeldris {

/// Size and format of a target. New: what an effect without a source draws into.
struct TargetShape {
    unsigned int width = 1;
    unsigned int height = 1;
    ovGraphics::FORMAT format = ovGraphics::FORMAT::R8G8B8A8_UINT;
    bool gammaCorrected = false;

    bool operator==(const TargetShape&) const = default;
};

/// The shape of a source, or that of no source for null. A source that is gamma corrected makes a target that
/// is, where its format has an sRGB sibling.
OV_API TargetShape shapeOf(const ovGraphics::Texture* source);

/// A quarter of the sides, rounded down, but 1 at least: textures of no size cannot be loaded.
OV_API TargetShape quarterOf(TargetShape shape);

/// Makes a texture of that name unless there is one of this graphics system, and names it.
OV_API void createTarget(ovMemory::UniquePtr<ovGraphics::Texture>& target, ovGraphics::System& graphics,
                         ovMemory::StringView name);

/// Gives a texture this shape and loads it as a target of one mip. One that has the shape already is left as
/// it is. @return false after one log line of the graphics system when it cannot be drawn to
OV_API bool prepareTarget(ovGraphics::Texture& target, const TargetShape& shape);

/// A loaded, hidden sampler that clamps and keeps to the first mip; null when it cannot be loaded.
OV_API ovMemory::UniquePtr<ovGraphics::Sampler>
makeClampingSampler(ovGraphics::System& graphics, ovMemory::StringView name, ovGraphics::FILTER filter);

/// A loaded viewport; null when it cannot be loaded.
OV_API ovMemory::UniquePtr<ovGraphics::Viewport> makeViewport(ovGraphics::System& graphics,
                                                              ovMemory::StringView name);

} // namespace ovVeldris

// Frames of tools, drawn once between the frames of the application.
#pragma once

#include <ovCommon/Api.h>

namespace ovGraphics {
class Compositor;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

/// Draws a compositor once, now, with a context of its own that ends with the call. The active render camera,
/// render context and viewport of the graphics system are afterwards what they were.
/// @param backBuffer what blocks without a target draw into
/// @return false after one log line of the graphics system when it cannot draw
OV_API bool drawOneShotFrame(ovGraphics::Compositor& compositor, ovGraphics::Texture& backBuffer);

} // namespace ovVeldris

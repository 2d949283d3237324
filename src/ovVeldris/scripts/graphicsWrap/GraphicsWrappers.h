// The graphics library in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds every type and enumeration of the graphics library, in the order in which they are declared.
void updateGraphics(ovScripts::Environment* environment);

} // namespace ovGraphicsWrap

// Whether a tool of environments made its output.
#pragma once

#include <ovGraphics/resources/Texture.h>

namespace ovVeldris {

/// Calls a tool, and looks whether it loaded its output; what went wrong is in the log then.
template <typename Draw>
bool loadsOutput(const ovGraphics::Texture& output, const Draw& draw) {
    const unsigned int loads = output.getLoadCount();
    draw();
    return output.getLoadCount() != loads && !output.isUnloaded();
}

} // namespace ovVeldris

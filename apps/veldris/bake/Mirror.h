// Environments seen in a mirror.
#pragma once

#include <veldris/bake/EnvironmentInput.h>

namespace veldris {

/// Swaps +z and -z: panoramas are turned left to right. Who looks along +x in a left-handed space has +z on
/// the left, where panoramas have it on the right, so that unmirrored ones show letters the wrong way round.
void mirror(EnvironmentInput& input);

} // namespace veldris

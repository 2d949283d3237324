// Weathered stones of the demo's own making.
#pragma once

#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Mesh;
class System;
class Texture;
} // namespace ovGraphics

namespace veldris {

/// A rough block with round edges within a cube of side 2, narrower towards its top. @param kind of a family
/// of blocks, no two alike @return loaded; null after one log line when the device refuses
ovMemory::UniquePtr<ovGraphics::Mesh> makeStone(ovGraphics::System& graphics, unsigned int kind);

/// Its colours: grey stone with lichen, darker in its hollows and at its foot. @param side texels
ovMemory::UniquePtr<ovGraphics::Texture> paintStone(ovGraphics::System& graphics, unsigned int kind,
                                                    unsigned int side);

} // namespace veldris

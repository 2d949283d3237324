// Drawing the six faces of a cube texture with one camera each.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Camera;
class CompositorNode;
class Shader;
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

constexpr unsigned int CUBE_FACE_COUNT = 6;

/// How a camera looks at a face; a zero up vector means the camera's own, (0, 1, 0).
struct CubeFaceView {
    ovMemory::String cameraName;
    ovMaths::Vector direction;
    ovMaths::Vector up;
};

/// In the order of the slices: +X, -X, +Y, -Y, +Z, -Z.
using CubeFaceViews = std::array<CubeFaceView, CUBE_FACE_COUNT>;

using CubeFaceCameras = std::array<ovMemory::UniquePtr<ovGraphics::Camera>, CUBE_FACE_COUNT>;

/// Hidden cameras at the origin that see one face each, 90 degrees both ways.
OV_API CubeFaceCameras makeCubeFaceCameras(ovGraphics::System* graphicsSystem, const CubeFaceViews& views);

/// Appends an operations block for each face: it draws the shader over the whole face of that mip with the
/// face's camera. Cameras, shader and cube must live until the node has been drawn.
OV_API void appendCubeFaces(ovGraphics::CompositorNode& node, ovGraphics::Texture& cube, unsigned int mip,
                            const CubeFaceCameras& cameras, ovGraphics::Shader& shader);

} // namespace ovVeldris

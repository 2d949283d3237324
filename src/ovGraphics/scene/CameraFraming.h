// Cameras that see all of something.
#pragma once

#include <ovGraphics/scene/BoundingBox.h>
#include <ovMemory/Result.h>

namespace ovGraphics {

class Camera;

/// How a box stands in a picture.
struct BoxFraming {
    float aspect = 1.0f; ///< of the picture, width over height
    float verticalFov =
        0.6f;             ///< radians, in (0, pi); the default is that of a lens of 60 mm: little distortion
    float filled = 0.94f; ///< share of the picture that the box spans along one side; the rest is margin
    float zoom = 1.0f;    ///< how many times closer the camera stands than that needs
};

/// Places a perspective camera so that all of a box is in view and as large as it can be. Each corner of the
/// box asks for a distance on its own, and the largest wins. Near and far plane are those of fitPlanes().
///
/// @param box an empty one is a point at the origin; of a point the camera stands a millimetre away
/// @param direction looked along, of any length but 0; up is (0, 1, 0), as of Camera::lookAt()
/// @return a failure for a direction of length 0 or not finite, a framing out of range, and sizes and
///         distances beyond what cameras hold (some 1e38 metres)
OV_API ovMemory::Result frameBox(Camera& camera, const BoundingBox& box, const ovMaths::Vector& direction,
                                 const BoxFraming& framing = {});

/// Gives a camera, where it stands, the perspective of a framing with the planes that a box needs: the near
/// plane as far away as the box allows, because it decides how precise depth is, and no nearer than a
/// hundredth of the way to the box's far end.
/// @return false after one log line when a value is out of range (Camera::setPerspective())
OV_API bool fitPlanes(Camera& camera, const BoundingBox& box, const BoxFraming& framing = {});

} // namespace ovGraphics

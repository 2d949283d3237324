// Where a scene is seen from.
#pragma once

#include <optional>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Camera;
}
namespace ovVeldris {
class Model;
}

namespace veldris {

/// A point of view as the user gives it.
struct CameraChoice {
    enum class KIND {
        ORBIT, ///< around the model, far enough to see all of it
        PLACE, ///< from a position to a target
        FILE   ///< the model's own camera
    };
    KIND kind = KIND::ORBIT;
    float azimuth = 30.0f;    ///< degrees; 0 looks at the model's front, growing to its left
    float elevation = 15.0f;  ///< degrees above the horizon
    float zoom = 1.0f;        ///< 2 makes the model twice as large
    ovMaths::Vector position; ///< in the library's space
    ovMaths::Vector target;
};

/// A point or a direction of a model's file in the library's space. Files are right-handed, +y up, fronts
/// towards +z (glTF 2.0, 3.4); the library is left-handed, its z runs the other way.
ovMaths::Vector fromFileSpace(const ovMaths::Vector& vector);

/// Reads `AZIMUTH,ELEVATION[,ZOOM]`, `X,Y,Z,TARGET-X,TARGET-Y,TARGET-Z` in the coordinates of the model's
/// file, or `file`.
/// @return nothing and one line in error when the text is none of these
std::optional<CameraChoice> parseCamera(ovMemory::StringView text, ovMemory::String& error);

/// Turns a camera as chosen. @param box of what is to be seen @param aspect of the picture, width over height
/// @return false with one line in error when the model has no camera that it should have
bool placeCamera(const CameraChoice& choice, const ovGraphics::BoundingBox& box,
                 const ovVeldris::Model* model, float aspect, ovGraphics::Camera& camera,
                 ovMemory::String& error);

/// Numbers separated by commas; nothing when the text is anything else or one is not finite.
std::optional<ovMemory::Buffer<float>> parseNumbers(ovMemory::StringView text);

} // namespace veldris

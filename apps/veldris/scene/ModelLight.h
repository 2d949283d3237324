// The light that models have when nobody says otherwise.
#pragma once

#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>

namespace ovVeldris {
class Model;
class PbsMaterial;
} // namespace ovVeldris

namespace veldris {

/// A light's direction that shows shapes well to the default camera: from above, from the left, and from a
/// little behind the eye. The shadow falls to the right, where it is seen.
inline constexpr ovMaths::Vector DEFAULT_LIGHT_DIRECTION{0.45f, -0.75f, 0.5f};
inline constexpr ovMaths::Vector DEFAULT_LIGHT_COLOR{3.0f, 3.0f, 3.0f};
/// From all around, where there is no environment.
inline constexpr ovMaths::Vector DEFAULT_AMBIENT_COLOR{0.35f, 0.35f, 0.35f};

/// Lights the materials of a model from where its file has a light, else from the default direction. The
/// file's intensity is a matter of exposure and is left out; its hue counts.
void giveModelLight(const ovVeldris::Model& model);

/// The materials of a model in its order.
ovMemory::Buffer<ovVeldris::PbsMaterial*> materialsOf(const ovVeldris::Model& model);

} // namespace veldris

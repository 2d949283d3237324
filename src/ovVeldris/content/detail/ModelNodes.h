// The nodes of a model.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>

namespace ovGraphics {
class Node;
class System;
} // namespace ovGraphics

namespace ovVeldris::detail {

/// A tree of nodes. Its nodes own no other: destroying one makes those below it roots.
struct ModelNodes {
    ovMemory::UniquePtr<ovGraphics::Node> root;                     ///< where the scene is, "model root"
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Node>> ofFile; ///< by index of the file; null for those
                                                                    ///< that the scene does not reach
};

/// Makes nodes with the names, the places and the parents of a file's; its roots hang below one more, which
/// moves them all.
OV_API ModelNodes makeNodes(ovGraphics::System& graphics, const ovGraphics::GltfScene& scene);

} // namespace ovVeldris::detail

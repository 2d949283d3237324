// Skins of a glTF file, in their rest pose.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/gltf/detail/GltfData.h>
#include <ovGraphics/gltf/detail/GltfGeometry.h>
#include <ovGraphics/gltf/detail/GltfNodes.h>
#include <ovMaths/Matrix.h>

namespace ovGraphics::detail {

/// What moves the vertices of a skinned mesh.
struct GltfSkin {
    /// Of each joint: from the mesh, as it is modelled, to the scene, in the space of the file.
    ovMemory::Buffer<ovMaths::Matrix> joints;

    /// Whether a joint mirrors what it moves.
    OV_API bool mirrors() const;
};

/// Reads a skin and puts its joints where their nodes are. @return false after an error
bool readGltfSkin(const GltfJson& root, std::size_t index, const GltfData& data, GltfReport& report,
                  const ovMemory::Buffer<GltfNodeSource>& nodes, GltfSkin& skin);

/// Which joints move a vertex, and how much.
struct GltfSkinWeights {
    ovMemory::Buffer<ovMaths::Vector> joints;  ///< four indices
    ovMemory::Buffer<ovMaths::Vector> weights; ///< of the four
};

/// Moves vertices by the weighted mean of their joints' matrices. Weights of one vertex, which are to sum up
/// to 1, are scaled to; a vertex without any stays.
/// @param sets of four joints each, all as long as the geometry
/// @param user whose error it is when a joint is not there
/// @return false after an error
OV_API bool poseGltfGeometry(const GltfSkin& skin, const ovMemory::Buffer<GltfSkinWeights>& sets,
                             const GltfObject& user, GltfGeometry& geometry);

} // namespace ovGraphics::detail

// Nodes, cameras, lights and scenes of a glTF file.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/gltf/detail/GltfJson.h>
#include <ovMaths/Matrix.h>

namespace ovGraphics::detail {

/// What a node has beside its record.
struct GltfNodeSource {
    int skin = -1;
    int light = -1;
    ovMaths::Matrix world; ///< to the scene, in the space of the file
};

/// Fills the cameras of a scene. @return false after report.fail()
bool readGltfCameras(const GltfJson& root, GltfReport& report, GltfScene& scene);

/// Fills the nodes of a scene, whose cameras are there, and its roots. Nodes keep the mesh index of the file.
/// @param sources of each node @return false after report.fail(): a node with two parents or below itself
bool readGltfNodes(const GltfJson& root, GltfReport& report, GltfScene& scene,
                   ovMemory::Buffer<GltfNodeSource>& sources);

/// The nodes that the roots of a scene reach, each before its children, in the order of the file.
ovMemory::Buffer<unsigned int> listDrawnGltfNodes(const GltfScene& scene);

/// Finds the directional light of a scene, and warns of others. @return false after report.fail()
bool readGltfLight(const GltfJson& root, GltfReport& report, GltfScene& scene,
                   const ovMemory::Buffer<GltfNodeSource>& sources);

} // namespace ovGraphics::detail

// Reading glTF 2.0 files.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovGraphics {

/// How a glTF file is read.
struct GltfDecodeOptions {
    /// The folder that outside buffers and images of a text file are looked for in, absolute or relative to
    /// the process' current folder. Empty: none are read.
    ///
    /// A file reaches only what lies in this folder or below: addresses with a scheme, from the root or with
    /// ".." in them are refused. (Symbolic links are followed: the folder's owner put them there.)
    ovMemory::String folder = {};
    /// Reorders triangles and vertices of triangle lists for the device's caches and drops doubles
    /// (optimizeMesh).
    bool optimizeMeshes = true;
    /// The most bytes of buffers, vertices, indices and images that are made altogether, those that are freed
    /// in between included; checked before they are allocated. Small files can ask for a lot: many primitives
    /// may share one array. The default is enough for some twenty million vertices.
    std::size_t maxBytes = std::size_t(1) << 32;
};

/// A file's content, or why there is none.
/// What is read differently from what the file wants is in the scene's warnings. The place of a file is its
/// path.
struct GltfDecodeResult : ovMemory::Result {
    ovMemory::UniquePtr<GltfScene> scene; ///< null on failure

    explicit operator bool() const { return scene != nullptr; }
};

/// Reads glTF 2.0: binary (.glb) and text (.gltf), buffers and images inside, as data URIs or in other files.
///
/// Errors, each of which gives no scene: a file that is cut short or whose parts contradict each other
/// (indices, offsets and counts out of range, missing buffers, nodes in a circle or with two parents), an
/// extension that the file requires and that is not known (compression by Draco or meshopt, Basis textures),
/// more than options.maxBytes. What merely looks different is a warning in the scene: missing images,
/// animation, morphing, vertex colours, lights other than one directional, material extensions.
///
/// Objects have no state: several threads may share one. Nothing throws; whatever the bytes are, reading
/// ends.
class OV_API GltfEncoder {
public:
    /// Whether the bytes begin as a binary file of version 2 does, or are JSON text that names an "asset".
    /// Says nothing about the rest.
    bool canDecode(ovMemory::BufferView<const unsigned char> bytes) const;

    /// Reads a file that is held in memory.
    GltfDecodeResult decode(ovMemory::BufferView<const unsigned char> bytes,
                            const GltfDecodeOptions& options = {}) const;

    /// Reads a file. Outside files are looked for in its folder, unless options.folder names another. The
    /// error names the path.
    GltfDecodeResult decodeFile(ovMemory::StringView path, const GltfDecodeOptions& options = {}) const;
};

} // namespace ovGraphics

// What a glTF file holds, as plain records in the conventions of this library.
#pragma once

#include <cstdint>
#include <optional>
#include <ovCommon/Api.h>
#include <ovGraphics/formats/Enums.h>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovGraphics/scene/VertexComposition.h>
#include <ovImages/Encoder.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Quaternion.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

// Everything is in the library's space already: left-handed, +x right, +y up, cameras and lights look along
// +z, metres, front faces clockwise on the target. Files are right-handed; their z is negated.
//
// Indices refer to the buffers of GltfScene and are in range, or -1 for none. Names are never empty and
// unique among the objects of one kind: an unnamed third mesh is "mesh 2", a second "Wheel" is "Wheel (2)".

/// Vertices of one material, ready for a mesh.
struct GltfPrimitive {
    /// In this order: "POSITION" R32G32B32_FLOAT; "NORMAL" R32G32B32_FLOAT, unit length (always for
    /// triangles: those of a file without normals are flat); "TEXCOORD" R32G32_FLOAT if the file has texture
    /// coordinates; "TANGENT" and "BINORMAL", each R32G32B32_FLOAT and unit length, if there are texture
    /// coordinates and the material has a normal map or the file has tangents.
    ///
    /// The texture coordinates are those that the material's textures are read with, with the texture
    /// transform of the file applied. BINORMAL points where the normal map's green grows, so upwards in the
    /// picture; it has the handedness of the file, so nothing must be rebuilt from normal and tangent.
    VertexComposition composition;
    /// vertexCount times composition.getStride() bytes. No number among them is NaN or infinite.
    ovMemory::Buffer<unsigned char> vertices;
    unsigned int vertexCount = 0;
    /// Below vertexCount; of triangles the front is where they run clockwise. Empty when points or lines are
    /// drawn in the order of the vertices.
    ovMemory::Buffer<std::uint32_t> indices;
    /// POINTLIST, LINELIST, LINESTRIP or TRIANGLELIST: strips and fans of triangles are made lists, loops of
    /// lines strips.
    PRIMITIVE_TOPOLOGY topology = PRIMITIVE_TOPOLOGY::TRIANGLELIST;
    int material = -1;       ///< -1: the default values of GltfMaterial
    BoundingBox boundingBox; ///< of the vertices, in the space of the mesh
};

struct GltfMesh {
    ovMemory::String name;
    ovMemory::Buffer<GltfPrimitive> primitives; ///< may be empty, if none could be used
};

/// How a picture is read. Several textures may share one image.
struct GltfTexture {
    ovMemory::String name;
    int image = -1; ///< -1: missing, after a warning
    FILTER filter = FILTER::MIN_MAG_MIP_LINEAR;
    bool mipmapped = true; ///< false: mip 0 only, whatever the filter says of mips
    TEXTURE_ADDRESS addressU = TEXTURE_ADDRESS::WRAP;
    TEXTURE_ADDRESS addressV = TEXTURE_ADDRESS::WRAP;
    bool usedAsColor = false; ///< a material reads it as a colour: sRGB, decoded when sampled
    bool usedAsData = false;  ///< a material reads it as numbers: linear. Both may be true, or neither
};

/// A picture as the file holds it.
struct GltfImage {
    ovMemory::String name;
    /// The encoded picture; empty if it is missing or in a format that is not known, after a warning.
    ovMemory::Buffer<unsigned char> bytes;

    bool isMissing() const { return bytes.empty(); }

    /// Decodes the picture. The file decides nothing about colour: profiles and gamma of the picture are
    /// ignored, as is an orientation in its metadata, for texture coordinates refer to the pixels as stored.
    ///
    /// @param encoding what the image's numbers mean: SRGB for textures used as colour, LINEAR for data
    /// @return no image and an error that names this one if it is missing or cannot be decoded; draw a
    /// stand-in
    OV_API ovImages::DecodeResult decode(ovImages::COLOR_ENCODING encoding,
                                         std::size_t maxBytes = ovImages::MAX_IMAGE_BYTES) const;
};

/// Which set of values describes a material.
enum class GLTF_WORKFLOW : unsigned int { METALLIC_ROUGHNESS = 0, SPECULAR_GLOSSINESS = 1 };

inline constexpr ovMemory::EnumEntry<GLTF_WORKFLOW> GLTF_WORKFLOW_ENTRIES[] = {
    {GLTF_WORKFLOW::METALLIC_ROUGHNESS, "METALLIC_ROUGHNESS"},
    {GLTF_WORKFLOW::SPECULAR_GLOSSINESS, "SPECULAR_GLOSSINESS"},
};
constexpr ovMemory::EnumTable<GLTF_WORKFLOW> enumTable(GLTF_WORKFLOW) {
    return {"GLTF_WORKFLOW", GLTF_WORKFLOW_ENTRIES};
}

/// What the alpha of a material means.
enum class GLTF_ALPHA_MODE : unsigned int {
    OPAQUE = 0, ///< nothing
    MASK = 1,   ///< drawn where alpha is at least the cutoff
    BLEND = 2   ///< coverage, laid over what is behind
};

inline constexpr ovMemory::EnumEntry<GLTF_ALPHA_MODE> GLTF_ALPHA_MODE_ENTRIES[] = {
    {GLTF_ALPHA_MODE::OPAQUE, "OPAQUE"},
    {GLTF_ALPHA_MODE::MASK, "MASK"},
    {GLTF_ALPHA_MODE::BLEND, "BLEND"},
};
constexpr ovMemory::EnumTable<GLTF_ALPHA_MODE> enumTable(GLTF_ALPHA_MODE) {
    return {"GLTF_ALPHA_MODE", GLTF_ALPHA_MODE_ENTRIES};
}

/// A surface. Colours are linear. Textures are indices of GltfScene::textures, -1 for none; a colour or
/// number beside a texture multiplies what is read.
struct GltfMaterial {
    ovMemory::String name;
    GLTF_WORKFLOW workflow = GLTF_WORKFLOW::METALLIC_ROUGHNESS;

    /// Base colour and alpha; of SPECULAR_GLOSSINESS the diffuse colour and alpha. Each 0 to 1.
    ovMaths::Vector baseColor{1.0f, 1.0f, 1.0f, 1.0f};
    int baseColorTexture = -1; ///< colour, alpha in A

    float metallic = 1.0f;             ///< 0 to 1; METALLIC_ROUGHNESS only, as the next two
    float roughness = 1.0f;            ///< 0 to 1, perceptual
    int metallicRoughnessTexture = -1; ///< data: roughness in G, metallic in B

    ovMaths::Vector specular{1.0f, 1.0f, 1.0f}; ///< each 0 to 1; SPECULAR_GLOSSINESS only, as the next two
    float glossiness = 1.0f;                    ///< 0 to 1; 1 - perceptual roughness
    int specularGlossinessTexture = -1;         ///< colour; glossiness in A, which is never sRGB

    int normalTexture = -1;    ///< data: the normal in tangent space, x, y, z as 0 to 1; green grows upwards
    float normalScale = 1.0f;  ///< multiplies x and y of the normal read
    int occlusionTexture = -1; ///< data: what ambient light is multiplied by, in R
    float occlusionStrength = 1.0f; ///< 0 (none) to 1
    ovMaths::Vector emissive;       ///< emitted colour, at least 0, the file's strength included
    int emissiveTexture = -1;       ///< colour

    GLTF_ALPHA_MODE alphaMode = GLTF_ALPHA_MODE::OPAQUE;
    float alphaCutoff = 0.5f; ///< at least 0; MASK only
    bool doubleSided = false; ///< false: back faces are not drawn
    bool unlit = false;       ///< the base colour is shown as it is, without light
};

struct GltfCamera {
    ovMemory::String name;
    bool orthographic = false;
    float verticalFov = 1.0471976f; ///< full angle in radians, in (0, pi); perspective only
    float aspect = 0.0f;            ///< width over height; 0: that of the target
    float height = 1.0f;            ///< metres; orthographic only
    float nearPlane = 0.1f;         ///< metres, above 0
    /// Metres, above nearPlane. A file may leave it out and mean an endless view; then it is 10,000 times
    /// nearPlane, but at least 1000.
    float farPlane = 1000.0f;
};

struct GltfNode {
    ovMemory::String name;
    int parent = -1;
    ovMemory::Buffer<unsigned int> children;

    /// Local position, orientation and scale. A matrix of the file that is sheared is not their product; a
    /// warning says so, and the matrices are right nevertheless.
    ovMaths::Vector position;
    ovMaths::Quaternion orientation;
    ovMaths::Vector scale{1.0f, 1.0f, 1.0f};
    ovMaths::Matrix local; ///< from the node's space to its parent's
    ovMaths::Matrix world; ///< from the node's space to the scene's, all parents included

    int mesh = -1;
    int camera = -1; ///< looks along the node's +z with +y up
};

/// Light from one direction, as of the sun.
struct GltfDirectionalLight {
    ovMemory::String name;
    unsigned int node = 0;
    ovMaths::Vector direction{0.0f, 0.0f, 1.0f}; ///< where the light travels to, unit length, in the scene
    ovMaths::Vector color; ///< linear colour times intensity (illuminance across the beam, lux), at least 0
};

/// A whole file. Meshes with a skin stand in the skin's rest pose: their vertices are in the space of the
/// scene, and they hang on a root node of their own instead of the file's. Meshes of the file keep their
/// indices, as do nodes; a mesh that several skins move has copies at the end, and new nodes are there too.
struct GltfScene {
    ovMemory::Buffer<GltfMesh> meshes;
    ovMemory::Buffer<GltfMaterial> materials;
    ovMemory::Buffer<GltfTexture> textures;
    ovMemory::Buffer<GltfImage> images;
    ovMemory::Buffer<GltfNode> nodes;
    ovMemory::Buffer<GltfCamera> cameras;
    /// The first one that the default scene reaches.
    std::optional<GltfDirectionalLight> light;

    /// Nodes that the file's default scene begins at; only what they reach is to be drawn. A file without
    /// scenes gives all nodes that have no parent.
    ovMemory::Buffer<unsigned int> roots;
    /// Of all meshes that the roots reach.
    BoundingBox boundingBox;

    /// One line each: what is not as the file wants it, on which object, and what was done instead. At most
    /// 100, and one more that counts the rest.
    ovMemory::Buffer<ovMemory::String> warnings;
};

} // namespace ovGraphics

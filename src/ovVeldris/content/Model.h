// A model as it is drawn: meshes, nodes, textures and materials on one system.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Mesh;
class Node;
class RenderQueue;
class Sampler;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

class PbsMaterial;
class System;

/// A mesh of a model at a place, and the material that it is drawn with.
struct ModelPart {
    ovGraphics::Mesh* mesh = nullptr;
    ovGraphics::Node* node = nullptr;
    unsigned int material = 0; ///< of Model::getMaterials()
};

/// A material of a model, owned by the material manager, which may rename and destroy it.
struct ModelMaterial {
    ovMemory::String name;                    ///< that it was made under
    ovMemory::Borrowed<PbsMaterial> material; ///< null when it was destroyed
    ovGraphics::GLTF_ALPHA_MODE alphaMode = ovGraphics::GLTF_ALPHA_MODE::OPAQUE;
};

/// What ModelLoader makes of a file. Owns meshes and nodes. Textures, samplers and materials are in the
/// managers, where declarations find them by name, and leave them with the model, under whatever names they
/// have then. The texels of its textures are on the device alone; who unloads one loads the model anew.
///
/// Its nodes hang as those of the file: parents, names, and one root above all, which moves the whole model.
/// Materials read textures with the samplers of the file, whoever loads them.
class OV_API Model final : public ovMemory::Borrowable {
public:
    explicit Model(System* system);
    ~Model();
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    const ovMemory::Buffer<ModelPart>& getParts() const { return _parts; }
    const ovMemory::Buffer<ModelMaterial>& getMaterials() const { return _materials; }
    const ovMemory::Buffer<ovGraphics::GltfCamera>& getCameras() const { return _cameras; }
    /// The node above all others, at the origin of the file's scene. Owned by the model.
    ovGraphics::Node* getRoot() const { return _root.get(); }
    /// The node of a name of the file, where nodes have names of their own (GltfScene.h); null for none, and
    /// for one that the scene does not reach.
    ovGraphics::Node* findNode(ovMemory::StringView name) const;
    /// The node that wears a camera of getCameras(); null when none does.
    ovGraphics::Node* getCameraNode(unsigned int camera) const;
    /// The file's light, if it has one. Its direction is that of the file, wherever the nodes are turned.
    const std::optional<ovGraphics::GltfDirectionalLight>& getLight() const { return _light; }
    /// Of all parts, in the world, where their nodes are now.
    ovGraphics::BoundingBox getBoundingBox() const;
    /// What the file asks for and the model does not do, a line each.
    const ovMemory::Buffer<ovMemory::String>& getWarnings() const { return _warnings; }

    /// The sampler that the file gives a texture; null for textures that are not of this model.
    ovGraphics::Sampler* getSampler(const ovGraphics::Texture* texture) const;

    /// Loads every material with its present settings. @return false after log lines when one cannot be
    /// loaded or was destroyed; the others are
    bool loadMaterials();

    /// Adds an entity for every part to the queue for its material: blended ones to `blended`, all others to
    /// `solid`. Materials must be loaded; parts whose material was destroyed are left out.
    void addTo(ovGraphics::RenderQueue& solid, ovGraphics::RenderQueue& blended) const;

private:
    friend class ModelBuilder;

    struct SampledTexture {
        ovMemory::Borrowed<ovGraphics::Texture> texture;
        ovMemory::Borrowed<ovGraphics::Sampler> sampler;
    };

    ovMemory::Borrowed<System> _system;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Mesh>> _meshes;
    ovMemory::UniquePtr<ovGraphics::Node> _root;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Node>> _nodes; ///< by index of the file; may be null
    ovMemory::Buffer<ModelPart> _parts;
    ovMemory::Buffer<ModelMaterial> _materials;
    ovMemory::Buffer<SampledTexture> _textures;
    ovMemory::Buffer<ovGraphics::GltfCamera> _cameras;
    ovMemory::Buffer<ovGraphics::Node*> _cameraNodes;
    std::optional<ovGraphics::GltfDirectionalLight> _light;
    ovMemory::Buffer<ovMemory::String> _warnings;
};

} // namespace ovVeldris

// A scene of many entities for benchmarks: 100 materials of one program, each with its own constants and
// texture, and 10 meshes.
#pragma once

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

namespace ovBenchmarks {

inline constexpr std::size_t MATERIALS = 100;
inline constexpr std::size_t MESHES = 10;
inline constexpr unsigned int SIDE = 64; ///< of the target, pixels

/// Where an entity stands on a square grid, 100 wide, that holds so many.
ovMaths::Vector placeOf(std::size_t entity, std::size_t entities, float time);
/// How it is turned: each about another axis.
ovMaths::Quaternion turnOf(std::size_t entity, float time);

/// A box whose height depends on the mesh: 8 corners, 12 triangles.
struct Box {
    explicit Box(std::size_t mesh);
    ovMemory::Buffer<ovMaths::Vector> values; ///< position and normal of each corner
    ovMemory::Buffer<uint32_t> indices;
};

/// The scene in the library. Neighbours share their material, and groups of them their mesh.
class LibraryScene {
public:
    /// @param entities a multiple of 1000 @param device null: the software rasteriser
    explicit LibraryScene(std::size_t entities,
                          ovMemory::UniquePtr<ovGraphics::device::Device> device = nullptr);
    ~LibraryScene();

    bool isReady() const { return _ready; }
    void draw() { _system.frame(_context.get()); }
    void invalidate();
    void moveAll(float time);
    void turnAll(float time);
    /// Adds an entity like the first one at its node.
    ovGraphics::Entity* add();

    ovGraphics::System& getSystem() { return _system; }
    ovGraphics::Camera& getCamera() { return *_camera; }
    ovGraphics::RenderQueue& getQueue() { return *_queue; }
    /// A queue of one entity that no pass draws.
    ovGraphics::RenderQueue& getOtherQueue() { return *_otherQueue; }
    ovGraphics::Node& getNode(std::size_t entity) { return *_nodes[entity]; }
    ovMemory::Buffer<unsigned char> read() { return *_target->readBack(); }

private:
    bool _build();
    bool _buildProgram();
    bool _buildMeshes();
    bool _buildMaterials();
    void _buildEntities();
    bool _buildPasses();

    std::size_t _entities;
    ovGraphics::System _system;
    ovMemory::UniquePtr<ovGraphics::Program> _program;
    ovMemory::UniquePtr<ovGraphics::Sampler> _sampler;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Mesh>> _meshes;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> _textures;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Shader>> _shaders;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Node>> _nodes;
    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _queue;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _otherQueue;
    ovMemory::UniquePtr<ovGraphics::Texture> _target;
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovGraphics::RenderContext> _context;
    bool _ready = false;
};

} // namespace ovBenchmarks

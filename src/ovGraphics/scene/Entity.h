// What is drawn: a mesh at a place with a shader.
#pragma once

#include <array>
#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>

namespace ovGraphics {

class Mesh;
class Node;
class RenderQueue;
class Shader;

/// A mesh drawn at a node's place. Everything is borrowed; an entity that lacks its mesh or shader is not
/// drawn. Owned by its render queue.
class OV_API Entity : public ovMemory::Borrowable {
public:
    /// Shaders that an entity may have, of which a scene pass chooses one: 0 for colours, others as the
    /// application likes (1 for depth alone, ...).
    static constexpr unsigned int VARIANT_COUNT = 4;

    /// Made by RenderQueue::addEntity.
    explicit Entity(RenderQueue* queue);
    Entity(const Entity&) = delete;
    Entity& operator=(const Entity&) = delete;

    void setMesh(Mesh* mesh);
    Mesh* getMesh() const;
    /// @param variant below VARIANT_COUNT; others are ignored
    void setShader(Shader* shader, unsigned int variant = 0);
    /// Null for a variant that is not there.
    Shader* getShader(unsigned int variant = 0) const;
    /// Null draws at the origin of the world.
    void setNode(Node* node);
    Node* getNode() const;

    /// Default true.
    void setVisible(bool visible);
    bool getVisible() const { return _visible; }
    /// Draws back faces too, whatever the raster state of the pass says. Default false.
    void setDoubleSided(bool doubleSided);
    bool getDoubleSided() const { return _doubleSided; }

private:
    void _changed() const;

    RenderQueue* _queue;
    ovMemory::Borrowed<Mesh> _mesh;
    ovMemory::Borrowed<Node> _node;
    std::array<ovMemory::Borrowed<Shader>, VARIANT_COUNT> _shaders;
    bool _visible = true;
    bool _doubleSided = false;
};

} // namespace ovGraphics

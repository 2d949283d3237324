// What is drawn: a mesh at a place with a shader.
#pragma once

#include <array>
#include <cstdint>
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

    /// What happened since a draw list looked at an entity. A later value takes in the earlier ones.
    enum class CHANGE : unsigned char {
        NONE = 0,
        MOVED = 1,  ///< its node moved in the world, and neither turned nor changed its size
        TURNED = 2, ///< its node has another world matrix
        ANY = 3
    };

    /// Made by RenderQueue::addEntity.
    explicit Entity(RenderQueue* queue);
    ~Entity();
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
    Node* getNode() const { return _node; }

    /// Default true.
    void setVisible(bool visible);
    bool getVisible() const { return _visible; }
    /// Draws back faces too, whatever the raster state of the pass says. Default false.
    void setDoubleSided(bool doubleSided);
    bool getDoubleSided() const { return _doubleSided; }

private:
    friend class DrawList;
    friend class Node;
    friend class RenderQueue;

    void _changed(CHANGE change = CHANGE::ANY) const;
    void _leaveNode();

    // What a move looks at lies together.
    RenderQueue* _queue;
    uint64_t _order = 0; ///< rises with the order of addition to the queue
    uint32_t _place = 0; ///< in the tables of the queue and its draw lists
    bool _visible = true;
    bool _doubleSided = false;
    Node* _node = nullptr;
    Entity* _nextAtNode = nullptr; ///< in the node's list of the entities that stand there
    ovMemory::Borrowed<Mesh> _mesh;
    std::array<ovMemory::Borrowed<Shader>, VARIANT_COUNT> _shaders;
    Entity* _previousAtNode = nullptr;
};

} // namespace ovGraphics

// The entities that a scene pass draws.
#pragma once

#include <ovGraphics/resources/Resource.h>
#include <ovGraphics/scene/Entity.h>

namespace ovGraphics {

class DrawList;

/// Owns entities. The order in which they were added decides between equals when they are drawn.
class OV_API RenderQueue : public Resource {
public:
    static ovMemory::UniquePtr<RenderQueue> create(System* system);
    explicit RenderQueue(System* system);
    ~RenderQueue() override;

    /// A new entity at the end. Owned by the queue and never moved. @param shader of variant 0
    Entity* addEntity(Mesh* mesh, Shader* shader, Node* node);
    /// Destroys an entity. @return false when it is not of this queue
    bool eraseEntity(const Entity* entity);
    void clearQueue();
    unsigned int getEntityCount() const { return static_cast<unsigned int>(_entities.size()); }
    /// The entity at a position, or null.
    Entity* getEntity(unsigned int index) const;

    /// Destroys the entities too.
    void reset() override;

private:
    friend class DrawList;
    friend class Entity;
    friend class Node;

    void _noteChange(uint32_t place, Entity::CHANGE change) const;
    void _freePlace(const Entity& entity);

    ovMemory::Buffer<ovMemory::UniquePtr<Entity>> _entities;
    ovMemory::Buffer<Entity*> _places; ///< each entity keeps its own; null where one was erased
    ovMemory::Buffer<uint32_t> _freePlaces;
    uint64_t _entitiesMade = 0;
    ovMemory::Buffer<DrawList*> _lists; ///< are told which entities change
};

} // namespace ovGraphics

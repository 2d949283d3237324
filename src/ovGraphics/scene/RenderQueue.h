// The entities that a scene pass draws.
#pragma once

#include <ovGraphics/resources/Resource.h>
#include <ovGraphics/scene/Entity.h>

namespace ovGraphics {

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
    ovMemory::Buffer<ovMemory::UniquePtr<Entity>> _entities;
};

} // namespace ovGraphics

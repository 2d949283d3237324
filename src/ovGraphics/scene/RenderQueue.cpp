#include <ovGraphics/scene/RenderQueue.h>

#include <algorithm>
#include <ovGraphics/System.h>

namespace ovGraphics {

ovMemory::UniquePtr<RenderQueue> RenderQueue::create(System* system) {
    return std::make_unique<RenderQueue>(system);
}

RenderQueue::RenderQueue(System* system)
    : Resource(system, "render queue") {}

RenderQueue::~RenderQueue() {
    _noteSceneChange();
}

Entity* RenderQueue::addEntity(Mesh* mesh, Shader* shader, Node* node) {
    Entity* entity = _entities.emplace_back(std::make_unique<Entity>(this)).get();
    entity->setMesh(mesh);
    entity->setShader(shader);
    entity->setNode(node);
    return entity;
}

bool RenderQueue::eraseEntity(const Entity* entity) {
    const auto place = std::find_if(_entities.begin(), _entities.end(),
                                    [&](const auto& own) { return own.get() == entity; });
    if (place == _entities.end())
        return false;
    _entities.erase(place);
    _noteSceneChange();
    return true;
}

void RenderQueue::clearQueue() {
    _entities.clear();
    _noteSceneChange();
}

Entity* RenderQueue::getEntity(unsigned int index) const {
    return index < _entities.size() ? _entities[index].get() : nullptr;
}

void RenderQueue::reset() {
    Resource::reset();
    clearQueue();
}

} // namespace ovGraphics

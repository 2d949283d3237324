#include <ovGraphics/scene/RenderQueue.h>

#include <algorithm>
#include <ovGraphics/scene/DrawList.h>

namespace ovGraphics {

ovMemory::UniquePtr<RenderQueue> RenderQueue::create(System* system) {
    return std::make_unique<RenderQueue>(system);
}

RenderQueue::RenderQueue(System* system)
    : Resource(system, "render queue") {}

RenderQueue::~RenderQueue() {
    for (DrawList* list : _lists)
        // A pass may outlive its queue, and its list would go on reading the entities.
        list->forgetQueue();
}

Entity* RenderQueue::addEntity(Mesh* mesh, Shader* shader, Node* node) {
    Entity* entity = _entities.emplace_back(std::make_unique<Entity>(this)).get();
    entity->_order = ++_entitiesMade;
    // Places are used again, so that the lists that are indexed by them do not grow with every entity ever
    // made.
    if (_freePlaces.empty()) {
        entity->_place = static_cast<uint32_t>(_places.size());
        _places.push_back(entity);
    } else {
        entity->_place = _freePlaces.back();
        _freePlaces.pop_back();
        _places[entity->_place] = entity;
    }
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
    _freePlace(*entity);
    _entities.erase(place);
    return true;
}

void RenderQueue::clearQueue() {
    for (const auto& entity : _entities)
        _freePlace(*entity);
    _entities.clear();
}

void RenderQueue::_freePlace(const Entity& entity) {
    _noteChange(entity._place, Entity::CHANGE::ANY);
    _places[entity._place] = nullptr;
    _freePlaces.push_back(entity._place);
}

void RenderQueue::_noteChange(uint32_t place, Entity::CHANGE change) const {
    for (DrawList* list : _lists)
        list->noteChange(place, change);
}

Entity* RenderQueue::getEntity(unsigned int index) const {
    return index < _entities.size() ? _entities[index].get() : nullptr;
}

void RenderQueue::reset() {
    Resource::reset();
    clearQueue();
}

} // namespace ovGraphics

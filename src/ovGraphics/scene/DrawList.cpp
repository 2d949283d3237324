#include <ovGraphics/scene/DrawList.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Frustum.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <utility>

namespace ovGraphics {

namespace {

using SIGHT = DrawGroup::SIGHT;

constexpr std::size_t SLOT_SIZE = sizeof(ovMaths::Matrix);
static_assert(SLOT_SIZE == ShaderInstanceMemorySlot::ROW_COUNT * 4 * sizeof(float), "what programs read");
constexpr unsigned int SIDE_PLANES = 4; // of the frustum, without near and far
/// A draw call costs about as much as this many indices, so that instances out of view with fewer are drawn
/// along rather than left out by another call.
constexpr unsigned int INDICES_OF_A_DRAW = 1024;
/// Room that no group uses any more is given back when it is more than what is in use and this.
constexpr std::size_t SPARE_ROOM = 1024; // slots

ovMemory::BufferView<const unsigned char> bytesOf(const ovMemory::Buffer<ovMaths::Matrix>& matrices) {
    return {reinterpret_cast<const unsigned char*>(matrices.data()), matrices.size() * SLOT_SIZE};
}

uint32_t gapLengthOf(const Mesh* mesh) {
    return mesh ? INDICES_OF_A_DRAW / std::max(1u, mesh->getDrawCount()) : 0;
}

uint64_t programIdOf(const Shader& shader) {
    return shader.getProgram() ? shader.getProgram()->getId() : 0;
}

bool isNewer(const Mesh& mesh, uint64_t revision) {
    return mesh.getSceneRevision() > revision;
}

bool isNewer(const Shader& shader, uint64_t revision) {
    const Program* program = shader.getProgram();
    return shader.getSceneRevision() > revision || (program && program->getSceneRevision() > revision);
}

} // namespace

DrawList::DrawList() = default;

DrawList::~DrawList() {
    _leave();
}

bool DrawList::update(const System& system, RenderQueue& queue, const Camera* camera,
                      const DrawListSettings& settings, ovMemory::String& error) {
    const uint64_t cameraRevision = camera ? camera->getRevision() : 0;
    const bool isOtherScene =
        _queue != &queue || _settings.variant != settings.variant || _settings.order != settings.order;
    const bool viewIsNew = isOtherScene || _cameraRevision != cameraRevision || _settings != settings;
    _settings = settings;
    _cameraRevision = cameraRevision;
    // Another queue, variant or order gives other groups, so that nothing of the list can stay.
    if (isOtherScene)
        _follow(queue);
    else if (_sceneRevision != system.getSceneRevision())
        _recheckGroups();
    _sceneRevision = system.getSceneRevision();

    _refreshChanged();
    _updateView(camera, viewIsNew);
    return _upload(system, error);
}

bool DrawList::_upload(const System& system, ovMemory::String& error) {
    device::GpuBuffer* instances =
        _ring.update(*system.getDevice(), bytesOf(_instances), system.getFrameNumber(), error);
    if (!instances && !_instances.empty())
        return false;
    if (instances != _batchInstances) {
        for (Batch& batch : _batches)
            batch.draw.instances = instances;
    }
    _batchInstances = instances;
    return true;
}

void DrawList::noteChange(uint32_t place, Entity::CHANGE change) {
    if (place >= _places.size())
        _places.resize(place + 1);
    // Noted once, however often it changes between two frames: a loop that moves nodes costs no more.
    Entity::CHANGE& noted = _places[place].change;
    if (noted == Entity::CHANGE::NONE)
        _changed.push_back(place);
    noted = std::max(noted, change);
}

void DrawList::forgetQueue() {
    _queue = nullptr;
}

void DrawList::_follow(RenderQueue& queue) {
    if (_queue != &queue) {
        _leave();
        _queue = &queue;
        queue._lists.push_back(this);
    }
    _places.clear();
    _changed.clear();
    _groups.clear();
    _touched.clear();
    _batches.clear();
    _instances.clear();
    _roomInUse = 0;
    for (const auto& entity : queue._entities)
        noteChange(entity->_place, Entity::CHANGE::ANY);
}

void DrawList::_leave() {
    if (_queue)
        std::erase(_queue->_lists, this);
    _queue = nullptr;
}

void DrawList::_touch(DrawGroup& group) {
    if (!group.isTouched)
        _touched.push_back(&group);
    group.isTouched = true;
}

// Meshes and shaders that changed take all their entities along. There are far fewer groups than entities, so
// that this looks at every group and needs no lists of who uses what.
void DrawList::_recheckGroups() {
    for (auto& [key, group] : _groups) {
        const Shader* shader = group.getShader();
        const Mesh* mesh = group.getMesh();
        group.isOutdated = !shader || !mesh || programIdOf(*shader) != key.program;
        if (!group.isOutdated && !isNewer(*shader, _sceneRevision) && !isNewer(*mesh, _sceneRevision))
            continue;
        if (!group.isOutdated)
            _describe(group);
        _touch(group);
        for (uint32_t index = 0; index < group.getSize(); ++index) {
            if (group.getEntity(index) != DrawGroup::GAP)
                noteChange(group.getEntity(index), Entity::CHANGE::ANY);
        }
    }
}

void DrawList::_describe(DrawGroup& group) {
    const Shader& shader = *group.getShader();
    // The number of slots may be another now, and with it the place of every instance.
    _freeRoom(group);
    group.values.clear();
    for (const auto& slot : shader.getInstanceMemorySlots())
        group.values.push_back(slot->getValue());
    group.slots = static_cast<uint32_t>(group.values.size());
    group.meshCenter = group.getMesh()->getBoundingBox().getCenter();
    group.meshCenter.w = 1.0f;
    group.isDrawable = shader.getProgram() && !group.getMesh()->isUnloaded();
    group.geometry = nullptr;
}

// Entities and nodes of a large scene lie further away than the cache. Those that come next are fetched while
// others are computed; without that, a scene that moves as a whole takes a sixth longer.
void DrawList::_refreshChanged() {
    constexpr std::size_t NODE_AHEAD = 6;
    constexpr std::size_t ENTITY_AHEAD = 12;
    const auto entityAt = [this](std::size_t i) {
        return i < _changed.size() ? _queue->_places[_changed[i]] : nullptr;
    };
    for (std::size_t i = 0; i < _changed.size(); ++i) {
        if (const Entity* entity = entityAt(i + ENTITY_AHEAD)) {
            __builtin_prefetch(entity);
            __builtin_prefetch(&entity->_shaders);
        }
        const Entity* next = entityAt(i + NODE_AHEAD);
        if (next && next->_node)
            next->_node->prefetch();
        _refresh(_changed[i]);
    }
    _changed.clear();
}

void DrawList::_refresh(uint32_t id) {
    Place& place = _places[id];
    const Entity::CHANGE change = std::exchange(place.change, Entity::CHANGE::NONE);
    const Entity* entity = _queue->_places[id];
    if (place.group && change == Entity::CHANGE::MOVED)
        return _move(place, *entity->getNode());
    if (place.group && change == Entity::CHANGE::ANY && !(entity && _stays(place, *entity)))
        _takeOut(place);
    if (!entity || !entity->getVisible()) {
        if (place.group) {
            place.group->hide(place.index);
            _touch(*place.group);
        }
        return;
    }
    const Node* node = entity->getNode();
    const bool mirrored = node && node->isMirrored();
    if (place.group && place.group->getKey().mirrored != mirrored)
        _takeOut(place);
    if (!place.group)
        _putIn(place, id, *entity, mirrored);
    if (!place.group)
        return;
    DrawGroup& group = *place.group;
    static const ovMaths::Matrix AT_ORIGIN; // where entities without a node stand
    group.show(place.index, group.getMesh()->getBoundingBox(), node ? node->getWorldMatrix() : AT_ORIGIN);
    // A group that is not placed is written as a whole later, when it is known how much room it needs.
    if (group.isPlaced && place.index < group.capacity)
        _writeInstance(group, group.firstInstance + place.index, node);
    _touch(group);
}

// Most of what moves does only that. Its group stays, and of the box and the instance's data only what holds
// the position is another.
void DrawList::_move(const Place& place, const Node& node) {
    DrawGroup& group = *place.group;
    if (group.getSight(place.index) == SIGHT::HIDDEN)
        return; // written when it is shown
    const ovMaths::Matrix& world = node.getWorldMatrix();
    if (!group.move(place.index, world * group.meshCenter))
        group.show(place.index, group.getMesh()->getBoundingBox(), world);
    if (group.isPlaced && place.index < group.capacity)
        _moveInstance(group, group.firstInstance + place.index, world);
    _touch(group);
}

bool DrawList::_stays(const Place& place, const Entity& entity) const {
    const DrawGroup& group = *place.group;
    return !group.isOutdated && group.getOrder(place.index) == entity._order &&
           group.getShader() == entity.getShader(_settings.variant) && group.getMesh() == entity.getMesh() &&
           group.getKey().doubleSided == entity.getDoubleSided();
}

void DrawList::_takeOut(Place& place) {
    _touch(*place.group);
    place.group->erase(place.index);
    place.group = nullptr;
}

void DrawList::_putIn(Place& place, uint32_t id, const Entity& entity, bool mirrored) {
    Shader* shader = entity.getShader(_settings.variant);
    Mesh* mesh = entity.getMesh();
    const System* system = _queue->getSystem();
    if (!shader || !mesh || shader->getSystem() != system || mesh->getSystem() != system)
        return;
    const DrawKey key{programIdOf(*shader), shader->getId(), mesh->getId(), entity.getDoubleSided(),
                      mirrored};
    const auto [entry, isNew] = _groups.try_emplace(key, key, shader, mesh);
    DrawGroup& group = entry->second;
    if (isNew)
        _describe(group);
    _groupsAreNew = _groupsAreNew || isNew;
    place.group = &group;
    place.index = group.insert(id, entity._order);
    _renumber(group, place.index + 1);
}

void DrawList::_renumber(DrawGroup& group, uint32_t first) {
    for (uint32_t index = first; index < group.getSize(); ++index) {
        if (group.getEntity(index) != DrawGroup::GAP)
            _places[group.getEntity(index)].index = index;
    }
}

void DrawList::_updateView(const Camera* camera, bool viewIsNew) {
    if (viewIsNew) {
        for (auto& [key, group] : _groups)
            _touch(group);
    }
    if (_touched.empty())
        return;
    const bool culling = camera && _settings.culling;
    const Frustum frustum = culling ? camera->getFrustum() : Frustum();
    for (DrawGroup* group : _touched) {
        if (group->closeGaps())
            _renumber(*group, 0);
        group->updateSights(culling ? &frustum : nullptr,
                            _settings.depthClip ? Frustum::PLANE_COUNT : SIDE_PLANES, viewIsNew,
                            gapLengthOf(group->getMesh()));
    }
    if (_settings.order == SCENE_ORDER::BY_STATE)
        _layOutGroups();
    else
        _layOutByDepth(camera);
    _dropEmptyGroups();
    _touched.clear();
    _groupsAreNew = false;
}

void DrawList::_layOutGroups() {
    bool batchesAreOthers = _groupsAreNew;
    if (_roomInUse == 0)
        _placeAll(); // in the order of drawing
    for (DrawGroup* group : _touched) {
        _place(*group);
        const std::size_t count = group->isDrawable ? group->getRuns().size() : 0;
        batchesAreOthers = batchesAreOthers || count != group->batchCount;
    }
    // Groups that grew or went leave room behind. It is closed at once and rarely, as that writes every
    // instance anew.
    if (_instances.size() > 2 * _roomInUse + SPARE_ROOM) {
        _placeAll();
        batchesAreOthers = true;
    }
    if (batchesAreOthers) {
        _rebuildBatches();
        return;
    }
    for (DrawGroup* group : _touched)
        _patchBatches(*group);
}

void DrawList::_place(DrawGroup& group) {
    if (!group.isDrawable || group.isEmpty() || (group.isPlaced && group.getSize() <= group.capacity))
        return;
    if (group.getSize() > group.capacity) {
        // Room to spare for those that grew before: most groups never do.
        const uint32_t spare = group.capacity > 0 ? group.getSize() / 4 : 0;
        _freeRoom(group);
        group.capacity = group.getSize() + spare;
        if (group.slots > 0) {
            // Begins at a whole number of instances, so that the device finds it by counting them.
            group.firstInstance = static_cast<uint32_t>((_instances.size() + group.slots - 1) / group.slots);
            _instances.resize((std::size_t{group.firstInstance} + group.capacity) * group.slots);
            _roomInUse += std::size_t{group.capacity} * group.slots;
        }
    }
    group.isPlaced = true;
    for (uint32_t index = 0; index < group.getSize(); ++index) {
        if (group.getSight(index) != SIGHT::HIDDEN)
            _writeInstance(group, group.firstInstance + index, _nodeOf(group.getEntity(index)));
    }
}

void DrawList::_placeAll() {
    _instances.clear();
    for (auto& [key, group] : _groups) {
        _freeRoom(group);
        _place(group);
    }
}

void DrawList::_freeRoom(DrawGroup& group) {
    _roomInUse -= std::size_t{group.capacity} * group.slots;
    group.capacity = 0;
    group.isPlaced = false;
}

const Node* DrawList::_nodeOf(uint32_t place) const {
    return _queue->_places[place]->getNode();
}

void DrawList::_writeInstance(const DrawGroup& group, uint32_t instance, const Node* node) {
    if (group.slots == 0)
        return;
    const std::size_t begin = std::size_t{instance} * group.slots;
    ovMaths::Matrix* out = &_instances[begin];
    for (const INSTANCE_VALUE value : group.values) {
        if (!node)
            *out++ = ovMaths::Matrix();
        else if (value == INSTANCE_VALUE::WORLD_MATRIX)
            *out++ = node->getWorldMatrix();
        else
            node->computeWorldMatrixInvTranspose(*out++);
    }
    _ring.markChanged(begin * SLOT_SIZE, (begin + group.slots) * SLOT_SIZE);
}

void DrawList::_moveInstance(const DrawGroup& group, uint32_t instance, const ovMaths::Matrix& world) {
    const std::size_t begin = std::size_t{instance} * group.slots;
    const ovMaths::Vector position = world.getPositionComponent();
    for (std::size_t i = 0; i < group.slots; ++i) {
        if (group.values[i] == INSTANCE_VALUE::WORLD_MATRIX)
            _instances[begin + i].setPositionComponent(position);
        else
            Node::moveInvTranspose(_instances[begin + i], position);
    }
    _ring.markChanged(begin * SLOT_SIZE, (begin + group.slots) * SLOT_SIZE);
}

void DrawList::_rebuildBatches() {
    _batches.clear();
    for (auto& [key, group] : _groups) {
        group.firstBatch = _batches.size();
        group.batchCount = group.isDrawable ? group.getRuns().size() : 0;
        _batches.resize(group.firstBatch + group.batchCount);
        _patchBatches(group);
    }
}

void DrawList::_patchBatches(DrawGroup& group) {
    for (std::size_t i = 0; i < group.batchCount; ++i) {
        const DrawGroup::Run& run = group.getRuns()[i];
        _batches[group.firstBatch + i] = _batchOf(group, group.firstInstance + run.first, run.count);
    }
}

DrawList::Batch DrawList::_batchOf(DrawGroup& group, uint32_t firstInstance, uint32_t count) {
    Shader& shader = *group.getShader();
    Mesh& mesh = *group.getMesh();
    const LoadedProgram* program = shader.getLoadedProgram();
    if (program && !group.geometry)
        group.geometry = mesh.getGeometry(*program, shader.getInstanceMemorySlots());
    return {&shader,
            &mesh,
            group.geometry,
            group.getKey().doubleSided,
            group.getKey().mirrored,
            {mesh.getTopology(), mesh.getDrawCount(), _batchInstances,
             static_cast<unsigned int>(group.slots * SLOT_SIZE), firstInstance, count}};
}

void DrawList::_layOutByDepth(const Camera* camera) {
    // Everything anew: places follow the depths, and a camera that moves changes all of them.
    _sorted.clear();
    for (auto& [key, group] : _groups) {
        for (uint32_t index = 0; group.isDrawable && index < group.getSize(); ++index) {
            if (group.getSight(index) != SIGHT::IN_VIEW)
                continue;
            const float depth =
                camera ? camera->getDirection().dotProductVec3(group.getBoxes().getCenter(index)) : 0.0f;
            _sorted.push_back({depth, group.getOrder(index), &group, index});
        }
    }
    std::sort(_sorted.begin(), _sorted.end(), [](const Sorted& a, const Sorted& b) {
        // The order of adding decides between equals, so that blending gives the same picture every time.
        return a.depth != b.depth ? a.depth > b.depth : a.order < b.order;
    });
    _batches.clear();
    std::size_t used = 0; // slots
    for (auto first = _sorted.begin(); first != _sorted.end();) {
        DrawGroup& group = *first->group;
        const auto last =
            std::find_if(first, _sorted.end(), [&](const Sorted& own) { return own.group != &group; });
        const auto count = static_cast<uint32_t>(last - first);
        uint32_t instance = 0;
        if (group.slots > 0) {
            instance = static_cast<uint32_t>((used + group.slots - 1) / group.slots);
            used = (std::size_t{instance} + count) * group.slots;
            _instances.resize(std::max(_instances.size(), used));
        }
        _batches.push_back(_batchOf(group, instance, count));
        for (; first != last; ++first)
            _writeInstance(group, instance++, _nodeOf(group.getEntity(first->index)));
    }
}

void DrawList::_dropEmptyGroups() {
    for (DrawGroup* group : _touched) {
        group->isTouched = false;
        if (!group->isEmpty())
            continue;
        _freeRoom(*group);
        _groups.erase(group->getKey());
    }
}

} // namespace ovGraphics

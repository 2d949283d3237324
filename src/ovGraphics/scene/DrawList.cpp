#include <ovGraphics/scene/DrawList.h>

#include <algorithm>
#include <cstring>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Frustum.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <tuple>

namespace ovGraphics {

namespace {

constexpr unsigned int SLOT_SIZE = sizeof(ovMaths::Matrix::m);

const ovMaths::Matrix IDENTITY;

unsigned int strideOf(const Shader& shader) {
    return static_cast<unsigned int>(shader.getInstanceMemorySlots().size()) * SLOT_SIZE;
}

const ovMaths::Matrix& valueOf(const Node* node, INSTANCE_VALUE value) {
    if (!node)
        return IDENTITY;
    return value == INSTANCE_VALUE::WORLD_MATRIX ? node->getWorldMatrix()
                                                 : node->getWorldMatrixInvTranspose();
}

} // namespace

DrawList::DrawList() = default;
DrawList::~DrawList() = default;

bool DrawList::update(const System& system, const RenderQueue& queue, const Camera* camera,
                      const DrawListSettings& settings, ovMemory::String& error) {
    const bool sceneIsNew =
        _queueId != queue.getId() || _sceneRevision != system.getSceneRevision() || _settings != settings;
    const bool placesAreNew = sceneIsNew || _transformRevision != system.getTransformRevision();
    const ovMaths::Matrix worldToClip =
        camera ? camera->getProjectionMatrix() * camera->getViewMatrix() : ovMaths::Matrix();
    const bool viewIsNew = _hadCamera != (camera != nullptr) || _worldToClip != worldToClip;
    if (!placesAreNew && !viewIsNew && (_instanceBuffer || _instances.empty()))
        return true;
    _settings = settings;
    _queueId = queue.getId();
    _sceneRevision = system.getSceneRevision();
    _transformRevision = system.getTransformRevision();
    _hadCamera = camera != nullptr;
    _worldToClip = worldToClip;
    if (sceneIsNew)
        _collect(queue);
    if (placesAreNew)
        _place();
    _cull(camera);
    _batch();
    return _upload(*system.getDevice(), error);
}

void DrawList::unload() {
    _instanceBuffer.reset();
}

void DrawList::_collect(const RenderQueue& queue) {
    _items.clear();
    for (unsigned int i = 0; i < queue.getEntityCount(); ++i) {
        const Entity& entity = *queue.getEntity(i);
        Shader* shader = entity.getShader(_settings.variant);
        Mesh* mesh = entity.getMesh();
        const bool drawable = entity.getVisible() && shader && shader->getProgram() && mesh &&
                              !mesh->isUnloaded() && mesh->getSystem() == queue.getSystem() &&
                              shader->getSystem() == queue.getSystem();
        if (drawable)
            _items.push_back({.node = entity.getNode(),
                              .shader = shader,
                              .mesh = mesh,
                              .doubleSided = entity.getDoubleSided(),
                              .box = {}});
    }
    const auto keyOf = [](const Item& item) {
        return std::make_tuple(item.shader->getProgram()->getId(), item.shader->getId(), item.mesh->getId(),
                               item.doubleSided);
    };
    // Ids, not addresses, so that a scene is drawn in the same order every time.
    std::stable_sort(_items.begin(), _items.end(),
                     [&](const Item& a, const Item& b) { return keyOf(a) < keyOf(b); });
}

void DrawList::_place() {
    for (Item& item : _items) {
        const uint64_t revision = item.node ? item.node->getWorldRevision() : 1;
        if (item.worldRevision == revision)
            continue;
        item.worldRevision = revision;
        item.box = item.mesh->getBoundingBox();
        item.mirrored = false;
        if (item.node) {
            item.box = item.box.getTransformed(item.node->getWorldMatrix());
            item.mirrored = item.node->isMirrored();
        }
    }
}

void DrawList::_cull(const Camera* camera) {
    const Frustum frustum(_worldToClip);
    const bool culling = camera && _settings.culling;
    _visible.clear();
    for (const Item& item : _items) {
        if (!culling || item.box.isEmpty() || item.box.checkAgainst(frustum))
            _visible.push_back(&item);
    }
    if (!camera || _settings.order != SCENE_ORDER::BACK_TO_FRONT)
        return;
    const ovMaths::Vector direction = camera->getDirection();
    for (Item& item : _items)
        item.depth = direction.dotProductVec3(item.box.getCenter());
    std::stable_sort(_visible.begin(), _visible.end(),
                     [](const Item* a, const Item* b) { return a->depth > b->depth; });
}

void DrawList::_batch() {
    const auto joins = [](const Item& a, const Item& b) {
        return a.shader == b.shader && a.mesh == b.mesh && a.doubleSided == b.doubleSided &&
               a.mirrored == b.mirrored;
    };
    _batches.clear();
    _instances.clear();
    std::size_t begin = 0;
    while (begin < _visible.size()) {
        const Item& first = *_visible[begin];
        std::size_t end = begin + 1;
        while (end < _visible.size() && joins(first, *_visible[end]))
            ++end;
        Batch batch{first.shader,
                    first.mesh,
                    first.doubleSided,
                    first.mirrored,
                    strideOf(*first.shader),
                    0,
                    static_cast<unsigned int>(end - begin)};
        _addBatch(batch, &_visible[begin]);
        begin = end;
    }
}

void DrawList::_addBatch(Batch batch, const Item* const* items) {
    if (batch.instanceStride > 0) {
        // Begins at a whole number of strides, so that the device finds it by counting instances.
        const std::size_t stride = batch.instanceStride;
        const std::size_t first = (_instances.size() + stride - 1) / stride;
        batch.firstInstance = static_cast<unsigned int>(first);
        _instances.resize((first + batch.instanceCount) * stride);
        unsigned char* out = _instances.data() + first * stride;
        for (unsigned int i = 0; i < batch.instanceCount; ++i) {
            for (const auto& slot : batch.shader->getInstanceMemorySlots()) {
                std::memcpy(out, valueOf(items[i]->node, slot->getValue()).m, SLOT_SIZE);
                out += SLOT_SIZE;
            }
        }
    }
    _batches.push_back(batch);
}

bool DrawList::_upload(device::Device& device, ovMemory::String& error) {
    if (_instances.empty())
        return true;
    if (!_instanceBuffer || _instanceBuffer->getSize() < _instances.size()) {
        const std::size_t size = _instances.size() + _instances.size() / 2; // grows in few steps
        _instanceBuffer =
            device.createBuffer(static_cast<unsigned int>(size), device::BUFFER_USAGE::VERTICES, error);
        if (!_instanceBuffer)
            return false;
    }
    device.updateBuffer(*_instanceBuffer, 0, _instances);
    return true;
}

} // namespace ovGraphics

// What a scene pass draws: the entities of a queue in the order of drawing, those out of sight left out,
// equal ones together.
#pragma once

#include <map>
#include <ovGraphics/device/BufferRing.h>
#include <ovGraphics/scene/DrawGroup.h>
#include <ovGraphics/scene/Entity.h>
#include <ovMaths/Matrix.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

class Camera;
class Node;
class RenderQueue;
class System;

/// The order in which a scene pass draws. Equals keep the order in which they were added to the queue.
enum class SCENE_ORDER : unsigned int {
    BY_STATE = 0,     ///< by program, shader, mesh and winding: the fewest changes, the most instances
    BACK_TO_FRONT = 1 ///< by the depth of the boxes' centres, as blending wants; without a camera by addition
};

inline constexpr ovMemory::EnumEntry<SCENE_ORDER> SCENE_ORDER_ENTRIES[] = {
    {SCENE_ORDER::BY_STATE, "BY_STATE"},
    {SCENE_ORDER::BACK_TO_FRONT, "BACK_TO_FRONT"},
};
constexpr ovMemory::EnumTable<SCENE_ORDER> enumTable(SCENE_ORDER) {
    return {"SCENE_ORDER", SCENE_ORDER_ENTRIES};
}

/// What decides the content of a list.
struct DrawListSettings {
    unsigned int variant = 0; ///< of the entities' shaders
    SCENE_ORDER order = SCENE_ORDER::BY_STATE;
    bool culling = true;
    bool depthClip = true; ///< false: the near and the far plane cut nothing off
    bool operator==(const DrawListSettings&) const = default;
};

/// Draws of the entities of a queue, kept from frame to frame. The queue tells which entities changed, and
/// only those are looked at again; a camera that moved costs one comparison of the boxes, and no instance's
/// data.
///
/// BACK_TO_FRONT sorts and writes everything anew when something changed: it is meant for the few things that
/// blend.
class OV_API DrawList {
public:
    /// Equal meshes with equal shaders, drawn at once.
    struct Batch {
        Shader* shader = nullptr;
        Mesh* mesh = nullptr;
        device::GpuGeometry* geometry = nullptr; ///< null when the device or the program has none
        bool doubleSided = false;
        bool mirrored = false;
        device::GeometryDraw draw;
    };

    DrawList();
    ~DrawList();
    DrawList(const DrawList&) = delete;
    DrawList& operator=(const DrawList&) = delete;

    /// Brings the list up to date. Entities out of the camera's view may be in it between others that are
    /// within, where another draw call would cost more.
    /// @param camera null draws everything
    /// @return false with the reason in error when the device refuses the instances' data
    bool update(const System& system, RenderQueue& queue, const Camera* camera,
                const DrawListSettings& settings, ovMemory::String& error);

    const ovMemory::Buffer<Batch>& getBatches() const { return _batches; }
    /// The data of the instances; null when no shader asks for any.
    device::GpuBuffer* getInstances() const { return _ring.getCurrent(); }
    /// Frees what the device holds.
    void unload() { _ring.clear(); }

    // For the queue.
    /// An entity changed, came or went. @param place of the entity in the queue's tables
    void noteChange(uint32_t place, Entity::CHANGE change);
    /// The queue goes.
    void forgetQueue();

private:
    /// Where an entity is in the list.
    struct Place {
        DrawGroup* group = nullptr;
        uint32_t index = 0;
        Entity::CHANGE change = Entity::CHANGE::NONE;
    };
    /// An entity in view, to be sorted by depth.
    struct Sorted {
        float depth;
        uint64_t order;
        DrawGroup* group;
        uint32_t index;
    };

    void _follow(RenderQueue& queue);
    void _leave();
    void _recheckGroups();
    void _touch(DrawGroup& group);

    void _refreshChanged();
    void _refresh(uint32_t place);
    void _move(const Place& place, const Node& node);
    bool _stays(const Place& place, const Entity& entity) const;
    void _takeOut(Place& place);
    void _putIn(Place& place, uint32_t id, const Entity& entity, bool mirrored);
    void _renumber(DrawGroup& group, uint32_t first);
    void _describe(DrawGroup& group);

    void _updateView(const Camera* camera, bool viewIsNew);
    void _layOutGroups();
    void _place(DrawGroup& group);
    void _placeAll();
    void _layOutByDepth(const Camera* camera);
    void _freeRoom(DrawGroup& group);
    const Node* _nodeOf(uint32_t place) const;
    void _writeInstance(const DrawGroup& group, uint32_t instance, const Node* node);
    void _moveInstance(const DrawGroup& group, uint32_t instance, const ovMaths::Matrix& world);
    void _rebuildBatches();
    void _patchBatches(DrawGroup& group);
    void _dropEmptyGroups();
    Batch _batchOf(DrawGroup& group, uint32_t firstInstance, uint32_t count);
    bool _upload(const System& system, ovMemory::String& error);

    RenderQueue* _queue = nullptr;
    DrawListSettings _settings;
    uint64_t _sceneRevision = 0;
    uint64_t _cameraRevision = 0;
    ovMemory::Buffer<Place> _places; ///< by the entities' places in the queue
    ovMemory::Buffer<uint32_t> _changed;
    std::map<DrawKey, DrawGroup> _groups; ///< in the order of drawing by state
    ovMemory::Buffer<DrawGroup*> _touched;
    bool _groupsAreNew = false; ///< some came or went
    ovMemory::Buffer<Sorted> _sorted;
    ovMemory::Buffer<Batch> _batches;
    ovMemory::Buffer<ovMaths::Matrix> _instances; ///< a slot each
    std::size_t _roomInUse = 0;                   ///< slots of the instances that belong to groups
    device::GpuBuffer* _batchInstances = nullptr; ///< what the batches draw from
    device::BufferRing _ring{device::BUFFER_USAGE::VERTICES};
};

} // namespace ovGraphics

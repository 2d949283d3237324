// What a scene pass draws: the entities of a queue in the order of drawing, those out of sight left out,
// equal ones together.
#pragma once

#include <ovGraphics/scene/BoundingBox.h>
#include <ovMaths/Matrix.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

class Camera;
class Entity;
class Mesh;
class Node;
class RenderQueue;
class Shader;
class System;

namespace device {
class Device;
class GpuBuffer;
} // namespace device

/// The order in which a scene pass draws.
enum class SCENE_ORDER : unsigned int {
    BY_STATE = 0,     ///< by program, shader and mesh: the fewest changes, the most instances
    BACK_TO_FRONT = 1 ///< by the depth of the boxes' centres, as blending wants
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
    bool operator==(const DrawListSettings&) const = default;
};

/// Draws of the entities of a queue, kept from frame to frame: whatever did not change since the last update
/// is not looked at again.
class OV_API DrawList {
public:
    /// Equal meshes with equal shaders, drawn at once.
    struct Batch {
        Shader* shader = nullptr;
        Mesh* mesh = nullptr;
        bool doubleSided = false;
        bool mirrored = false;
        unsigned int instanceStride = 0; ///< bytes
        unsigned int firstInstance = 0;  ///< in strides from the start of the instances' data
        unsigned int instanceCount = 0;
    };

    DrawList();
    ~DrawList();

    /// Brings the list up to date. @param camera null draws everything, in the order of addition where depth
    /// would decide @return false with the reason in error when the device refuses the instances' data
    bool update(const System& system, const RenderQueue& queue, const Camera* camera,
                const DrawListSettings& settings, ovMemory::String& error);

    const ovMemory::Buffer<Batch>& getBatches() const { return _batches; }
    /// The data of the instances; null when no shader asks for any.
    device::GpuBuffer* getInstances() const { return _instanceBuffer.get(); }
    /// Frees what the device holds.
    void unload();

private:
    struct Item {
        const Node* node = nullptr;
        Shader* shader = nullptr;
        Mesh* mesh = nullptr;
        bool doubleSided = false;
        bool mirrored = false;
        uint64_t worldRevision = 0; ///< of the node, when box and mirrored were computed; 0: never
        BoundingBox box;            ///< in the world; empty: always drawn
        float depth = 0.0f;         ///< along the camera's direction
    };

    void _collect(const RenderQueue& queue);
    void _place();
    void _cull(const Camera* camera);
    void _batch();
    void _addBatch(Batch batch, const Item* const* items);
    bool _upload(device::Device& device, ovMemory::String& error);

    DrawListSettings _settings;
    uint64_t _queueId = 0;
    uint64_t _sceneRevision = 0;
    uint64_t _transformRevision = 0;
    bool _hadCamera = false;
    ovMaths::Matrix _worldToClip;
    ovMemory::Buffer<Item> _items;          ///< drawable entities, by state
    ovMemory::Buffer<const Item*> _visible; ///< in the order of drawing
    ovMemory::Buffer<Batch> _batches;
    ovMemory::Buffer<unsigned char> _instances;
    ovMemory::UniquePtr<device::GpuBuffer> _instanceBuffer;
};

} // namespace ovGraphics

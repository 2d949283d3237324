// The entities of a draw list that are drawn with equal state.
#pragma once

#include <compare>
#include <cstdint>
#include <ovGraphics/resources/ShaderInstanceMemorySlot.h>
#include <ovGraphics/scene/BoxTable.h>
#include <ovMemory/Borrowed.h>

namespace ovGraphics {

class Mesh;
class Shader;

namespace device {
class GpuGeometry;
}

/// What decides which entities are drawn at once, and in which order the groups are drawn. Ids, not
/// addresses, so that a scene is drawn in the same order every time.
struct DrawKey {
    uint64_t program = 0; ///< 0: none
    uint64_t shader = 0;
    uint64_t mesh = 0;
    bool doubleSided = false;
    bool mirrored = false;
    // clang-tidy 14 takes the 0 that the compiler compares with for a pointer.
    auto operator<=>(const DrawKey&) const = default; // NOLINT(modernize-use-nullptr)
};

/// Entities with equal state in the order of their addition. Each has an index, and with it its box and the
/// place of its instance's data; both stay while others change. An erased entity leaves a gap until gaps
/// prevail, so that nothing behind it moves.
class OV_API DrawGroup {
public:
    static constexpr uint32_t GAP = ~0u;

    /// Whether an entity is drawn.
    enum class SIGHT : unsigned char {
        HIDDEN = 0,      ///< must not be drawn: invisible, or a gap
        OUT_OF_VIEW = 1, ///< need not be drawn
        IN_VIEW = 2
    };
    /// Entities that one draw call draws.
    struct Run {
        uint32_t first = 0;
        uint32_t count = 0;
    };

    DrawGroup(const DrawKey& key, Shader* shader, Mesh* mesh);

    const DrawKey& getKey() const { return _key; }
    Shader* getShader() const;
    Mesh* getMesh() const;

    /// Entities and gaps.
    uint32_t getSize() const { return static_cast<uint32_t>(_entities.size()); }
    bool isEmpty() const { return _gaps == getSize(); }
    /// What insert() was given, or GAP.
    uint32_t getEntity(uint32_t index) const { return _entities[index]; }
    uint64_t getOrder(uint32_t index) const { return _orders[index]; }
    SIGHT getSight(uint32_t index) const { return _sights[index]; }
    const BoxTable& getBoxes() const { return _boxes; }

    /// Puts an entity where its order belongs, hidden. Entities behind it may move up by one; then isPlaced
    /// becomes false.
    /// @return its index
    uint32_t insert(uint32_t entity, uint64_t order);
    /// Leaves a gap.
    void erase(uint32_t index);
    /// Closes the gaps when they prevail. @return true when entities got other indices; isPlaced is then
    /// false
    bool closeGaps();

    /// Sets what is known of a visible entity, which keeps its sight until updateSights().
    /// @param box of its mesh @param transformation to the world
    void show(uint32_t index, const BoundingBox& box,
              const ovMaths::Matrix& transformation = ovMaths::Matrix());
    /// Moves the box of a visible entity, which keeps its size.
    /// @return false, changing nothing, for a box that cannot tell where it is, then or now
    bool move(uint32_t index, const ovMaths::Vector& center);
    void hide(uint32_t index);
    /// Looks at those that were shown since the last call, or at all, and forms the runs anew when something
    /// became another.
    /// @param frustum null: everything is in view @param gapLength so many out of view are drawn along when
    /// others follow, rather than with another call
    void updateSights(const Frustum* frustum, unsigned int planeCount, bool all, uint32_t gapLength);
    const ovMemory::Buffer<Run>& getRuns() const { return _runs; }

    // What the draw list keeps here.
    bool isDrawable = false;                 ///< mesh and shader are loaded
    bool isTouched = false;                  ///< since the last update
    bool isPlaced = false;                   ///< every shown entity has its instance's data at its index
    bool isOutdated = false;                 ///< the key is no longer that of the shader and the mesh
    ovMaths::Vector meshCenter;              ///< of the mesh's box, a point: w is 1
    ovMemory::Buffer<INSTANCE_VALUE> values; ///< of an instance, a matrix each
    uint32_t slots = 0;                      ///< their number
    uint32_t firstInstance = 0;              ///< counted from the start of the instances' data
    uint32_t capacity = 0;                   ///< instances that have room
    std::size_t firstBatch = 0;
    std::size_t batchCount = 0;
    device::GpuGeometry* geometry = nullptr;

private:
    void _noteShown(uint32_t index);
    void _formRuns(uint32_t gapLength);
    void _setSight(uint32_t index, SIGHT sight);

    DrawKey _key;
    ovMemory::Borrowed<Shader> _shader;
    ovMemory::Borrowed<Mesh> _mesh;
    ovMemory::Buffer<uint64_t> _orders;
    ovMemory::Buffer<uint32_t> _entities;
    ovMemory::Buffer<SIGHT> _sights;
    BoxTable _boxes;
    uint32_t _gaps = 0;
    uint32_t _shownBegin = GAP; ///< those shown since the last updateSights()
    uint32_t _shownEnd = 0;
    bool _runsAreStale = false;
    ovMemory::Buffer<Run> _runs;
};

} // namespace ovGraphics

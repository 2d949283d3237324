// What a piece of the data of an instance holds.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

/// What can be known of an instance.
enum class INSTANCE_VALUE : unsigned int {
    WORLD_MATRIX = 0,              ///< "INSTANCE_WORLD_MATRIX", four rows
    WORLD_MATRIX_INV_TRANSPOSE = 1 ///< "INSTANCE_WORLD_MATRIX_INV_TRANSPOSE", four rows
};

inline constexpr ovMemory::EnumEntry<INSTANCE_VALUE> INSTANCE_VALUE_ENTRIES[] = {
    {INSTANCE_VALUE::WORLD_MATRIX, "WORLD_MATRIX"},
    {INSTANCE_VALUE::WORLD_MATRIX_INV_TRANSPOSE, "WORLD_MATRIX_INV_TRANSPOSE"},
};
constexpr ovMemory::EnumTable<INSTANCE_VALUE> enumTable(INSTANCE_VALUE) {
    return {"INSTANCE_VALUE", INSTANCE_VALUE_ENTRIES};
}

/// One slot of a shader's instance data. Vertex texts read it as a matrix attribute of the name that belongs
/// to its value; its rows are the rows of the matrix. A new slot holds the world matrix.
class OV_API ShaderInstanceMemorySlot : public ovMemory::Borrowable {
public:
    static constexpr unsigned int VALUE_COUNT = 2;
    static constexpr unsigned int ROW_COUNT = 4; ///< registers of four floats that a slot fills

    /// Model to world.
    void setAsWorldMatrix() { _value = INSTANCE_VALUE::WORLD_MATRIX; }
    /// The transposed inverse of the world matrix, which turns normals: they take (normal, 0).
    void setAsWorldMatrixInvTranspose() { _value = INSTANCE_VALUE::WORLD_MATRIX_INV_TRANSPOSE; }
    INSTANCE_VALUE getValue() const { return _value; }

    /// The attribute of a row of a value: its name followed by the row, 0 to 3.
    static ovMemory::String getAttributeName(INSTANCE_VALUE value, unsigned int row);

private:
    INSTANCE_VALUE _value = INSTANCE_VALUE::WORLD_MATRIX;
};

/// The slots of a shader in order.
using InstanceSlots = ovMemory::BufferView<const ovMemory::UniquePtr<ShaderInstanceMemorySlot>>;

} // namespace ovGraphics

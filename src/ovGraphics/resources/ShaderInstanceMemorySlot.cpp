#include <ovGraphics/resources/ShaderInstanceMemorySlot.h>

namespace ovGraphics {

ovMemory::String ShaderInstanceMemorySlot::getAttributeName(INSTANCE_VALUE value, unsigned int row) {
    const ovMemory::StringView name = value == INSTANCE_VALUE::WORLD_MATRIX
                                          ? "INSTANCE_WORLD_MATRIX"
                                          : "INSTANCE_WORLD_MATRIX_INV_TRANSPOSE";
    return ovMemory::String(name) + std::to_string(row);
}

} // namespace ovGraphics

#include <ovVeldris/core/ConstantSlot.h>

#include <ovGraphics/resources/Shader.h>

namespace ovVeldris {

ovGraphics::ShaderPassMemorySlot& constantSlot(ovGraphics::Shader& shader, unsigned int index,
                                               unsigned int buffer) {
    ovGraphics::ConstantBuffer* constants = shader.addConstantBuffer(buffer, 0);
    // Slots are made when first asked for, so that live setters and loading go through one function.
    while (constants->getPassMemorySlotCount() <= index)
        constants->addPassMemorySlot();
    return *constants->getPassMemorySlot(index);
}

} // namespace ovVeldris

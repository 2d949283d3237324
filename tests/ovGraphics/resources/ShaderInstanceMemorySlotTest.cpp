#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Shader.h>

using namespace ovGraphics;

TEST(ShaderInstanceMemorySlotTest, namesTheRowsOfItsValues) {
    ShaderInstanceMemorySlot slot;
    EXPECT_EQ(slot.getValue(), INSTANCE_VALUE::WORLD_MATRIX);
    slot.setAsWorldMatrixInvTranspose();
    EXPECT_EQ(slot.getValue(), INSTANCE_VALUE::WORLD_MATRIX_INV_TRANSPOSE);
    slot.setAsWorldMatrix();
    EXPECT_EQ(slot.getValue(), INSTANCE_VALUE::WORLD_MATRIX);
    EXPECT_EQ(slot.getAttributeName(INSTANCE_VALUE::WORLD_MATRIX, 0), "INSTANCE_WORLD_MATRIX0");
    EXPECT_EQ(slot.getAttributeName(INSTANCE_VALUE::WORLD_MATRIX_INV_TRANSPOSE, 3),
              "INSTANCE_WORLD_MATRIX_INV_TRANSPOSE3");
}

TEST(ShaderInstanceMemorySlotTest, shadersKeepThemInOrder) {
    System system;
    const auto shader = Shader::create(&system);
    EXPECT_EQ(shader->getInstanceMemorySlot(0), nullptr);
    shader->addInstanceMemorySlot()->setAsWorldMatrixInvTranspose();
    shader->addInstanceMemorySlot()->setAsWorldMatrix();
    ASSERT_EQ(shader->getInstanceMemorySlots().size(), 2u);
    EXPECT_EQ(shader->getInstanceMemorySlot(0)->getValue(), INSTANCE_VALUE::WORLD_MATRIX_INV_TRANSPOSE);
    EXPECT_EQ(shader->getInstanceMemorySlot(1)->getValue(), INSTANCE_VALUE::WORLD_MATRIX);
    shader->reset();
    EXPECT_EQ(shader->getInstanceMemorySlots().size(), 0u);
}

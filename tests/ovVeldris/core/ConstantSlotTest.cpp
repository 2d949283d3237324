#include <ovVeldris/core/ConstantSlot.h>

#include <ovGraphics/resources/Shader.h>
#include <support/PictureTest.h>

using ovVeldris::constantSlot;

TEST(ConstantSlotTest, AddsSlotsAsNeeded) {
    ovGraphics::System& graphics = HeadlessSystem::get(ovGraphics::SHADER_LANGUAGE::GLSL).getSystem();
    ovGraphics::Shader shader(&graphics);
    EXPECT_EQ(shader.getConstantBuffer(0, 0), nullptr);
    ovGraphics::ShaderPassMemorySlot* third = &constantSlot(shader, 2);
    ASSERT_NE(shader.getConstantBuffer(0, 0), nullptr);
    EXPECT_EQ(shader.getConstantBuffer(0, 0)->getPassMemorySlotCount(), 3u);
    EXPECT_EQ(&constantSlot(shader, 2), third);
    EXPECT_EQ(&constantSlot(shader, 0), shader.getConstantBuffer(0, 0)->getPassMemorySlot(0));
    EXPECT_EQ(shader.getConstantBuffer(0, 0)->getPassMemorySlotCount(), 3u);
    ovGraphics::ShaderPassMemorySlot* ofAnother = &constantSlot(shader, 1, 4);
    EXPECT_EQ(ofAnother, shader.getConstantBuffer(4, 0)->getPassMemorySlot(1));
}

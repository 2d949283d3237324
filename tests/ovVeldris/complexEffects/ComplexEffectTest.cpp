#include <ovVeldris/complexEffects/ComplexEffect.h>

#include <gtest/gtest.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovVeldris/complexEffects/TestComplexEffect.h>

using ovVeldris::COMPLEX_EFFECT_TYPE;

TEST(ComplexEffectTest, StartsWithItsTypeAlone) {
    const TestComplexEffect effect(COMPLEX_EFFECT_TYPE::DOF);
    EXPECT_EQ(effect.getName(), "");
    EXPECT_EQ(effect.getNode(), nullptr);
    EXPECT_EQ(effect.getType(), COMPLEX_EFFECT_TYPE::DOF);
}

TEST(ComplexEffectTest, KeepsNameAndNode) {
    TestComplexEffect effect(COMPLEX_EFFECT_TYPE::BLUR);
    ovGraphics::CompositorNode node;
    effect.setName("a name");
    effect.setCompositorNode(&node);
    EXPECT_EQ(effect.getName(), "a name");
    EXPECT_EQ(effect.getNode(), &node);
    effect.setCompositorNode(nullptr);
    EXPECT_EQ(effect.getNode(), nullptr);
    EXPECT_EQ(effect.calls, 0) << "setters neither load nor unload";
}

TEST(ComplexEffectTest, CopiesNameNodeAndType) {
    TestComplexEffect effect(COMPLEX_EFFECT_TYPE::BLUR);
    ovGraphics::CompositorNode node;
    effect.setName("original");
    effect.setCompositorNode(&node);

    const TestComplexEffect copy(effect);
    TestComplexEffect assigned(COMPLEX_EFFECT_TYPE::DOF);
    assigned = effect;
    effect.setName("changed");
    for (const TestComplexEffect* other : {&copy, static_cast<const TestComplexEffect*>(&assigned)}) {
        EXPECT_EQ(other->getName(), "original");
        EXPECT_EQ(other->getNode(), &node);
        EXPECT_EQ(other->getType(), COMPLEX_EFFECT_TYPE::BLUR);
    }
}

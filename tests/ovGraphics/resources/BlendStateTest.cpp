#include <gtest/gtest.h>
#include <ovGraphics/resources/BlendState.h>

using namespace ovGraphics;

TEST(BlendStateTest, newWritesWithoutBlending) {
    const BlendState state;
    const device::BlendStateDesc& desc = state.getDesc();
    EXPECT_EQ(desc, device::BlendStateDesc());
    EXPECT_FALSE(desc.alphaToCoverage);
    EXPECT_FALSE(desc.independentBlend);
    for (const device::TargetBlendDesc& target : desc.targets) {
        EXPECT_FALSE(target.enabled);
        EXPECT_EQ(target.sourceFactor, BLEND::ONE);
        EXPECT_EQ(target.destinationFactor, BLEND::ZERO);
        EXPECT_EQ(target.writeMask, 15u);
    }
}

TEST(BlendStateTest, eachSetterChangesItsFieldOfItsTarget) {
    for (unsigned int index : {0u, 7u, 8u, ~0u}) {
        BlendState state;
        state.setAlphaToCoverageEnabled(true);
        state.setIndependentBlendEnabled(true);
        state.setBlendEnabled(true, index);
        state.setOperation(BLEND_OPERATION::SUBTRACT, index);
        state.setAlphaOperation(BLEND_OPERATION::MAX, index);
        state.setDestinationFactor(BLEND::SRC_ALPHA, index);
        state.setAlphaDestinationFactor(BLEND::DEST_ALPHA, index);
        state.setSourceFactor(BLEND::DEST_COLOR, index);
        state.setAlphaSourceFactor(BLEND::INV_DEST_ALPHA, index);
        state.setWriteMask(COLOR_WRITE_RED | COLOR_WRITE_ALPHA, index);
        state.setBlendFactor(0.1f, 0.2f, 0.3f, 0.4f);

        device::BlendStateDesc expected;
        expected.alphaToCoverage = expected.independentBlend = true;
        expected.blendFactor = {0.1f, 0.2f, 0.3f, 0.4f};
        if (index < expected.targets.size()) // others are ignored
            expected.targets[index] = {.enabled = true,
                                       .operation = BLEND_OPERATION::SUBTRACT,
                                       .alphaOperation = BLEND_OPERATION::MAX,
                                       .destinationFactor = BLEND::SRC_ALPHA,
                                       .alphaDestinationFactor = BLEND::DEST_ALPHA,
                                       .sourceFactor = BLEND::DEST_COLOR,
                                       .alphaSourceFactor = BLEND::INV_DEST_ALPHA,
                                       .writeMask = 9};
        EXPECT_EQ(state.getDesc(), expected) << index;
    }
}

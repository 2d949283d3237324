#include <gtest/gtest.h>
#include <ovGraphics/scene/VertexComposition.h>
#include <string>

using namespace ovGraphics;

TEST(VertexCompositionTest, packsAttributesInTheirOrder) {
    VertexComposition composition;
    EXPECT_EQ(composition.getStride(), 0u);
    ASSERT_TRUE(composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT));
    ASSERT_TRUE(composition.addAttribute("COLOR", FORMAT::R8G8B8A8_UNORM));
    ASSERT_TRUE(composition.addAttribute("TEXCOORD", FORMAT::R16G16_FLOAT));
    ASSERT_TRUE(composition.addAttribute("W", FORMAT::R32_FLOAT));
    EXPECT_EQ(composition.getAttributeCount(), 4u);
    EXPECT_EQ(composition.getStride(), 24u);
    const unsigned int offsets[] = {0, 12, 16, 20};
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(composition.getAttribute(i).offset, offsets[i]) << i;
    ASSERT_NE(composition.find("COLOR"), nullptr);
    EXPECT_EQ(composition.find("COLOR")->format, FORMAT::R8G8B8A8_UNORM);
    EXPECT_EQ(composition.find("color"), nullptr);
}

TEST(VertexCompositionTest, refusesWhatVerticesCannotHave) {
    VertexComposition composition;
    ASSERT_TRUE(composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT));
    const VertexComposition before = composition;
    EXPECT_FALSE(composition.addAttribute("", FORMAT::R32_FLOAT));
    EXPECT_FALSE(composition.addAttribute("POSITION", FORMAT::R32_FLOAT));
    for (const FORMAT format : {FORMAT::UNKNOWN, FORMAT::R8_UNORM, FORMAT::R16_FLOAT,
                                FORMAT::R8G8B8A8_UNORM_SRGB, FORMAT::D32_FLOAT}) {
        EXPECT_FALSE(VertexComposition::isVertexFormat(format));
        EXPECT_FALSE(composition.addAttribute("OTHER", format));
    }
    EXPECT_EQ(composition, before);
}

TEST(VertexCompositionTest, holdsSixteenAttributes) {
    VertexComposition composition;
    for (int i = 0; i < 16; ++i)
        ASSERT_TRUE(composition.addAttribute("A" + std::to_string(i), FORMAT::R32G32B32A32_FLOAT)) << i;
    EXPECT_FALSE(composition.addAttribute("A16", FORMAT::R32_FLOAT));
    EXPECT_EQ(composition.getStride(), 256u);
}

TEST(VertexCompositionTest, equalsByNamesFormatsAndOrder) {
    VertexComposition one;
    VertexComposition other;
    one.addAttribute("A", FORMAT::R32_FLOAT);
    one.addAttribute("B", FORMAT::R32_FLOAT);
    other.addAttribute("B", FORMAT::R32_FLOAT);
    other.addAttribute("A", FORMAT::R32_FLOAT);
    EXPECT_NE(one, other);
    other = one;
    EXPECT_EQ(one, other);
}

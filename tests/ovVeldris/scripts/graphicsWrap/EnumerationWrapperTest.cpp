#include <ovVeldris/scripts/graphicsWrap/EnumerationWrapper.h>

#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

class EnumerationWrapperTest : public GraphicsScripts {};

} // namespace

TEST_F(EnumerationWrapperTest, topologiesHaveTheNumbersOfDirect3d) {
    const std::pair<const char*, int> numbers[] = {
        {"UNDEFINED", 0},         {"POINTLIST", 1},         {"LINELIST", 2},      {"LINESTRIP", 3},
        {"TRIANGLELIST", 4},      {"TRIANGLESTRIP", 5},     {"LINELIST_ADJ", 10}, {"LINESTRIP_ADJ", 11},
        {"TRIANGLELIST_ADJ", 12}, {"TRIANGLESTRIP_ADJ", 13}};
    for (const auto& [name, number] : numbers)
        EXPECT_EQ(evaluate(std::string("return ovGraphics.PRIMITIVE_TOPOLOGY_") + name),
                  std::to_string(number))
            << name;
    for (int points = 1; points <= 32; ++points)
        EXPECT_EQ(evaluate("return ovGraphics.PRIMITIVE_TOPOLOGY_" + std::to_string(points) +
                           "_CONTROL_POINT_PATCHLIST"),
                  std::to_string(32 + points));
}

TEST_F(EnumerationWrapperTest, loadStatesAreANamespace) {
    EXPECT_EQ(evaluate("local s = ovGraphics.RESOURCE_LOAD_STATE return s.UNLOADED .. s.LOADING .. "
                       "s.READY_FOR_RENDERING .. s.LOADED"),
              "0123");
}

TEST_F(EnumerationWrapperTest, settingsOfResourcesHaveTheirNames) {
    EXPECT_EQ(evaluate("return ovGraphics.FORMAT.R8G8B8A8_UNORM"), "28");
    EXPECT_EQ(evaluate("return ovGraphics.FORMAT.R32G32B32_FLOAT"), "6");
    EXPECT_EQ(evaluate("return ovGraphics.TEXTURE_TYPE.CUBE"), "1");
    EXPECT_EQ(evaluate("return ovGraphics.FILTER.MIN_MAG_MIP_LINEAR"), "21");
    EXPECT_EQ(evaluate("return ovGraphics.TEXTURE_ADDRESS.CLAMP"), "3");
    EXPECT_EQ(evaluate("return ovGraphics.GLTF_WORKFLOW.SPECULAR_GLOSSINESS"), "1");
    EXPECT_EQ(evaluate("return ovGraphics.GLTF_ALPHA_MODE.BLEND"), "2");
}

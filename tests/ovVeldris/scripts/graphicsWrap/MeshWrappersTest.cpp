#include <ovVeldris/scripts/graphicsWrap/MeshWrappers.h>

#include <ovGraphics/scene/Mesh.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

/// Beside a mesh 'm' and functions that fill buffers.
class MeshWrappersTest : public GraphicsScripts {
protected:
    MeshWrappersTest() {
        evaluate("m = ovGraphics.MeshManager.getInstance():createOrRetrieve('m') "
                 "positions = ovGraphics.VertexComposition() "
                 "positions:addAttribute('POSITION', ovGraphics.FORMAT.R32G32B32_FLOAT) "
                 "function floats(...) local b = ovMemory.Buffer.new(4 * select('#', ...)) "
                 "  local f = ovMemory.BufferCastFloat.new(b) "
                 "  for i, v in ipairs({...}) do f:setData(i - 1, v) end return b end "
                 "function ints(...) local b = ovMemory.Buffer.new(4 * select('#', ...)) "
                 "  local f = ovMemory.BufferCastInt.new(b) "
                 "  for i, v in ipairs({...}) do f:setData(i - 1, v) end return b end");
    }
    ~MeshWrappersTest() override { getGraphics().getMeshManager()->erase("m"); }
    void loadTriangle() {
        ASSERT_EQ(evaluate("m.vertexComposition = positions "
                           "m:setNewVertexArray(floats(0, 0, 0, 2, 0, 0, 0, 4, 6)) "
                           "m:setNewIndexArray(ints(0, 1, 2)) return m:load()"),
                  "true")
            << getLogger().getText();
    }
};

} // namespace

TEST_F(MeshWrappersTest, compositionsListTheirComponents) {
    EXPECT_EQ(evaluate("return positions:addAttribute('NORMAL', ovGraphics.FORMAT.R32G32B32_FLOAT)"), "true");
    EXPECT_EQ(evaluate("return positions:addAttribute('NORMAL', ovGraphics.FORMAT.R32G32B32_FLOAT)"),
              "false");
    EXPECT_EQ(evaluate("return positions:getAttributeCount() .. ' ' .. positions:getStride()"), "2 24");
    EXPECT_EQ(evaluate("local c = positions:getComponents() local n = c:getData(1) "
                       "return c:getSize() .. n.name .. n.format .. ' ' .. n.offset"),
              "2NORMAL6 12");
    EXPECT_EQ(evaluate("return positions:find('POSITION').offset"), "0");
    EXPECT_EQ(evaluate("return positions:find('COLOR')"), "nil");
    EXPECT_EQ(evaluate("return positions:getComponents():getData(2)"),
              "error: test:1: ovGraphics.VertexComponentArray.getData: argument 2 is past the end, got 2; "
              "there are 2 elements, the first is 0");
}

TEST_F(MeshWrappersTest, aMeshIsMadeOfBuffers) {
    loadTriangle();
    EXPECT_EQ(evaluate("return m.vertexCount .. ' ' .. m.indexCount .. ' ' .. m.loadState"), "3 3 3");
    EXPECT_EQ(evaluate("local c = m:getBoundingBox():getCenter() return c._x .. ' ' .. c._y .. ' ' .. c._z"),
              "1.0 2.0 3.0");
    EXPECT_EQ(evaluate("return m:getNewVertexArray():getSize() + m:getNewIndexArray():getSize()"), "0");
    EXPECT_EQ(evaluate("return ovMemory.BufferCastFloat.new(m:getCurrentVertexArray()):getData(7)"), "4.0");
    EXPECT_EQ(evaluate("return ovMemory.BufferCastInt.new(m:getCurrentIndexArray()):getData(2)"), "2");
    EXPECT_EQ(evaluate("m:setNewIndexArray(ints(2, 1, 0)) return "
                       "ovMemory.BufferCastInt.new(m:getNewIndexArray()):getData(0)"),
              "2");
    EXPECT_EQ(evaluate("return m.vertexComposition:getStride()"), "12");
    EXPECT_EQ(evaluate("m:unload() return m.loadState"), "0");
}

TEST_F(MeshWrappersTest, aMeshIsPackedFromVectors) {
    EXPECT_EQ(evaluate("m.vertexComposition = positions "
                       "local v = ovMaths.BufferCastVector.new(floats(1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0)) "
                       "return m:fillPackedFromUnpacked(ovMaths.BufferViewVector.view(v))"),
              "true");
    EXPECT_EQ(evaluate("local b = m:getNewVertexArray() return b:getSize() .. ' ' .. "
                       "ovMemory.BufferCastFloat.new(b):getData(3)"),
              "36 4.0");
    EXPECT_EQ(
        evaluate("positions:addAttribute('NORMAL', ovGraphics.FORMAT.R32G32B32_FLOAT) "
                 "m.vertexComposition = positions local v = ovMaths.BufferCastVector.new(floats(1, 2, 3, "
                 "0)) return m:fillPackedFromUnpacked(ovMaths.BufferViewVector.view(v))"),
        "false")
        << "half a vertex";
}

// What a script got must not become invalid when the mesh takes new arrays.
TEST_F(MeshWrappersTest, arraysAreCopies) {
    loadTriangle();
    evaluate("old = ovMemory.BufferCastFloat.new(m:getCurrentVertexArray()) "
             "m:setNewVertexArray(floats(9, 9, 9)) m:setNewIndexArray(ints(0)) "
             "m:setTopology(ovGraphics.PRIMITIVE_TOPOLOGY_POINTLIST) m:load()");
    EXPECT_EQ(evaluate("return old:getData(8)"), "6.0");
    getGraphics().getMeshManager()->erase("m");
    EXPECT_EQ(evaluate("return old:getData(8)"), "6.0");
}

TEST_F(MeshWrappersTest, membersAreSetWhereTheyCan) {
    EXPECT_EQ(evaluate("m.hidden = true return m.hidden"), "true");
    EXPECT_TRUE(getGraphics().getMeshManager()->get("m")->getHidden());
    EXPECT_EQ(evaluate("m:setTopology(ovGraphics.PRIMITIVE_TOPOLOGY_LINESTRIP) return m:getTopology()"), "3");
    EXPECT_EQ(evaluate("m.vertexCount = 3"),
              "error: test:1: ovGraphics.Mesh.vertexCount can be read, not set");
    EXPECT_EQ(evaluate("m.hidden = 1"), "error: test:1: ovGraphics.Mesh.hidden expected boolean, got number");
    EXPECT_EQ(evaluate("m.vertexComposition = m"),
              "error: test:1: ovGraphics.Mesh.vertexComposition expected ovGraphics.VertexComposition, got "
              "ovGraphics.Mesh");
    EXPECT_EQ(evaluate("m:setNewIndexArray(ovMemory.Buffer.new(6))"),
              "error: test:1: ovGraphics.Mesh.setNewIndexArray: argument 2 expected indices of 4 bytes each, "
              "got 6 bytes");
}

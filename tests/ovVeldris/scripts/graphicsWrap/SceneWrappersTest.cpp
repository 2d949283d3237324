#include <ovVeldris/scripts/graphicsWrap/SceneWrappers.h>

#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

class SceneWrappersTest : public GraphicsScripts {
protected:
    SceneWrappersTest() {
        evaluate("V = ovMaths.Vector.newVec3 nodes = ovGraphics.NodeManager.getInstance() "
                 "a = nodes:createOrRetrieve('a') b = nodes:createOrRetrieve('b') "
                 "mesh = ovGraphics.MeshManager.getInstance():createOrRetrieve('mesh') "
                 "shader = ovGraphics.ShaderManager.getInstance():createOrRetrieve('shader') "
                 "queue = ovGraphics.RenderQueueManager.getInstance():createOrRetrieve('queue')");
    }
    ~SceneWrappersTest() override {
        getGraphics().getRenderQueueManager()->erase("queue");
        getGraphics().getNodeManager()->erase("a");
        getGraphics().getNodeManager()->erase("b");
    }
};

} // namespace

TEST_F(SceneWrappersTest, entitiesAreAddedFoundAndErased) {
    EXPECT_EQ(evaluate("first = queue:addEntity(mesh, shader, a) second = queue:addEntity(nil, nil, nil) "
                       "return queue:getEntityCount()"),
              "2");
    const ovGraphics::RenderQueue* queue = getGraphics().getRenderQueueManager()->get("queue");
    EXPECT_EQ(queue->getEntity(0)->getMesh(), getGraphics().getMeshManager()->get("mesh"));
    EXPECT_EQ(queue->getEntity(0)->getShader(), getGraphics().getShaderManager()->get("shader"));
    EXPECT_EQ(queue->getEntity(0)->getNode()->getName(), "a");
    EXPECT_EQ(queue->getEntity(1)->getNode(), nullptr);
    EXPECT_EQ(evaluate("return queue:getEntity(0) == first and queue:getEntity(1) == second"), "true");
    EXPECT_EQ(evaluate("return queue:getEntity(2)"), "nil");
    EXPECT_EQ(evaluate("return queue:eraseEntity(first)"), "true");
    EXPECT_EQ(evaluate("return queue:eraseEntity(first)"),
              "error: test:1: ovGraphics.RenderQueue.eraseEntity: argument 2 (entity) expected "
              "ovGraphics.Entity or nil, got ovGraphics.Entity is gone: it was destroyed");
    EXPECT_EQ(evaluate("return queue:eraseEntity(nil)"), "false");
    EXPECT_EQ(evaluate("queue:clearQueue() return queue:getEntityCount()"), "0");
}

TEST_F(SceneWrappersTest, wrongArgumentsAreNamed) {
    EXPECT_EQ(
        evaluate("return queue:addEntity(shader, mesh, a)"),
        "error: test:1: ovGraphics.RenderQueue.addEntity: argument 2 (mesh) expected ovGraphics.Mesh or "
        "nil, got ovGraphics.Shader");
    EXPECT_EQ(
        evaluate("return queue:getEntity(0.5)"),
        "error: test:1: ovGraphics.RenderQueue.getEntity: argument 2 (index) expected integer, got 0.5");
}

TEST_F(SceneWrappersTest, nodesHangBelowEachOther) {
    EXPECT_EQ(evaluate("return b:setParent(a)"), "true");
    EXPECT_EQ(evaluate("return b:getParent() == a and a:getFirstChild() == b"), "true");
    EXPECT_EQ(evaluate("return a:setParent(b)"), "false") << "in a circle";
    EXPECT_EQ(evaluate("return b:getNextSibling()"), "nil");
    EXPECT_EQ(
        evaluate("a:setPosition(V(1, 2, 3)) a:setScale(V(2, 2, 2)) b:setPosition(V(10, 20, 30)) "
                 "local p = b:getWorldMatrix():getPositionComponent() return p._x .. ' ' .. p._y .. ' ' "
                 ".. p._z"),
        "21.0 42.0 63.0");
    EXPECT_EQ(evaluate("return b:setParent(nil)"), "true");
    EXPECT_EQ(evaluate("return b:getParent()"), "nil");
    EXPECT_EQ(evaluate("return b:getPosition()._y .. ' ' .. a:getScale()._z"), "20.0 2.0");
    EXPECT_EQ(evaluate("local q = ovMaths.Quaternion() q:setFromAxisAngle(V(0, 1, 0), math.pi) "
                       "a:setOrientation(q) return string.format('%.3f', a:getOrientation()._y)"),
              "1.000");
}

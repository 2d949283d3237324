#include <ovVeldris/scripts/graphicsWrap/CompositorWrappers.h>

#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Texture.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

class CompositorWrappersTest : public GraphicsScripts {
protected:
    CompositorWrappersTest() { evaluate("c = ovGraphics.CompositorManager.getInstance():get('c')"); }
    ~CompositorWrappersTest() override { getGraphics().getCompositorManager()->erase("c"); }

    ovGraphics::Compositor* _compositor = getGraphics().getCompositorManager()->createOrRetrieve("c");
};

} // namespace

TEST_F(CompositorWrappersTest, nodesAreFoundAndSwitched) {
    const ovGraphics::CompositorNode* node = _compositor->appendNode();
    EXPECT_EQ(evaluate("return c:getNode(1)"), "nil");
    EXPECT_EQ(evaluate("return c:getNode(0):setActive(false)"), "nil");
    EXPECT_FALSE(node->getActive());
    EXPECT_EQ(evaluate("return c:getNode(0):setActive(true)"), "nil");
    EXPECT_TRUE(node->getActive());
    EXPECT_EQ(evaluate("return c:getNode(0) == c:getNode(0)"), "true");
    evaluate("held = c:getNode(0)");
    _compositor->removeNode(node);
    EXPECT_EQ(evaluate("held:setActive(true)"),
              "error: test:1: ovGraphics.CompositorNode.setActive: argument 1 expected "
              "ovGraphics.CompositorNode, got ovGraphics.CompositorNode is gone: it was destroyed");
}

TEST_F(CompositorWrappersTest, wrongArgumentsAreNamed) {
    _compositor->appendNode();
    EXPECT_EQ(evaluate("return c:getNode('x')"),
              "error: test:1: ovGraphics.Compositor.getNode: argument 2 (position) expected integer, got "
              "string");
    EXPECT_EQ(evaluate("return c:getNode(0):setActive(1)"),
              "error: test:1: ovGraphics.CompositorNode.setActive: argument 2 (active) expected boolean, got "
              "number");
}

TEST_F(CompositorWrappersTest, contextsTellWhatTheyDrawInto) {
    ovGraphics::RenderContextManager& contexts = *getGraphics().getRenderContextManager();
    ovGraphics::Texture* target = getGraphics().getTextureManager()->createOrRetrieve("target");
    contexts.setActiveRenderContext(contexts.createOrRetrieve("main", {.texture = target}));
    const std::string buffer =
        "return ovGraphics.RenderContextManager.getInstance():getActiveRenderContext():getBackBuffer()";
    EXPECT_EQ(evaluate(buffer), "ovGraphics.Texture 'target'");
    getGraphics().getTextureManager()->erase("target");
    EXPECT_EQ(evaluate(buffer), "nil");
    evaluate("held = ovGraphics.RenderContextManager.getInstance():getActiveRenderContext()");
    contexts.erase("main");
    EXPECT_EQ(evaluate("return tostring(held)"), "ovGraphics.RenderContext 'main' is gone: it was destroyed");
}

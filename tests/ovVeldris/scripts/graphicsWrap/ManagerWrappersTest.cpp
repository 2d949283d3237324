#include <ovVeldris/scripts/graphicsWrap/ManagerWrappers.h>

#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

class ManagerWrappersTest : public GraphicsScripts {
protected:
    ~ManagerWrappersTest() override {
        for (const char* name : {"a", "b", "c"})
            getTextures().erase(name);
    }
    static ovGraphics::TextureManager& getTextures() { return *getGraphics().getTextureManager(); }
    ovMemory::String onTextures(const std::string& text) {
        return evaluate("local m = ovGraphics.TextureManager.getInstance() " + text);
    }
};

} // namespace

TEST_F(ManagerWrappersTest, instancesAreTheSingletonsManagers) {
    for (const char* kind : {"Camera", "Compositor", "Node", "Mesh", "Program", "RenderContext",
                             "RenderQueue", "Shader", "Texture", "Viewport"}) {
        const std::string instance = std::string("ovGraphics.") + kind + "Manager.getInstance()";
        EXPECT_EQ(evaluate("return " + instance + ":isTheSingletonInstance()"), "true") << kind;
        EXPECT_EQ(evaluate("return " + instance + " == " + instance), "true") << kind;
    }
}

TEST_F(ManagerWrappersTest, anUnknownNameIsNil) {
    for (const char* kind : {"Compositor", "Mesh", "Program", "RenderQueue", "Shader", "Texture"})
        EXPECT_EQ(evaluate(std::string("return ovGraphics.") + kind + "Manager.getInstance():get('unknown')"),
                  "nil")
            << kind;
}

TEST_F(ManagerWrappersTest, oneNameIsOneObject) {
    for (const char* kind :
         {"Camera", "Compositor", "Node", "Mesh", "Program", "RenderQueue", "Shader", "Texture", "Viewport"})
        EXPECT_EQ(evaluate(std::string("local m = ovGraphics.") + kind +
                           "Manager.getInstance() return m:createOrRetrieve('one') == "
                           "m:createOrRetrieve('one') and m:createOrRetrieve('one') ~= "
                           "m:createOrRetrieve('two')"),
                  "true")
            << kind;
}

TEST_F(ManagerWrappersTest, objectsAreFoundRenamedAndErased) {
    EXPECT_EQ(onTextures("m:createOrRetrieve('a') return m:get('a') == m:createOrRetrieve('a')"), "true");
    ovGraphics::Texture* texture = getTextures().get("a");
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(onTextures("return m:rename('a', 'b')"), "nil");
    EXPECT_EQ(getTextures().get("b"), texture);
    EXPECT_EQ(
        onTextures("m:createOrRetrieve('c') m:rename('b', 'c') m:rename('unknown', 'd') return m:get('d')"),
        "nil");
    EXPECT_EQ(getTextures().get("b"), texture) << "the name was taken";
    EXPECT_EQ(onTextures("return m:erase('b')"), "nil");
    EXPECT_EQ(getTextures().get("b"), nullptr);
    EXPECT_EQ(onTextures("return m:erase('unknown')"), "nil");
}

TEST_F(ManagerWrappersTest, collectingTheValueLeavesTheObject) {
    EXPECT_EQ(onTextures("m:createOrRetrieve('a'):setWidth(7)"), "nil");
    environment->collectGarbage();
    ASSERT_NE(getTextures().get("a"), nullptr);
    EXPECT_EQ(onTextures("return m:get('a'):getWidth()"), "7");
    environment.reset();
    EXPECT_EQ(getTextures().get("a")->getWidth(), 7u);
}

TEST_F(ManagerWrappersTest, whatIsActiveIsFound) {
    ovGraphics::CameraManager& cameras = *getGraphics().getCameraManager();
    const std::string camera = "return ovGraphics.CameraManager.getInstance():getActiveRenderCamera()";
    EXPECT_EQ(evaluate(camera), "nil");
    cameras.setActiveRenderCamera(cameras.createOrRetrieve("eye"));
    EXPECT_EQ(evaluate(camera), "ovGraphics.Camera 'eye'");
    cameras.erase("eye");
    EXPECT_EQ(evaluate(camera), "nil");

    ovGraphics::ViewportManager& viewports = *getGraphics().getViewportManager();
    const std::string viewport = "return ovGraphics.ViewportManager.getInstance():getActiveViewport()";
    EXPECT_EQ(evaluate(viewport), "nil");
    viewports.setActiveViewport(viewports.createOrRetrieve("part"));
    EXPECT_EQ(evaluate(viewport), "ovGraphics.Viewport 'part'");
    viewports.erase("part");

    ovGraphics::RenderContextManager& contexts = *getGraphics().getRenderContextManager();
    const std::string context =
        "return ovGraphics.RenderContextManager.getInstance():getActiveRenderContext()";
    EXPECT_EQ(evaluate(context), "nil");
    contexts.setActiveRenderContext(contexts.createOrRetrieve("main"));
    EXPECT_EQ(evaluate(context), "ovGraphics.RenderContext 'main'");
    contexts.erase("main");
}

TEST_F(ManagerWrappersTest, wrongArgumentsAreNamed) {
    EXPECT_EQ(onTextures("return m:get(nil)"),
              "error: test:1: ovGraphics.TextureManager.get: argument 2 (name) expected string, got nil");
    EXPECT_EQ(onTextures("return m:rename('a')"),
              "error: test:1: ovGraphics.TextureManager.rename: argument 3 (newName) expected string, got "
              "nothing");
    EXPECT_EQ(onTextures("return m.get(ovGraphics.MeshManager.getInstance(), 'a')"),
              "error: test:1: ovGraphics.TextureManager.get: argument 1 expected ovGraphics.TextureManager, "
              "got ovGraphics.MeshManager");
    EXPECT_EQ(onTextures("return m:getCount()"),
              "error: test:1: ovGraphics.TextureManager has no member 'getCount'");
}

// A host may end the graphics system while a script holds its managers.
TEST_F(ManagerWrappersTest, aManagerThatIsGoneIsAnError) {
    evaluate("held = ovGraphics.TextureManager.getInstance()");
    ovGraphics::System::kill();
    EXPECT_EQ(evaluate("return held:get('a')"),
              "error: test:1: ovGraphics.TextureManager.get: argument 1 expected ovGraphics.TextureManager, "
              "got ovGraphics.TextureManager is gone: it was destroyed");
    SetUpTestSuite();
}

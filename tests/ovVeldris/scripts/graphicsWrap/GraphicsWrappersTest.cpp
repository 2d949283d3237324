#include <ovVeldris/scripts/graphicsWrap/GraphicsWrappers.h>

#include <iterator>
#include <scripts/graphicsWrap/GraphicsScripts.h>
#include <sstream>

namespace {

class GraphicsWrappersTest : public GraphicsScripts {};

/// Spelled out, so that a name that goes missing or changes its kind is noticed.
struct DeclaredType {
    const char* name;
    const char* statics;
    const char* methods;
    const char* members;
    bool isOfDevice = true; ///< refuses to work on other threads than the one that renders
};

constexpr DeclaredType DECLARED_TYPES[] = {
    {"BoundingBox", "newCube newBox", "getCenter checkAgainst", "", false},
    {"Camera", "",
     "getNear getFar getFrustum getPerspectiveFov getOrthographicHeight getDirectionAtPixelView "
     "getDirectionAtPixelWorld",
     ""},
    {"CameraManager", "getInstance",
     "isTheSingletonInstance createOrRetrieve erase rename getActiveRenderCamera", ""},
    {"Frustum", "", "getPlane copy", "", false},
    {"Compositor", "", "getNode", ""},
    {"CompositorManager", "getInstance", "isTheSingletonInstance createOrRetrieve get rename erase", ""},
    {"CompositorNode", "", "setActive", ""},
    {"Entity", "", "", ""},
    {"Node", "", "getPosition setPosition getParent setParent", ""},
    {"NodeManager", "getInstance", "isTheSingletonInstance createOrRetrieve erase rename", ""},
    {"GltfEncoder", "canDecode decode", "", "", false},
    {"Mesh", "",
     "fillPackedFromUnpacked load unload getNewVertexArray getCurrentVertexArray getNewIndexArray "
     "getCurrentIndexArray",
     "vertexComposition vertexCount indexCount hidden loadState"},
    {"MeshManager", "getInstance", "isTheSingletonInstance createOrRetrieve get", ""},
    {"VertexComponent", "", "", "name format offset", false},
    {"VertexComponentArray", "", "getSize getData", "", false},
    {"VertexComposition", "", "addAttribute getComponents", "", false},
    {"Program", "", "load unload", "loadState"},
    {"ProgramManager", "getInstance", "isTheSingletonInstance createOrRetrieve get rename erase", ""},
    {"RenderContext", "", "getBackBuffer", ""},
    {"RenderContextManager", "getInstance", "isTheSingletonInstance getActiveRenderContext", ""},
    {"RenderQueue", "", "addEntity eraseEntity clearQueue getEntityCount getEntity", ""},
    {"RenderQueueManager", "getInstance", "isTheSingletonInstance createOrRetrieve get", ""},
    {"Shader", "", "load unload", "loadState"},
    {"ShaderManager", "getInstance", "isTheSingletonInstance createOrRetrieve get rename erase", ""},
    {"Texture", "", "load unload convertToImage", "loadState"},
    {"TextureManager", "getInstance", "isTheSingletonInstance createOrRetrieve get rename erase", ""},
    {"TextureSaver", "saveToHdr", "", ""},
    {"TextureUtils", "computeIrradianceSH", "", ""},
    {"Viewport", "", "getHeight", ""},
    {"ViewportManager", "getInstance",
     "isTheSingletonInstance createOrRetrieve erase rename getActiveViewport", ""},
};

ovMemory::Buffer<std::string> wordsOf(const char* text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

template <typename Functions>
bool hasFunction(const Functions& functions, ovMemory::StringView name) {
    for (const auto& function : functions)
        if (function->getName() == name)
            return true;
    return false;
}

bool hasMember(const ovScripts::UserType& type, ovMemory::StringView name) {
    for (const auto& member : type.getMembers())
        if (member->name == name)
            return true;
    return false;
}

} // namespace

TEST_F(GraphicsWrappersTest, everyNameIsDeclaredWithItsKind) {
    for (const DeclaredType& declared : DECLARED_TYPES) {
        const std::string fullName = std::string("ovGraphics.") + declared.name;
        const ovScripts::UserType* type = environment->getUserType(fullName);
        ASSERT_NE(type, nullptr) << fullName;
        EXPECT_EQ(type->isRenderThreadOnly(), declared.isOfDevice) << fullName;
        for (const std::string& name : wordsOf(declared.statics)) {
            EXPECT_TRUE(hasFunction(type->getStaticFunctions(), name)) << fullName << ' ' << name;
            EXPECT_EQ(evaluate("return type(" + fullName + "." + name + ")"), "function") << fullName;
        }
        for (const std::string& name : wordsOf(declared.methods))
            EXPECT_TRUE(hasFunction(type->getMethods(), name)) << fullName << ' ' << name;
        for (const std::string& name : wordsOf(declared.members))
            EXPECT_TRUE(hasMember(*type, name)) << fullName << ' ' << name;
    }
}

// A manager that lets scripts take away what hosts hold would be a surprise.
TEST_F(GraphicsWrappersTest, managersAndViewportsOfferNothingElse) {
    for (const DeclaredType& declared : DECLARED_TYPES) {
        const std::string name = declared.name;
        if (!name.ends_with("Manager") && name != "Viewport" && name != "Entity")
            continue;
        const ovScripts::UserType* type = environment->getUserType("ovGraphics." + name);
        EXPECT_EQ(type->getMethods().size(), wordsOf(declared.methods).size()) << name;
        EXPECT_TRUE(type->getMembers().empty()) << name;
    }
}

TEST_F(GraphicsWrappersTest, everyFunctionOfTheDeviceRefusesWorkers) {
    for (const DeclaredType& declared : DECLARED_TYPES) {
        if (!declared.isOfDevice)
            continue;
        const ovScripts::UserType* type =
            environment->getUserType(std::string("ovGraphics.") + declared.name);
        for (const auto& function : type->getMethods())
            EXPECT_TRUE(function->isRenderThreadOnly()) << function->getFullName();
        for (const auto& function : type->getStaticFunctions())
            EXPECT_TRUE(function->isRenderThreadOnly()) << function->getFullName();
    }
    EXPECT_EQ(evaluateOnWorker("return ovGraphics.TextureManager.getInstance()"),
              "error: test:1: ovGraphics.TextureManager.getInstance belongs to the thread that renders; hand "
              "data over instead");
}

// One object of each kind, made, held by a script, and destroyed behind its back.
TEST_F(GraphicsWrappersTest, anObjectThatIsGoneIsAnErrorWithItsKindAndName) {
    using ovGraphics::System;
    struct Row {
        const char* type;
        const char* use;
        void (*erase)(const System&);
    };
    const Row rows[] = {
        {"Camera", "held:getNear()", [](const System& s) { s.getCameraManager()->erase("x"); }},
        {"Compositor", "held:getNode(0)", [](const System& s) { s.getCompositorManager()->erase("x"); }},
        {"Node", "held:getName()", [](const System& s) { s.getNodeManager()->erase("x"); }},
        {"Mesh", "held:load()", [](const System& s) { s.getMeshManager()->erase("x"); }},
        {"Program", "held:load()", [](const System& s) { s.getProgramManager()->erase("x"); }},
        {"RenderQueue", "held:clearQueue()", [](const System& s) { s.getRenderQueueManager()->erase("x"); }},
        {"Shader", "held:load()", [](const System& s) { s.getShaderManager()->erase("x"); }},
        {"Texture", "held:load()", [](const System& s) { s.getTextureManager()->erase("x"); }},
        {"Viewport", "held:getHeight()", [](const System& s) { s.getViewportManager()->erase("x"); }},
    };
    for (const Row& row : rows) {
        const std::string type = std::string("ovGraphics.") + row.type;
        evaluate("held = " + type + "Manager.getInstance():createOrRetrieve('x')");
        EXPECT_EQ(evaluate("return tostring(held)"), type + " 'x'");
        row.erase(getGraphics());
        const std::string gone = type + " 'x' is gone: it was destroyed";
        const std::string error = evaluate("return " + std::string(row.use));
        EXPECT_TRUE(error.ends_with("argument 1 expected " + type + ", got " + gone)) << error;
        EXPECT_EQ(evaluate("return tostring(held)"), gone);
    }
    evaluate("held = ovGraphics.MeshManager.getInstance():createOrRetrieve('y')");
    getGraphics().getMeshManager()->erase("y");
    EXPECT_EQ(evaluate("return held.vertexCount"),
              "error: test:1: ovGraphics.Mesh 'y' is gone: it was destroyed");
}

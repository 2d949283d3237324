#include <ovVeldris/scripts/ScriptsEngine.h>

#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <sstream>
#include <support/Lua.h>
#include <support/RecordingLogger.h>

namespace {

using ovVeldris::ScriptsEngine;

// Spelled out, so that a name that goes missing or changes its kind is noticed. A type is followed by its
// kind only where it is a namespace: ":".
constexpr const char* DECLARED_IN_ORDER =
    "ovExport: ovExport.ExportError ovExport.ExporterLoadResult ovExport.JsonExporter ovExport.Node "
    "ovGraphics: ovGraphics.BoundingBox ovGraphics.Camera ovGraphics.CameraManager ovGraphics.Frustum "
    "ovGraphics.Compositor ovGraphics.CompositorManager ovGraphics.CompositorNode ovGraphics.Entity "
    "ovGraphics.Node ovGraphics.NodeManager ovGraphics.GltfEncoder ovGraphics.Mesh ovGraphics.MeshManager "
    "ovGraphics.VertexComponent ovGraphics.VertexComponentArray ovGraphics.VertexComposition "
    "ovGraphics.Program ovGraphics.ProgramManager ovGraphics.RenderContext ovGraphics.RenderContextManager "
    "ovGraphics.RenderQueue ovGraphics.RenderQueueManager ovGraphics.Shader ovGraphics.ShaderManager "
    "ovGraphics.Texture ovGraphics.TextureManager ovGraphics.TextureSaver ovGraphics.TextureUtils "
    "ovGraphics.Viewport ovGraphics.ViewportManager "
    "ovImages: ovImages.Image ovImages.ImageView ovImages.JpgEncoder ovImages.CompositeEncoder "
    "ovMaths: ovMaths.Matrix ovMaths.Quaternion ovMaths.Vector ovMaths.BufferCastVector "
    "ovMaths.BufferViewVector ovMaths.MathConstants: "
    "ovMemory: ovMemory.Buffer ovMemory.BufferCastInt ovMemory.BufferCastFloat ovMemory.BufferCastDouble "
    "ovMemory.BufferView ovMemory.BufferViewInt ovMemory.BufferViewFloat ovMemory.BufferViewDouble "
    "ovResources: ovResources.ResourceManager "
    "ovScripts: ovScripts.INTERPRETER: ovScripts.COMPILATION_FAILURE_TYPE: ovScripts.CompilationResult "
    "ovScripts.Script "
    "ovTasks: ovTasks.Scheduler ovTasks.Task ovTasks.Thread ovTasks.ThreadSubmittedWork "
    "std: std.array_float_4 std.array_array_float_4_4 "
    "ovGraphics.RESOURCE_LOAD_STATE: ovGraphics.FORMAT: ovGraphics.TEXTURE_TYPE: ovGraphics.FILTER: "
    "ovGraphics.TEXTURE_ADDRESS: ovGraphics.GLTF_WORKFLOW: ovGraphics.GLTF_ALPHA_MODE: "
    "ovGraphics.GltfDecodeResult ovGraphics.GltfScene ovGraphics.GltfMesh ovGraphics.GltfPrimitive "
    "ovGraphics.GltfMaterial ovGraphics.GltfTexture ovGraphics.GltfImage ovGraphics.GltfNode "
    "ovGraphics.GltfCamera ovGraphics.GltfDirectionalLight "
    "ovVeldris: ovVeldris.Effect ovVeldris.EffectManager ovVeldris.ComplexEffect "
    "ovVeldris.ComplexEffectManager ovVeldris.Material ovVeldris.MaterialManager ovVeldris.Model "
    "ovVeldris.ModelLoader ovVeldris.LoadedMaterials ovVeldris.ContentLoader ovVeldris.ProjectLoader "
    "ovVeldris.PbsEnvironmentMapFilter ovVeldris.EnvironmentRenderer ovVeldris.Frame "
    "ovVeldris.SkyLight";

TEST(ScriptsEngineTest, runsBetweenInitializeAndShutdown) {
    ovVeldris::System system;
    ScriptsEngine engine(&system);
    EXPECT_EQ(engine.getSystem(), &system);
    EXPECT_FALSE(engine.getIsInitialized());
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(engine.initialize());
        EXPECT_TRUE(engine.getIsInitialized());
        engine.shutdown();
        engine.shutdown();
        EXPECT_FALSE(engine.getIsInitialized());
        EXPECT_EQ(engine.getEnvironment(), nullptr);
    }
}

TEST(ScriptsEngineTest, everyNameIsDeclaredWithItsKind) {
    ScriptsEngine engine(nullptr);
    engine.initialize();
    std::istringstream names(DECLARED_IN_ORDER);
    unsigned int count = 0;
    for (std::string name; names >> name; ++count) {
        const bool isNamespace = name.back() == ':';
        if (isNamespace)
            name.pop_back();
        EXPECT_EQ(engine.getEnvironment()->getNamespace(name) != nullptr, isNamespace) << name;
        EXPECT_EQ(engine.getEnvironment()->getUserType(name) != nullptr, !isNamespace) << name;
        EXPECT_EQ(luaTest::evaluate(*engine.getEnvironment(), "return type(" + name + ")"), "table") << name;
    }
    EXPECT_EQ(count, 105u);
}

TEST(ScriptsEngineTest, namesAreDeclaredInOrder) {
    ScriptsEngine engine(nullptr);
    engine.initialize();
    std::istringstream names(DECLARED_IN_ORDER);
    std::size_t space = 0;
    std::size_t type = 0;
    for (std::string name; names >> name;) {
        if (name.back() == ':')
            EXPECT_EQ(engine.getEnvironment()->getNamespaces().at(space++)->getFullName() + ':', name);
        else
            EXPECT_EQ(engine.getEnvironment()->getUserTypes().at(type++)->getFullName(), name);
    }
}

TEST(ScriptsEngineTest, environmentsAreIndependent) {
    ScriptsEngine first(nullptr);
    ScriptsEngine second(nullptr);
    first.initialize();
    second.initialize();
    luaTest::evaluate(*first.getEnvironment(), "ovMaths.Vector = 7; mine = 1");
    EXPECT_EQ(luaTest::evaluate(*second.getEnvironment(), "return type(ovMaths.Vector)"), "table");
    EXPECT_EQ(luaTest::evaluate(*second.getEnvironment(), "return mine"), "nil");
    first.initialize();
    EXPECT_EQ(luaTest::evaluate(*first.getEnvironment(), "return mine"), "nil");
}

TEST(ScriptsEngineTest, anEnvironmentWithoutInterpreterIsLeftAlone) {
    ScriptsEngine::setupScriptsEnvironment(nullptr, nullptr);
    const auto environment = ovScripts::Environment::create();
    ScriptsEngine::setupScriptsEnvironment(environment.get(), nullptr);
    EXPECT_TRUE(environment->getNamespaces().empty());
}

} // namespace

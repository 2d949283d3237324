#include <ovVeldris/content/ProjectLoader.h>

#include <fstream>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resourceSets/ResourceManager.h>
#include <ovGraphics/resources/Camera.h>
#include <ovResources/ResourceManager.h>
#include <ovScripts/ScriptManager.h>
#include <ovVeldris/content/MaterialSettings.h>
#include <ovVeldris/content/ModelTesting.h>
#include <support/TemporaryFolder.h>

using namespace ovVeldris;
using ovMemory::String;
using ovMemory::StringView;

namespace {

/// Notes the materials that it sees, and whether they were loaded then.
struct Watcher : ResourceDeclAugmentCallback {
    void onMaterial(Material* material, ovExport::Node* node) override {
        seen += String(material->getName()) + (material->getShader() ? " loaded, " : ", ");
        if (writes)
            node->addMember("own")->setAsString("kept");
        else if (const ovExport::Node* own = node->getMemberValue("own"))
            seen += own->getValueAsString() + ", ";
        if (!writes)
            static_cast<PbsMaterial*>(material)->setRoughnessGlossiness(0.25f);
    }
    bool writes = true;
    String seen;
};

/// Works in a folder of its own, with systems of its own.
class ProjectLoaderTest : public ModelFixture {
protected:
    ProjectLoaderTest() { ovResources::ResourceManager::getInstance()->setWorkingPath(folder.getPath()); }
    ~ProjectLoaderTest() override {
        ovResources::ResourceManager::getInstance()->setWorkingPath("");
        ovScripts::ScriptManager::kill();
    }

    void write(StringView name, StringView content) {
        std::ofstream(folder.getPath(name), std::ios::binary) << content;
    }
    String read(StringView name) {
        std::ifstream file(folder.getPath(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::set<String> list() {
        std::set<String> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.getPath()))
            if (!entry.is_directory())
                names.insert(std::filesystem::relative(entry.path(), folder.getPath()).native());
        return names;
    }

    static void save(System& system, const String& path, ResourceDeclAugmentCallback* callback = nullptr) {
        ProjectSaveQuery query;
        query._path = path;
        query._callback = callback;
        system.getProjectLoader()->save(query);
    }
    static ProjectLoadResult load(System& system, const String& path,
                                  ResourceDeclAugmentCallback* callback = nullptr) {
        ProjectLoadQuery query;
        query._path = path;
        query._callback = callback;
        return system.getProjectLoader()->load(query);
    }

    /// A picture of the queues "solid" and "blended" of a system.
    FloatPicture draw(ovGraphics::System& graphics) {
        const auto camera = ovGraphics::Camera::create(&graphics);
        camera->setPosition({0.0f, -0.5f, -4.0f});
        camera->setOrthographic(3.0f, 3.0f, 0.5f, 8.0f);
        const auto target = ovGraphics::Texture::create(&graphics);
        target->setFormat(ovGraphics::FORMAT::R32G32B32A32_FLOAT);
        target->setWidth(24);
        target->setHeight(24);
        target->setUsableAsRenderTarget(true);
        EXPECT_TRUE(target->load());
        const auto compositor = ovGraphics::Compositor::create(&graphics);
        auto* const block = compositor->appendNode()->appendOperationsBlock();
        block->appendClearPass();
        for (const char* const queue : {"solid", "blended"}) {
            ovGraphics::ScenePass* const pass = block->appendScenePass();
            pass->setRenderQueue(graphics.getRenderQueueManager()->get(queue));
            pass->setCamera(camera.get());
        }
        const auto context = ovGraphics::RenderContext::create(&graphics);
        context->setDescriptor({.texture = target.get()});
        context->setCompositor(compositor.get());
        EXPECT_TRUE(graphics.frame(context.get())) << getLog().getText();
        return readFloats(*target);
    }

    /// Two lit squares with textures of all kinds, one of them a mixture that the library's format leaves
    /// out.
    void addModel() {
        ovGraphics::GltfMaterial painted;
        painted.name = "painted";
        painted.baseColorTexture = _scene.addTexture("base", pngOf({{200, 40, 40, 255}, {10, 80, 230, 255}}));
        _scene.textures.back().filter = ovGraphics::FILTER::MIN_MAG_MIP_POINT;
        _scene.textures.back().mipmapped = false;
        _scene.textures.back().addressU = ovGraphics::TEXTURE_ADDRESS::MIRROR;
        painted.baseColor = {0.5f, 1.0f, 0.25f, 1.0f};
        painted.metallicRoughnessTexture =
            _scene.addTexture("rough", pngOf({{0, 90, 255, 255}, {0, 200, 0, 255}}));
        painted.occlusionTexture = painted.metallicRoughnessTexture;
        _scene.addMaterial(painted);
        ovGraphics::GltfMaterial shiny;
        shiny.name = "shiny";
        shiny.workflow = ovGraphics::GLTF_WORKFLOW::SPECULAR_GLOSSINESS;
        shiny.specular = {0.9f, 0.6f, 0.2f};
        shiny.glossiness = 0.6f;
        _scene.addMaterial(shiny);
    }

    const TemporaryFolder folder;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ProjectLoaderTest, bothLanguages(), languageName);

TEST_P(ProjectLoaderTest, drawsASavedModelBitForBitAndSavesItAsTheSameBytes) {
    FloatPicture before;
    const std::set<String> files = {"x.ovs", "x.ovs.data", "x_materials.ovm", "x_scripts.ovscripts"};
    {
        System saved;
        ASSERT_TRUE(initializeOwn(saved));
        ovGraphics::System& graphics = *saved.getGraphicsEngine()->getGraphicsSystem();
        addModel();
        const ModelLoadResult made = ModelLoader(&saved).create(_scene);
        ASSERT_TRUE(made) << made.error;
        for (const ModelMaterial& own : made.model->getMaterials()) {
            own.material->setLightDirection({0.3f, -0.2f, 1.0f});
            own.material->setLightColor({2.0f, 3.0f, 4.0f});
        }
        ASSERT_TRUE(made.model->loadMaterials()) << getLog().getText();
        ovGraphics::RenderQueueManager& queues = *graphics.getRenderQueueManager();
        made.model->addTo(*queues.createOrRetrieve("solid"), *queues.createOrRetrieve("blended"));
        before = draw(graphics);
        ovScripts::ScriptManager::getInstance()->createOrRetrieve("s")->setSources("return 1");
        MaterialSettingsWriter writer;
        save(saved, "x.ovs", &writer);
    }
    ASSERT_EQ(list(), files) << getLog().getText();
    std::map<String, String> bytes;
    for (const String& file : files)
        bytes[file] = read(file);
    write("x_scripts.ovScripts", ""); // what switches the scripts on
    ovScripts::ScriptManager::kill();

    System loaded;
    ASSERT_TRUE(initializeOwn(loaded));
    MaterialSettingsReader reader(loaded);
    const ProjectLoadResult result = load(loaded, "x.ovs", &reader);
    EXPECT_EQ(result._materials.size(), 2u);
    EXPECT_EQ(result._resourceSet._problems.size(), 0u) << getLog().getText();
    ASSERT_EQ(result._scripts.size(), 1u);
    EXPECT_TRUE(result._scripts.front()->isLoaded());
    const FloatPicture after = draw(*loaded.getGraphicsEngine()->getGraphicsSystem());
    EXPECT_EQ(after.pixels, before.pixels);
    EXPECT_GT(std::set<FloatPixel>(after.pixels.begin(), after.pixels.end()).size(), 4u)
        << "something is drawn";

    MaterialSettingsWriter writer;
    save(loaded, "x.ovs", &writer);
    for (const auto& [file, content] : bytes)
        EXPECT_EQ(read(file), content) << file;
}

TEST_P(ProjectLoaderTest, showsEveryMaterialToTheCallbackBeforeItIsLoaded) {
    System& system = *getSystem();
    system.getMaterialManager()->createOrRetrieve("b", MATERIAL_TYPE::PBS);
    system.getMaterialManager()->createOrRetrieve("a", MATERIAL_TYPE::PBS);
    Watcher watcher;
    save(system, "p.ovs", &watcher);
    EXPECT_EQ(watcher.seen, "a, b, ");
    for (const char* const name : {"a", "b"})
        system.getMaterialManager()->erase(name);
    watcher = {};
    watcher.writes = false;
    const ProjectLoadResult result = load(system, "p.ovs", &watcher);
    EXPECT_EQ(watcher.seen, "a, kept, b, kept, ");
    ASSERT_EQ(result._materials.size(), 2u);
    EXPECT_EQ(result._materials[0]->getName(), "a");
    for (Material* material : result._materials) {
        EXPECT_NE(material->getShader(), nullptr) << "it is loaded";
        EXPECT_EQ(static_cast<PbsMaterial*>(material)->getRoughnessGlossiness(), 0.25f)
            << "what the callback set stays";
    }
    for (const char* const name : {"a", "b"})
        system.getMaterialManager()->erase(name);
}

TEST_P(ProjectLoaderTest, skipsWhatCannotBeUsedWithoutAWord) {
    write("p_materials.ovm", R"({"materials": [{"name": "a", "type": "PBS"}, {"name": "b", "type": "pbs"}, 3,
        {"type": "PBS"}, {"name": "c", "type": "PBS"}]})");
    const ProjectLoadResult result = load(*getSystem(), "p.proj");
    ASSERT_EQ(result._materials.size(), 2u);
    EXPECT_EQ(result._materials[0]->getName(), "a");
    EXPECT_EQ(result._materials[1]->getName(), "c");
    EXPECT_EQ(getLog().getText(), "");
    for (const char* const name : {"a", "c"})
        getSystem()->getMaterialManager()->erase(name);
    for (const char* const text : {"[]", "{}", R"({"materials": {}})", "3"}) {
        write("p_materials.ovm", text);
        EXPECT_TRUE(load(*getSystem(), "p.proj")._materials.empty()) << text;
        EXPECT_EQ(getLog().getText(), "") << text;
    }
    write("p_materials.ovm", "{");
    EXPECT_TRUE(load(*getSystem(), "p.proj")._materials.empty());
    EXPECT_EQ(getLog().messages.size(), 6u) << "of the content loader";
    getLog().messages.clear();
}

TEST_P(ProjectLoaderTest, givesNothingWhereThereAreNoFiles) {
    const ProjectLoadResult result = load(*getSystem(), "none.ovs");
    EXPECT_TRUE(result._materials.empty());
    EXPECT_TRUE(result._scripts.empty());
    EXPECT_TRUE(result._resourceSet._textures.empty());
    EXPECT_EQ(getLog().getText(), "");
}

TEST_P(ProjectLoaderTest, writesAnObjectWithoutMembersWithoutMaterials) {
    System bare;
    ASSERT_TRUE(initializeOwn(bare));
    save(bare, "p.ovs");
    EXPECT_EQ(read("p_materials.ovm"), "{}");
    EXPECT_TRUE(load(bare, "p.ovs")._materials.empty());
}

TEST_P(ProjectLoaderTest, cutsThePathAtItsFirstDot) {
    const std::pair<const char*, const char*> BASES[] = {{"projects/demo.proj", "projects/demo"},
                                                         {"demo", "demo"},
                                                         {"./demo.proj", ""},
                                                         {"a.b/demo.c", "a"},
                                                         {"../x", ""},
                                                         {"", ""},
                                                         {"demo.tar.gz", "demo"}};
    for (const auto& [path, base] : BASES)
        EXPECT_EQ(ProjectLoader::getBase(path), base) << path;
    System bare;
    ASSERT_TRUE(initializeOwn(bare));
    std::filesystem::create_directory(folder.getPath("projects"));
    save(bare, "projects/demo.proj");
    EXPECT_EQ(list(), (std::set<String>{"projects/demo_materials.ovm", "projects/demo.proj",
                                        "projects/demo_scripts.ovscripts"}));
    save(bare, "./demo.proj");
    EXPECT_TRUE(list().contains("_materials.ovm"));
    EXPECT_TRUE(list().contains("demo.proj"));
    EXPECT_TRUE(list().contains("_scripts.ovscripts"));
}

// The set is saved under the path as it is given, and loaded from the base with ".ovs".
TEST_P(ProjectLoaderTest, findsTheSetOnlyUnderTheNameThatItIsReadFrom) {
    System bare;
    ASSERT_TRUE(initializeOwn(bare));
    ovGraphics::System& graphics = *bare.getGraphicsEngine()->getGraphicsSystem();
    graphics.getTextureManager()->createOrRetrieve("t");
    save(bare, "x.proj");
    EXPECT_EQ(load(bare, "x.proj")._resourceSet._textures.size(), 0u);
    save(bare, "x.ovs");
    EXPECT_EQ(load(bare, "x.proj")._resourceSet._textures.size(), 1u);
    EXPECT_EQ(load(bare, "x")._resourceSet._textures.size(), 1u);
    write(".ovs", R"({"resourceSet": 1, "textures": [{"name": "u", "loaded": false}]})");
    EXPECT_EQ(load(bare, "./x.proj")._resourceSet._textures.size(), 1u) << "of the empty base";
}

TEST_P(ProjectLoaderTest, readsScriptsOnlyBesideTheFileOfTheOtherSpelling) {
    write("x_scripts.ovscripts", R"({"scripts": [{"name": "s", "source": "return 1"}]})");
    EXPECT_TRUE(load(*getSystem(), "x.ovs")._scripts.empty());
    write("x_scripts.ovScripts", "anything");
    ASSERT_EQ(load(*getSystem(), "x.ovs")._scripts.size(), 1u);
    std::filesystem::remove(folder.getPath("x_scripts.ovscripts"));
    EXPECT_TRUE(load(*getSystem(), "x.ovs")._scripts.empty());
    EXPECT_TRUE(getLog().contains("x_scripts.ovscripts"));
    getLog().messages.clear();
}

TEST_P(ProjectLoaderTest, doesNotAskForTheFlag) {
    const ProjectLoadQuery loadQuery;
    const ProjectSaveQuery saveQuery;
    EXPECT_TRUE(loadQuery._flag && saveQuery._flag);
    EXPECT_EQ(loadQuery._callback, nullptr);
    EXPECT_EQ(loadQuery._scriptsQuery._path, "");
    write("p_materials.ovm", R"({"materials": [{"name": "a", "type": "PBS"}]})");
    ProjectLoadQuery query;
    query._path = "p";
    query._flag = false;
    EXPECT_EQ(getSystem()->getProjectLoader()->load(query)._materials.size(), 1u);
    getSystem()->getMaterialManager()->erase("a");
}

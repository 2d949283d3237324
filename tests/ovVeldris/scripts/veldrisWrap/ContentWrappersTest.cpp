#include <ovVeldris/scripts/veldrisWrap/ContentWrappers.h>

#include <filesystem>
#include <fstream>
#include <ovGraphics/gltf/GltfBuilder.h>
#include <ovResources/ResourceManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <scripts/veldrisWrap/VeldrisScripts.h>
#include <support/TemporaryFolder.h>

namespace {

/// In a working folder of its own, with the model "model.glb".
class ContentWrappersTest : public VeldrisScripts {
protected:
    ContentWrappersTest() {
        ovResources::ResourceManager::getInstance()->setWorkingPath(_folder.getPath());
        const GltfBytes file = makeTriangle().toBinary();
        std::ofstream(_folder.getPath("model.glb"), std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    }
    ~ContentWrappersTest() override {
        getSystem().getScriptsEngine()->shutdown(); // with the models of the script
        while (ovVeldris::Material* material = getSystem().getMaterialManager()->getByIndex(0))
            getSystem().getMaterialManager()->erase(ovMemory::String(material->getName()));
        ovResources::ResourceManager::getInstance()->setWorkingPath("");
    }

    const TemporaryFolder _folder;
};

} // namespace

TEST_F(ContentWrappersTest, modelsAreLoaded) {
    EXPECT_EQ(evaluate("model = ovVeldris.ModelLoader.load('" + _folder.getPath("model.glb") +
                       "') return model:getMaterialCount()"),
              "1")
        << getLogger().getText();
    EXPECT_EQ(evaluate("return model:findNode('Node'):getName()"), "Node");
    EXPECT_EQ(evaluate("return model:findNode('none')"), "nil");
    EXPECT_EQ(evaluate("return model:getBoundingBox():getMaximum()._x"), "1.0");
    EXPECT_EQ(evaluate("model:getRoot():setPosition(ovMaths.Vector.newVec3(5, 0, 0)) return "
                       "model:getBoundingBox():getMaximum()._x"),
              "6.0");
    EXPECT_EQ(evaluate("return model:getWarningCount()"), "0");
    EXPECT_EQ(evaluate("return model:getWarning(0)"), "nil");
    EXPECT_EQ(evaluate("q = ovGraphics.RenderQueueManager.getInstance() solid = q:createOrRetrieve('solid') "
                       "blended = q:createOrRetrieve('blended') local ok = model:loadMaterials() "
                       "model:addTo(solid, blended) "
                       "return tostring(ok) .. solid:getEntityCount() .. blended:getEntityCount()"),
              "true10")
        << getLogger().getText();
    EXPECT_EQ(
        evaluate("local m = model:getMaterial(0) ovVeldris.MaterialManager.getInstance():erase(m:getName()) "
                 "return model:getMaterial(0)"),
        "nil")
        << "it was destroyed";
    EXPECT_EQ(evaluate("return model:getMaterial(1)"), "nil");
}

TEST_F(ContentWrappersTest, aModelThatCannotBeReadIsAnError) {
    const ovMemory::String error = evaluate("return ovVeldris.ModelLoader.load('missing.glb')");
    EXPECT_TRUE(error.starts_with("error: test:1: ovVeldris.ModelLoader.load: ")) << error;
    EXPECT_NE(error.find("missing.glb"), ovMemory::String::npos) << error;
}

TEST_F(ContentWrappersTest, declarationsOfMaterialsGoInAndOut) {
    evaluate("result = ovVeldris.ContentLoader.processMaterialSources("
             "'[{\"name\": \"red\", \"type\": \"PBS\"}, {\"name\": \"x\", \"type\": \"none\"}]', false)");
    EXPECT_EQ(evaluate("return result:getMaterialCount() .. result:getMaterial(0):getName() .. "
                       "result:getErrorCount()"),
              "1red1");
    EXPECT_EQ(
        evaluate("return #result:getError(0) > 0 and result:getError(1) == nil and result:getMaterial(1) "
                 "== nil"),
        "true");
    EXPECT_EQ(evaluate("local red = result:getMaterial(0) red.albedo_color = '0.5,0.25,0.125' "
                       "return ovVeldris.ContentLoader.saveObjectDeclaration(red, 'red.ovm')"),
              "true");
    EXPECT_TRUE(std::filesystem::exists(_folder.getPath("red.ovm")));
    EXPECT_EQ(evaluate("ovVeldris.MaterialManager.getInstance():erase('red') return result:getMaterial(0)"),
              "nil")
        << "the result must not hand out what is gone";
    EXPECT_EQ(evaluate("return ovVeldris.ContentLoader.loadMaterialDeclaration('red.ovm'):getMaterial(0)"
                       ".albedo_color._y"),
              "0.25");
}

TEST_F(ContentWrappersTest, projectsGoInAndOut) {
    evaluate("local m = ovVeldris.MaterialManager.getInstance():createOrRetrieve('red', 'pbs') "
             "m.albedo_color = '0.5,0.25,0.125' ovVeldris.ProjectLoader.save('p.ovs')");
    EXPECT_TRUE(std::filesystem::exists(_folder.getPath("p_materials.ovm"))) << getLogger().getText();
    EXPECT_EQ(evaluate("ovVeldris.MaterialManager.getInstance():erase('red') "
                       "project = ovVeldris.ProjectLoader.load('p.ovs') return project:getMaterialCount()"),
              "1");
    EXPECT_EQ(evaluate("return project:getMaterial(0).albedo_color._x"), "0.5");
}

TEST_F(ContentWrappersTest, projectsAreNamedSoThatAllOfThemIsFound) {
    const ovMemory::String absolute = _folder.getPath("p.ovs");
    for (const ovMemory::String& path :
         {absolute, ovMemory::String("./p.ovs"), ovMemory::String("p"), ovMemory::String("p.proj"),
          ovMemory::String("a.b/p.ovs"), ovMemory::String(".ovs"), ovMemory::String()})
        for (const char* function : {"save", "load"})
            EXPECT_EQ(evaluate(ovMemory::String("ovVeldris.ProjectLoader.") + function + "('" + path + "')"),
                      ovMemory::String("error: test:1: ovVeldris.ProjectLoader.") + function +
                          ": argument 1 (path) expected NAME.ovs from the working folder, without other "
                          "dots, got '" +
                          path + "'");
    EXPECT_FALSE(std::filesystem::exists(absolute));
}

TEST_F(ContentWrappersTest, problemsOfProjectsAreTold) {
    std::ofstream(_folder.getPath("p.ovs"))
        << R"({"resourceSet": 1, "textures": [{"name": "a", "file": "none.png"}]})";
    EXPECT_NE(evaluate("return ovVeldris.ProjectLoader.load('p.ovs'):getError(0)").find("none.png"),
              ovMemory::String::npos);
}

TEST_F(ContentWrappersTest, errorsOfDeclarationsNameTheEntry) {
    const char* START = "Material Declaration entry incomplete. ";
    evaluate(
        "result = ovVeldris.ContentLoader.processMaterialSources('[{\"name\": \"red\", \"type\": \"PBS\"}, "
        "{\"name\": \"blue\", \"type\": \"pbs\"}, {\"name\": \"green\"}]', false)");
    EXPECT_EQ(evaluate("return result:getError(0)"),
              START +
                  ovMemory::String("Type field does not map to a known type. (entry 2: 'blue' has the type "
                                   "'pbs'; the types are PBS)"));
    EXPECT_EQ(evaluate("return result:getError(1)"),
              START + ovMemory::String("There is no type field. (entry 3)"));
    EXPECT_EQ(evaluate("return ovVeldris.ContentLoader.processMaterialSources('{\"name\": 1}'):getError(0)"),
              START + ovMemory::String("There is no name field."));
}

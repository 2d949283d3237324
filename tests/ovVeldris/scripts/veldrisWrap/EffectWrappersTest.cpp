#include <ovVeldris/scripts/veldrisWrap/EffectWrappers.h>

#include <ovGraphics/compositor/Compositor.h>
#include <ovVeldris/complexEffects/ComplexEffectManager.h>
#include <ovVeldris/effects/EffectKind.h>
#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <scripts/veldrisWrap/VeldrisScripts.h>

namespace {

class EffectWrappersTest : public VeldrisScripts {
protected:
    ~EffectWrappersTest() override {
        for (const char* name : {"a", "b"}) {
            getSystem().getEffectManager()->erase(name);
            getSystem().getComplexEffectManager()->erase(name);
            getSystem().getMaterialManager()->erase(name);
        }
    }
};

} // namespace

TEST_F(EffectWrappersTest, managersAreTheSingletons) {
    for (const char* manager : {"EffectManager", "ComplexEffectManager", "MaterialManager"}) {
        const std::string instance = std::string("ovVeldris.") + manager + ".getInstance()";
        EXPECT_EQ(evaluate("return " + instance + ":isTheSingletonInstance()"), "true") << manager;
        EXPECT_EQ(evaluate("return " + instance + ":get('unknown')"), "nil") << manager;
    }
}

TEST_F(EffectWrappersTest, objectsAreMadeByKindAndFoundByName) {
    struct Row {
        const char* type;
        const char* kind;
    };
    for (const Row& row : {Row{"Effect", "fxaa"}, {"ComplexEffect", "blur"}, {"Material", "pbs"}}) {
        const std::string type = std::string("ovVeldris.") + row.type;
        evaluate("m = " + type + "Manager.getInstance() a = m:createOrRetrieve('a', '" + row.kind + "')");
        EXPECT_EQ(evaluate("return tostring(a) .. a:getName() .. a:getKind()"),
                  type + " 'a'a" + std::string(row.kind));
        EXPECT_EQ(evaluate("return m:get('a') == a and m:getByIndex(0) == a and m:getByIndex(1) == nil"),
                  "true");
        EXPECT_EQ(evaluate("m:rename('a', 'b') return m:get('a') == nil and m:get('b') == a and a:getName()"),
                  "b");
        EXPECT_EQ(evaluate("a = m:createOrRetrieve('a', '" + std::string(row.kind) +
                           "') m:erase('a') return a:load()"),
                  "error: test:1: " + type + ".load: argument 1 expected " + type + ", got " + type +
                      " 'a' is gone: it was destroyed");
    }
    EXPECT_EQ(evaluate("return ovVeldris.MaterialManager.getInstance():getCount()"), "1");
}

TEST_F(EffectWrappersTest, allKindsOfEffectsCanBeMade) {
    for (const ovVeldris::EffectKind& kind : ovVeldris::effectKinds()) {
        EXPECT_EQ(
            evaluate("local m = ovVeldris.EffectManager.getInstance() local e = m:createOrRetrieve('a', '" +
                     kind.getName() + "') local n = e:getSettingCount() m:erase('a') return n"),
            std::to_string(kind.settings().size()))
            << kind.getName();
    }
}

TEST_F(EffectWrappersTest, aWrongKindNamesTheRightOnes) {
    EXPECT_EQ(
        evaluate("ovVeldris.EffectManager.getInstance():createOrRetrieve('a', 'blur')"),
        "error: test:1: ovVeldris.EffectManager.createOrRetrieve: argument 3 (kind) expected one of "
        "atmosphere, film-grain, fxaa, image-environment, ssao, texture-copy, tone-mapping; got 'blur'");
    EXPECT_EQ(
        evaluate("ovVeldris.ComplexEffectManager.getInstance():createOrRetrieve('a', 'unknown')"),
        "error: test:1: ovVeldris.ComplexEffectManager.createOrRetrieve: argument 3 (kind) expected one "
        "of blur, dof; got 'unknown'");
    EXPECT_EQ(
        evaluate("local m = ovVeldris.EffectManager.getInstance() m:createOrRetrieve('a', 'fxaa') return "
                 "m:createOrRetrieve('a', 'ssao')"),
        "nil");
}

// The manager keeps the first of two effects of one name; a script must not be left with the other.
TEST_F(EffectWrappersTest, ofTwoWithOneNameTheOtherIsGone) {
    evaluate("m = ovVeldris.ComplexEffectManager.getInstance() a = m:createOrRetrieve('a', 'blur') "
             "b = m:createOrRetrieve('b', 'dof') m:rename('a', 'b')");
    EXPECT_EQ(evaluate("return m:get('b') == b and b:getKind()"), "dof");
    EXPECT_EQ(evaluate("return tostring(a)"), "ovVeldris.ComplexEffect 'a' is gone: it was destroyed");
}

TEST_F(EffectWrappersTest, effectsAreLoadedAndUnloaded) {
    evaluate("t = ovGraphics.TextureManager.getInstance():createOrRetrieve('t') t:load() "
             "a = ovVeldris.EffectManager.getInstance():createOrRetrieve('a', 'texture-copy') "
             "a.source_texture = t");
    EXPECT_EQ(evaluate("return a:getShader()"), "nil");
    EXPECT_EQ(evaluate("return a:load()"), "true") << getLogger().getText();
    EXPECT_EQ(evaluate("return a:getShader().loadState"), "3");
    EXPECT_EQ(evaluate("a:unload() return a:getShader().loadState"), "0");
    getGraphics().getTextureManager()->erase("t");
}

TEST_F(EffectWrappersTest, complexEffectsFillANodeAndTellTheirOutput) {
    ovGraphics::CompositorNode* node =
        getGraphics().getCompositorManager()->createOrRetrieve("c")->appendNode();
    evaluate("t = ovGraphics.TextureManager.getInstance():createOrRetrieve('t') t:load() "
             "a = ovVeldris.ComplexEffectManager.getInstance():createOrRetrieve('a', 'blur') "
             "a.source_texture = t "
             "a:setCompositorNode(ovGraphics.CompositorManager.getInstance():get('c'):getNode(0))");
    EXPECT_EQ(evaluate("return a:load()"), "true") << getLogger().getText();
    EXPECT_GT(node->getOperationsBlockCount(), 0u);
    EXPECT_EQ(evaluate("return a:getOutput().loadState"), "3");
    EXPECT_EQ(evaluate("a:unload()"), "nil");
    EXPECT_EQ(node->getOperationsBlockCount(), 0u);
    getGraphics().getCompositorManager()->erase("c");
    getGraphics().getTextureManager()->erase("t");
}

TEST_F(EffectWrappersTest, materialsAreLoaded) {
    evaluate("a = ovVeldris.MaterialManager.getInstance():createOrRetrieve('a', 'pbs')");
    EXPECT_EQ(evaluate("return a:load()"), "true") << getLogger().getText();
    EXPECT_EQ(evaluate("return a:getShader().loadState"), "3");
}

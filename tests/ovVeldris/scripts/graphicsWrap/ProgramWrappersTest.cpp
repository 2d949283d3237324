#include <ovVeldris/scripts/graphicsWrap/ProgramWrappers.h>

#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

class ProgramWrappersTest : public GraphicsScripts {
protected:
    ProgramWrappersTest() {
        evaluate("program = ovGraphics.ProgramManager.getInstance():createOrRetrieve('p') "
                 "shader = ovGraphics.ShaderManager.getInstance():createOrRetrieve('s') "
                 "texture = ovGraphics.TextureManager.getInstance():createOrRetrieve('t')");
    }
    ~ProgramWrappersTest() override {
        getGraphics().getShaderManager()->erase("s");
        getGraphics().getProgramManager()->erase("p");
        getGraphics().getTextureManager()->erase("t");
    }
};

} // namespace

TEST_F(ProgramWrappersTest, programsAreCompiled) {
    EXPECT_EQ(evaluate("program:setSources('void main() { gl_Position = vec4(0.0); }', "
                       "'layout(location = 0) out vec4 c; void main() { c = vec4(1.0); }') "
                       "return program:load()"),
              "true")
        << getLogger().getText();
    EXPECT_EQ(evaluate("return program.loadState"), "3");
    EXPECT_EQ(evaluate("program:unload() return program.loadState"), "0");
    EXPECT_EQ(evaluate("program:setSources('nonsense', '') return program:load()"), "false");
    EXPECT_NE(getLogger().getText().find("Could not load the program 'p'"), ovMemory::String::npos);
    EXPECT_EQ(evaluate("return program:getName()"), "p");
    EXPECT_EQ(evaluate("program.loadState = 3"),
              "error: test:1: ovGraphics.Program.loadState can be read, not set");
}

TEST_F(ProgramWrappersTest, theMacrosOfBothLanguagesCanBeAskedFor) {
    evaluate("program:setActivateCrossCompilerDefines(true)");
    EXPECT_TRUE(getGraphics().getProgramManager()->get("p")->getActivateCrossCompilerDefines());
}

TEST_F(ProgramWrappersTest, shadersBindProgramsAndTextures) {
    EXPECT_EQ(evaluate("return shader:getProgram()"), "nil");
    EXPECT_EQ(evaluate("shader:setProgram(program) return shader:getProgram() == program"), "true");
    EXPECT_EQ(evaluate("shader:setTexture(texture, 2, 0) return shader:getTexture(2, 0) == texture"), "true");
    EXPECT_EQ(evaluate("return shader:getTexture(1, 0)"), "nil");
    EXPECT_EQ(evaluate("shader:setTexture(nil, 2, 0) return shader:getTexture(2, 0)"), "nil");
    EXPECT_EQ(evaluate("return shader.loadState"), "0");
    EXPECT_EQ(evaluate("return shader:setTexture(program, 2, 0)"),
              "error: test:1: ovGraphics.Shader.setTexture: argument 2 (texture) expected ovGraphics.Texture "
              "or nil, got ovGraphics.Program");
}

#include <gtest/gtest.h>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <support/PictureTest.h>

using namespace ovGraphics;

namespace {

class ProgramTest : public PictureTest {
protected:
    uint64_t getCompiledCount() { return getGraphics().getProgramLibrary().getStatistics().compiled; }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, ProgramTest, bothLanguages(), languageName);

TEST_P(ProgramTest, anErrorNamesProgramStageAndLine) {
    struct Row {
        ovMemory::String vertex, pixel;
        ovMemory::StringView stage;
        ovMemory::StringView place;
    };
    const ovMemory::String wrong = "\n\nnonsense here;\n"; // on line 3
    for (const Row& row : {Row{ovMemory::String(QUAD_VERTEX_TEXT), wrong + UV_TEXT, "pixel", "source:3"},
                           Row{wrong + ovMemory::String(QUAD_VERTEX_TEXT), UV_TEXT, "vertex", "source:3"}}) {
        const auto program = makeUnloadedProgram(getGraphics(), row.pixel, row.vertex);
        EXPECT_FALSE(program->load());
        EXPECT_TRUE(program->isUnloaded());
        EXPECT_EQ(program->getLoadedProgram(), nullptr);
        ASSERT_EQ(getGraphicsLogger().messages.size(), 1u);
        const RecordingLogger::Message& message = getGraphicsLogger().messages[0];
        EXPECT_EQ(message.sender, "Program");
        EXPECT_TRUE(message.message.starts_with("Could not load the program 'TEST_PROGRAM': "));
        EXPECT_TRUE(getGraphicsLogger().contains(row.stage)) << message.message;
        EXPECT_TRUE(getGraphicsLogger().contains(row.place)) << message.message;
        getGraphicsLogger().messages.clear();
    }
}

TEST_P(ProgramTest, equalTextsAreCompiledOnce) {
    const uint64_t before = getCompiledCount();
    const ovMemory::String text = pixelText("ovFloat4(0.125, PIX_TEXCOORD, 1.0)");
    const auto first = makeUnloadedProgram(getGraphics(), text);
    const auto second = makeUnloadedProgram(getGraphics(), text);
    second->setName("ANOTHER_NAME");
    ASSERT_TRUE(first->load()) << getGraphicsLogger().getText();
    ASSERT_TRUE(second->load());
    EXPECT_EQ(getCompiledCount(), before + 1);
    EXPECT_EQ(first->getLoadedProgram(), second->getLoadedProgram());
    first->unload();
    EXPECT_NE(second->getLoadedProgram(), nullptr);
    EXPECT_EQ(second->getLoadedProgram()->users, 1u);
}

TEST_P(ProgramTest, textsSetAgainUnchangedCompileNothing) {
    const auto program = makeUnloadedProgram(getGraphics(), pixelText("ovFloat4(0.5, PIX_TEXCOORD, 1.0)"));
    ASSERT_TRUE(program->load()) << getGraphicsLogger().getText();
    const uint64_t before = getCompiledCount();
    const ProgramSourcesHolder same = program->getSources();
    program->setSources(same);
    program->setActivateCrossCompilerDefines(true);
    ASSERT_TRUE(program->load());
    EXPECT_EQ(getCompiledCount(), before);
    ProgramSourcesHolder withDefine = same;
    withDefine.addDefineMacroPixel("UNUSED", "1");
    program->setSources(withDefine);
    ASSERT_TRUE(program->load());
    EXPECT_EQ(getCompiledCount(), before + 1);
}

TEST_P(ProgramTest, definesSelectTheText) {
    const ovMemory::String text = pixelText("ovFloat4(VALUE, PIX_TEXCOORD, 1.0)", R"(
#ifndef SWITCH
#error the plain switch is missing
#endif
)");
    const auto program = makeUnloadedProgram(getGraphics(), text);
    ProgramSourcesHolder sources = program->getSources();
    sources.addDefineMacroPixel("SWITCH", "");
    sources.addDefineMacroPixel("HALF_VALUE", "1.5");
    sources.addDefineMacroPixel("VALUE", "(HALF_VALUE * 2.0)");
    program->setSources(sources);
    ASSERT_TRUE(program->load()) << getGraphicsLogger().getText();
    const auto shader = Shader::create(&getGraphics());
    shader->setProgram(program.get());
    ASSERT_TRUE(shader->load());
    EXPECT_EQ(draw(*shader, 2, 2).at(1, 1)[0], 3.0f);
}

TEST_P(ProgramTest, resetForgetsTheText) {
    const auto program = makeUnloadedProgram(getGraphics(), UV_TEXT);
    ASSERT_TRUE(program->load());
    program->reset();
    EXPECT_TRUE(program->isUnloaded());
    EXPECT_TRUE(program->getSources().getPixel().text.empty());
    EXPECT_FALSE(program->getActivateCrossCompilerDefines());
    EXPECT_FALSE(program->load()); // no text, no program
    EXPECT_EQ(getGraphicsLogger().messages.size(), 1u) << getGraphicsLogger().getText();
}

TEST_P(ProgramTest, outlivesItsSystem) {
    ovMemory::UniquePtr<Program> program;
    RecordingLogger logger;
    {
        System system;
        ASSERT_TRUE(system.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &logger)));
        program = makeUnloadedProgram(system, UV_TEXT);
        ASSERT_TRUE(program->load()) << logger.getText();
        EXPECT_EQ(program->getText().language, getLanguage());
    }
    EXPECT_TRUE(program->isUnloaded());
    EXPECT_FALSE(program->load());
    EXPECT_EQ(program->getText().pixel.text, UV_TEXT);
    EXPECT_EQ(logger.getText(), "");
}

#include <veldris/programs/ProgramList.h>

#include "veldris/commands/ModelFile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/effects/Effect.h>
#include <ovVeldris/effects/EffectKind.h>
#include <set>
#include <veldris/Session.h>

namespace {

using ovMemory::String;

String textOf(const ovGraphics::shading::ProgramText& text) {
    return getFullText(text, ovGraphics::shading::STAGE::VERTEX) +
           getFullText(text, ovGraphics::shading::STAGE::PIXEL);
}

class ProgramListTest : public testing::Test {
protected:
    ProgramListTest() {
        veldris::DrawingOptions options;
        options.device = "software";
        options.noCache = true;
        String error;
        EXPECT_TRUE(_session.open(options, error)) << error;
    }

    static std::multiset<String> namesOf(const veldris::ProgramList& programs) {
        std::multiset<String> names;
        for (const veldris::GeneratedProgram& program : programs.get())
            names.insert(program.text.name);
        return names;
    }

    veldris::Session _session;
    String _error;
};

TEST_F(ProgramListTest, passesAndToolsAreAllThere) {
    veldris::ProgramList programs(_session);
    ASSERT_TRUE(programs.addPasses(_error)) << _error;
    EXPECT_EQ(
        namesOf(programs),
        (std::multiset<String>{"ORVANE_DECODE_SRGB", "ORVANE_DEPTH", "ORVANE_DEPTH", "ORVANE_ENCODE_SRGB",
                               "ORVANE_GEOMETRY", "ORVANE_GEOMETRY", "VELDRIS_AVERAGE_SAMPLES",
                               "VELDRIS_AVERAGE_SAMPLES_ALPHA", "VELDRIS_COUNT_SAMPLES",
                               "VELDRIS_DIVIDE_BY_COVERAGE", "VELDRIS_PICK_DEPTH", "VELDRIS_SHADOW_GROUND"}));
    const std::size_t passes = programs.get().size();
    ASSERT_TRUE(programs.addTools(_error)) << _error;
    EXPECT_EQ(programs.get().size(), passes + 3) << "two shapes of what is filtered, and unwrapping";
}

TEST_F(ProgramListTest, materialsComeOneSettingAfterAnother) {
    veldris::ProgramList programs(_session);
    ASSERT_TRUE(programs.addMaterials(_error)) << _error;
    std::set<String> texts;
    for (const veldris::GeneratedProgram& program : programs.get()) {
        EXPECT_TRUE(program.text.name.starts_with("ORVANE_PBS_PROGRAM_")) << program.from;
        EXPECT_TRUE(program.from.starts_with("material ")) << program.from;
        EXPECT_EQ(program.from.find("-channel"), String::npos) << program.from;
        texts.insert(textOf(program.text));
    }
    EXPECT_EQ(texts.size(), programs.get().size()) << "each has a text of its own";
    const auto isListed = [&](const char* from) {
        return std::ranges::count(programs.get(), from, &veldris::GeneratedProgram::from) == 1;
    };
    for (const char* from :
         {"material without textures", "material with normal-map-texture",
          "material with environment-texture", "material with shadow-map-texture",
          "material with all textures", "material with all textures, pbs-model=specular-glossiness",
          "material with all textures, combine-light-and-environment=true",
          "material with all textures, environment-texture-is-cube-by-default=false"})
        EXPECT_TRUE(isListed(from)) << from;
}

TEST_F(ProgramListTest, modelsNameTheirMaterials) {
    const TemporaryFolder folder;
    veldris::ProgramList programs(_session);
    ovMemory::Buffer<String> warnings;
    ASSERT_TRUE(programs.addModel(writeQuad(folder), warnings, _error)) << _error;
    ASSERT_EQ(programs.get().size(), 1u);
    EXPECT_EQ(programs.get()[0].from, "material 'paint'");
    EXPECT_FALSE(programs.addModel("nowhere.glb", warnings, _error));
    EXPECT_NE(_error.find("nowhere.glb"), String::npos);
}

// The list draws the atmosphere's tables small. Its programs are still those of an application, which leaves
// the tables as they are.
TEST_F(ProgramListTest, smallTablesChangeNoText) {
    veldris::ProgramList programs(_session);
    ASSERT_TRUE(programs.addEffects("atmosphere", _error)) << _error;
    std::set<String> listed;
    for (const veldris::GeneratedProgram& program : programs.get())
        listed.insert(textOf(program.text));

    std::set<String> expected;
    _session.getGraphics().getProgramLibrary().setObserver(
        [&](const ovGraphics::shading::ProgramText& text) { expected.insert(textOf(text)); });
    const auto effect =
        ovVeldris::findEffectKind(ovVeldris::EFFECT_TYPE::ATMOSPHERE)->create(&_session.getSystem());
    ASSERT_TRUE(effect->load());
    EXPECT_EQ(expected.size(), 2u) << "of the tables and of the picture";
    EXPECT_TRUE(std::ranges::includes(listed, expected));
}

TEST_F(ProgramListTest, whatIsLoadedLaterIsNotWatched) {
    { const veldris::ProgramList programs(_session); }
    veldris::ProgramList programs(_session);
    ASSERT_TRUE(programs.addEffects("texture-copy", _error)) << _error;
    ASSERT_TRUE(programs.addEffects("texture-copy", _error)) << _error;
    EXPECT_EQ(programs.get().size(), 1u) << "each once";
    EXPECT_EQ(programs.get()[0].from, "texture-copy");
}

} // namespace

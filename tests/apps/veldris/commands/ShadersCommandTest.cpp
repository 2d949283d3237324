#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"

#include <map>
#include <set>
#include <veldris/effects/EffectPlan.h>

namespace {

auto startsWith(ovMemory::StringView beginning) {
    return [beginning](const ovMemory::String& text) { return text.starts_with(beginning); };
}

TEST(ShadersCommandTest, listsEveryProgramOnceWithoutWarnings) {
    for (const char* language : {"glsl", "hlsl"}) {
        const Outcome outcome =
            runVeldris({"shaders", "--device", "software", "--no-cache", "--json", "--language", language});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "");
        const auto report = parseJson(outcome);
        std::multiset<ovMemory::String> names; // of effects
        std::map<ovMemory::String, int> others;
        for (const auto& program : report["programs"].GetArray()) {
            const ovMemory::String from = program["from"].GetString();
            const ovMemory::String kind = from.substr(0, from.find(' '));
            if (kind == "material" || kind == "pass" || kind == "tool")
                ++others[kind];
            else {
                names.insert(program["program"].GetString());
                ovMemory::Buffer<veldris::PlannedEffect> effects;
                ovMemory::String error;
                EXPECT_EQ(veldris::planEffects(from, effects, error),
                          from.find(" without a scene") == from.npos)
                    << "a line can be written as it is: " << error;
            }
            EXPECT_STREQ(program["warnings"].GetString(), "") << from;
        }
        // Ids of image environments: 1 cube, 2 map by longitude and latitude, 4 flat.
        // Ids of tone mapping: one bit for the operator, 8 for luminance.
        std::multiset<ovMemory::String> expected = {"ORVANE_IMAGE_ENVIRONMENT_PROGRAM_1",
                                                    "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_2",
                                                    "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_4",
                                                    "ORVANE_TEX_COPY_PROGRAM_0",
                                                    "ORVANE_TONE_PROGRAM_1",
                                                    "ORVANE_TONE_PROGRAM_2",
                                                    "ORVANE_TONE_PROGRAM_4",
                                                    "ORVANE_TONE_PROGRAM_9",
                                                    "ORVANE_TONE_PROGRAM_10",
                                                    "ORVANE_TONE_PROGRAM_12"};
        // Ids of the blur: the radius, which is 5, and two bits. Of depth of field: the strength and a bit.
        for (const uint64_t bits : {0u, 1u, 2u, 3u})
            for (const char* pass : {"_H", "_V"})
                expected.insert("ORVANE_BLUR_PROGRAM_" + std::to_string((uint64_t{5} << 32) + bits) + pass);
        for (const uint64_t bits : {0u, 1u})
            for (const char* pass : {"_DOWN", "_BLEND"})
                expected.insert("ORVANE_DOF_PROGRAM_" + std::to_string((uint64_t{3} << 32) + bits) + pass);
        for (const char* pass : {"_H", "_V"})
            expected.insert("ORVANE_BLUR_PROGRAM_" + std::to_string((uint64_t{3} << 32) + 2) + pass);
        // Ids of film grain: 2 for either switch or both, which have three texts on purpose.
        for (const char* id : {"0", "2", "2", "2"})
            expected.insert(ovMemory::String("ORVANE_FILM_GRAIN_PROGRAM_") + id);
        // Ids of FXAA: the preset. Taking green for the luminance has another text and, on purpose, the same
        // id.
        for (unsigned int i = 0; i < 2 * 17; ++i)
            expected.insert("ORVANE_FXAA_PROGRAM_" + std::to_string(i / 2));
        // Ids of the atmosphere are hashes. By itself, over depth, and with shadows: plain, with each of
        // three switches, and where there are shadows with each of three other methods and their own switch.
        EXPECT_EQ(std::erase_if(names, startsWith("ORVANE_ATMOSPHERE_PROGRAM_")), 4 + 4 + 8);
        EXPECT_EQ(std::erase_if(names, startsWith("ORVANE_ATMOSPHERE_LUT_PROGRAM_")), 1);
        // Ids of occlusion: bits, see SsaoIdGenerator. Of depth that is linear or not, of positions, and of
        // positions with normals, whose text is another one under the same id on purpose; each with alpha or
        // without.
        EXPECT_EQ(std::erase_if(names, startsWith("ORVANE_SSAO_PROGRAM_")), 2 * (2 + 1 + 1));
        EXPECT_EQ(names, expected);
        EXPECT_EQ(others["pass"], 12);
        EXPECT_EQ(others["tool"], 3);
        EXPECT_GT(others["material"], 25);
    }
}

TEST(ShadersCommandTest, printsAProgramAsTheCompilerSeesIt) {
    const ovMemory::Buffer<ovMemory::String> base = {"shaders",    "--device",    "software",
                                                     "--no-cache", "--print",     "ORVANE_TONE_PROGRAM_9",
                                                     "--effect",   "tone-mapping"};
    const Outcome source = runVeldris(base);
    ASSERT_EQ(source.status, 0) << source.error;
    for (const char* part :
         {"vertex stage", "pixel stage", "#define REINHARD", "#define LUMINANCE", "samplingVars"})
        EXPECT_NE(source.output.find(part), ovMemory::String::npos) << part;

    auto translated = base;
    translated.insert(translated.end(), {"--translated", "--stage", "pixel", "--language", "hlsl"});
    const Outcome device = runVeldris(translated);
    ASSERT_EQ(device.status, 0) << device.error;
    EXPECT_NE(device.output.find("#version 450"), ovMemory::String::npos);
    EXPECT_EQ(device.output.find("vertex stage"), ovMemory::String::npos);
}

TEST(ShadersCommandTest, printsEveryProgramOfAName) {
    const Outcome both =
        runVeldris({"shaders", "--device", "software", "--no-cache", "--print", "ORVANE_DEPTH"});
    ASSERT_EQ(both.status, 0) << both.error;
    for (const char* heading : {"// pixel stage of ORVANE_DEPTH, pass of shadows\n",
                                "// pixel stage of ORVANE_DEPTH, pass of shadows with holes\n"})
        EXPECT_NE(both.output.find(heading), ovMemory::String::npos) << heading;
}

TEST(ShadersCommandTest, listsTheProgramsOfAModelsMaterials) {
    const TemporaryFolder folder;
    const Outcome outcome = runVeldris({"shaders", writeQuad(folder), "--device", "software", "--no-cache",
                                        "--json", "--effect", "texture-copy"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    ASSERT_EQ(report["programs"].Size(), 2u);
    EXPECT_STREQ(report["programs"][1]["from"].GetString(), "material 'paint'");
    EXPECT_STREQ(report["programs"][1]["warnings"].GetString(), "");
    EXPECT_EQ(runVeldris({"shaders", "nowhere.glb", "--device", "software", "--no-cache", "--effect",
                          "texture-copy"})
                  .status,
              1);
}

TEST(ShadersCommandTest, unknownNamesFail) {
    const Outcome effect = runVeldris({"shaders", "--effect", "sharpen"});
    EXPECT_EQ(effect.status, 1);
    EXPECT_NE(effect.error.find("the effects are"), ovMemory::String::npos);
    const Outcome program = runVeldris({"shaders", "--device", "software", "--no-cache", "--effect",
                                        "tone-mapping", "--print", "ORVANE_TONEPROGRAM_9"});
    EXPECT_EQ(program.status, 1);
    EXPECT_EQ(program.error,
              "veldris: nothing here generates a program 'ORVANE_TONEPROGRAM_9'; 'veldris shaders' "
              "lists them. Did you mean 'ORVANE_TONE_PROGRAM_9'?\n");
}

} // namespace

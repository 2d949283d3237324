#include <veldris/usage/Completion.h>

#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/console/ProgramTesting.h"

namespace {

using ovMemory::String;

/// What bash offers for the last word of a line.
String offered(const TemporaryFolder& folder, const String& words) {
    std::ofstream(folder.getPath("ask.bash"))
        << "source <(" OV_PROGRAM " completion bash)\nCOMP_WORDS=(" << words
        << ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_veldris\n"
           "echo \"${COMPREPLY[*]}\" >offered\n";
    EXPECT_EQ(runShell("cd " + folder.getPath() + "; bash ask.bash"), 0) << words;
    std::ifstream file(folder.getPath("offered"));
    String line;
    std::getline(file, line);
    return line;
}

TEST(CompletionTest, bashOffersWhatFits) {
    const TemporaryFolder folder;
    const std::pair<const char*, const char*> CASES[] = {
        {"veldris re", "render"},
        {"veldris render --li", "--light --light-color"},
        {"veldris render --language ''", "glsl hlsl"},
        {"veldris render --language g", "glsl"},
        {"veldris render --shadows --no-g", "--no-ground"},
        {"veldris bake ''", "prefilter irradiance cubemap spherical --help --help-all"},
        {"veldris bake irradiance --coe", "--coefficients"},
        {"veldris bake prefilter --coe", ""},
        {"veldris completion z", "zsh"},
        {"veldris render model.glb -o pic", ""}, // the shell's own completion of files takes over
    };
    for (const auto& [words, expected] : CASES)
        EXPECT_EQ(offered(folder, words), expected) << words;
}

TEST(CompletionTest, zshKnowsEveryOption) {
    const String script = runVeldris({"completion", "zsh"}).output;
    EXPECT_TRUE(script.starts_with("#compdef veldris\n"));
    for (const char* part :
         {"'--language=[shader language that is compiled\\: glsl or hlsl]:value:(glsl hlsl)'", "'--shadows[",
          "'-o[", "(prefilter irradiance cubemap spherical)", "(bash zsh)",
          "\"veldris bake prefilter\") called=\"veldris bake prefilter\" ;;"})
        EXPECT_NE(script.find(part), String::npos) << part;
    // zsh keeps its search path in "path".
    EXPECT_EQ(script.find("$path"), String::npos);
}

} // namespace

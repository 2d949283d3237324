#include <veldris/usage/UsageMistakes.h>

#include "veldris/commands/CommandTesting.h"

namespace {

using ovMemory::String;

const String ALL = "apply, bake, check, completion, demo, help, info, manual, materials, project, render, "
                   "run, samples, shaders, sky";

TEST(UsageMistakesTest, theMistypedNameIsToldWithTheNearest) {
    const struct {
        ovMemory::Buffer<String> arguments;
        String error;
    } CASES[] = {
        {{"aply"}, "veldris: veldris has no subcommand 'aply'; it has " + ALL + ". Did you mean 'apply'?\n"},
        {{"paint"}, "veldris: veldris has no subcommand 'paint'; it has " + ALL + ".\n"},
        {{"apply", "sky.exr", "--efects", "x"},
         "veldris: veldris apply has no option '--efects'; 'veldris help apply' lists them. Did you mean "
         "'--effects'?\n"},
        {{"bake", "prefilter", "sky.exr", "--sise=8", "sky.dds"},
         "veldris: veldris bake prefilter has no option '--sise'; 'veldris help bake prefilter' lists them. "
         "Did you mean '--size'?\n"},
        {{"bake", "prefilte"},
         "veldris: veldris bake has no subcommand 'prefilte'; it has prefilter, irradiance, cubemap, "
         "spherical. Did you mean 'prefilter'?\n"},
        {{"render", "a.glb", "-x"},
         "veldris: veldris render has no option '-x'; 'veldris help render' lists them.\n"},
        // A value that begins with a dash is no option.
        {{"render", "--light", "-1,0,0", "--camera=-1,0", "--smaples", "4"},
         "veldris: veldris render has no option '--smaples'; 'veldris help render' lists them. Did you mean "
         "'--samples'?\n"},
        // Behind two dashes nothing is an option.
        {{"render", "--", "--smaples"},
         "veldris: veldris render: --output is required; 'veldris help render' tells more.\n"},
        {{"apply"}, "veldris: veldris apply: IMAGE is required; 'veldris help apply' tells more.\n"},
        {{"info", "--language", "cg"},
         "veldris: veldris info: --language: cg not in {glsl,hlsl}; 'veldris help info' tells more.\n"},
        {{}, "veldris: veldris needs a subcommand: " + ALL + "; 'veldris help' tells more.\n"},
        {{"bake"},
         "veldris: veldris bake needs a subcommand: prefilter, irradiance, cubemap, spherical; 'veldris help "
         "bake' tells more.\n"},
        {{"help", "bakee"},
         "veldris: veldris has no subcommand 'bakee'; it has " + ALL + ". Did you mean 'bake'?\n"},
        {{"help", "info", "more"},
         "veldris: veldris info has no subcommands; 'veldris help info' shows its help.\n"},
    };
    for (const auto& test : CASES) {
        const Outcome outcome = runVeldris(test.arguments);
        EXPECT_EQ(outcome.status, 2) << test.error;
        EXPECT_EQ(outcome.error, test.error);
        EXPECT_EQ(outcome.output, "");
    }
}

TEST(UsageMistakesTest, helpOfASubcommandIsWhatItsOptionShows) {
    EXPECT_EQ(runVeldris({"help", "apply"}).output, runVeldris({"apply", "--help"}).output);
    EXPECT_EQ(runVeldris({"help", "bake", "prefilter"}).output,
              runVeldris({"bake", "prefilter", "--help"}).output);
    EXPECT_EQ(runVeldris({"help"}).output, runVeldris({"--help"}).output);
}

TEST(UsageMistakesTest, withJsonMistakesAreJson) {
    Outcome outcome = runVeldris({"apply", "a.png", "--efects", "x", "--json"});
    EXPECT_EQ(outcome.status, 2);
    outcome.output = outcome.error;
    const rapidjson::Document message = parseJson(outcome);
    EXPECT_STREQ(message["error"].GetString(),
                 "veldris apply has no option '--efects'; 'veldris help apply' lists them. Did you mean "
                 "'--effects'?");
}

} // namespace

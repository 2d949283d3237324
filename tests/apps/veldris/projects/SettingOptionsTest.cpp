#include <veldris/projects/SettingOptions.h>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>
#include <veldris/commands/Commands.h>
#include <veldris/commands/RenderOptions.h>

using namespace veldris;
using ovMemory::Buffer;
using ovMemory::String;
using Settings = Buffer<ProjectSetting>;

namespace {

/// The options that a project keeps, as a command has them.
struct KeptOptions {
    KeptOptions() {
        addSceneOptions(app, options);
        addTimeOption(app, options.drawing.time);
    }
    CLI::App app;
    RenderOptions options;
};

} // namespace

TEST(SettingOptionsTest, nameOptionsThatThereAre) {
    const KeptOptions kept;
    for (const ovMemory::StringView name : projectSettingNames())
        EXPECT_NE(kept.app.get_option_no_throw("--" + String(name)), nullptr) << name;
}

TEST(SettingOptionsTest, keepWhatWasGivenAndGiveItBack) {
    KeptOptions given;
    given.app.parse("--camera 10,20 --shadows --no-ground --environment sky.exr --samples 9 --time 2.5",
                    false);
    const Settings settings = givenSettings(given.app);
    EXPECT_EQ(settings, (Settings{{"environment", "sky.exr"},
                                  {"camera", "10,20"},
                                  {"shadows", "true"},
                                  {"ground", "false"},
                                  {"samples", "9"},
                                  {"time", "2.5"}}));
    Buffer<String> problems;
    const String text = writeSettings(settings);
    EXPECT_EQ(readSettings(text, problems), settings);
    EXPECT_EQ(writeSettings(readSettings(text, problems)), text);

    KeptOptions other;
    other.app.parse("--samples 4", false);
    EXPECT_TRUE(applySettings(settings, "/p", other.app).empty());
    EXPECT_EQ(other.options.camera, "10,20");
    EXPECT_TRUE(other.options.shadows);
    EXPECT_LT(other.options.ground, 0);
    EXPECT_EQ(other.options.environment, "/p/sky.exr");
    EXPECT_EQ(other.options.samples, 4u) << "what the user gives counts";
    EXPECT_EQ(other.options.drawing.time, 2.5);
}

TEST(SettingOptionsTest, sayWhatAnOptionDoesNotTake) {
    KeptOptions kept;
    const Buffer<String> problems = applySettings(
        {{"samples", "many"}, {"samples", "0"}, {"time", "-1"}, {"camera", "0,0"}}, "/p", kept.app);
    EXPECT_EQ(problems.size(), 3u);
    EXPECT_EQ(problems.front().rfind("\"samples\" is 'many': ", 0), 0u) << problems.front();
    EXPECT_EQ(kept.options.camera, "0,0");
}

TEST(SettingOptionsTest, tellFilesFromSkies) {
    for (const char* const sky : {"sky", "none", "atmosphere:sun=1,2"})
        EXPECT_FALSE(isEnvironmentFile(sky)) << sky;
    EXPECT_TRUE(isEnvironmentFile("sky.exr"));
}

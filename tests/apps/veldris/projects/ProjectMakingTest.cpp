#include <veldris/projects/ProjectMaking.h>

#include <veldris/projects/ProjectTesting.h>

using namespace veldris;
using ovMemory::String;

TEST(ProjectMakingTest, writesOverNoProject) {
    const QuadProject project;
    EXPECT_EQ(prepareProject(project.files).error, "there is a project already: '" + project.files.set +
                                                       "'; choose another name, or remove its files.");
}

TEST(ProjectMakingTest, writesWhatTheLibraryWritesWithoutAnything) {
    const TemporaryFolder folder;
    ProjectFiles files;
    String error;
    ASSERT_TRUE(ProjectFiles::find(folder.getPath("x.ovs"), files, error));
    ASSERT_TRUE(writeEmptyProject(files));
    EXPECT_EQ(QuadProject::read(files.set), "{\n    \"resourceSet\": 1\n}\n");
    EXPECT_EQ(QuadProject::read(files.materials), "{}\n");
    ASSERT_TRUE(writeScriptsSwitch(files));
    EXPECT_EQ(QuadProject::read(files.scriptsSwitch), QuadProject::read(files.scripts));
    ASSERT_TRUE(writeProjectSettings(files, {}));
    EXPECT_FALSE(std::filesystem::exists(files.settings));
}

TEST(ProjectMakingTest, takesEnvironmentsFromElsewhereAlong) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    ProjectFiles files;
    String error;
    ASSERT_TRUE(ProjectFiles::find(folder.getPath("x.ovs"), files, error));
    const auto settingOf = [&](const String& environment) {
        const ovMemory::Result written = writeProjectSettings(files, {{"environment", environment}});
        return written ? QuadProject::read(files.settings) : written.error;
    };
    std::filesystem::create_directory(folder.getPath("skies"));
    QuadProject::write(folder.getPath("skies/own.exr"), "own");
    QuadProject::write(elsewhere.getPath("sky.exr"), "sky");
    EXPECT_EQ(settingOf(folder.getPath("skies/own.exr")), "{\n    \"environment\": \"skies/own.exr\"\n}\n");
    EXPECT_EQ(settingOf("sky"), "{\n    \"environment\": \"sky\"\n}\n");
    EXPECT_EQ(settingOf(elsewhere.getPath("sky.exr")), "{\n    \"environment\": \"sky.exr\"\n}\n");
    EXPECT_EQ(QuadProject::read(folder.getPath("sky.exr")), "sky");
    EXPECT_NE(settingOf(elsewhere.getPath("sky.exr")).find("cannot be copied"), String::npos)
        << "it is in the way";
    for (const char* const face : {"px", "nx", "py", "ny", "pz", "nz"})
        QuadProject::write(elsewhere.getPath(String("f_") + face + ".png"), face);
    EXPECT_EQ(settingOf(elsewhere.getPath("f_{face}.png")), "{\n    \"environment\": \"f_{face}.png\"\n}\n");
    EXPECT_EQ(QuadProject::read(folder.getPath("f_nz.png")), "nz");
}

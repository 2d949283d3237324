#include <veldris/projects/ProjectFiles.h>

#include <fstream>
#include <ovResources/ResourceManager.h>
#include <support/TemporaryFolder.h>

using veldris::ProjectFiles;

TEST(ProjectFilesTest, areNamedAsTheLibraryNamesThem) {
    ProjectFiles files;
    ovMemory::String error;
    ASSERT_TRUE(ProjectFiles::find("a.b/demo.ovs", files, error)) << "dots of folders do no harm";
    EXPECT_EQ(files.folder, "a.b");
    EXPECT_EQ(files.name, "demo.ovs");
    EXPECT_EQ(files.set, "a.b/demo.ovs");
    EXPECT_EQ(files.data, "a.b/demo.ovs.data");
    EXPECT_EQ(files.materials, "a.b/demo_materials.ovm");
    EXPECT_EQ(files.scripts, "a.b/demo_scripts.ovscripts");
    EXPECT_EQ(files.scriptsSwitch, "a.b/demo_scripts.ovScripts");
    EXPECT_EQ(files.settings, "a.b/demo_render.json");
    ASSERT_TRUE(ProjectFiles::find("demo.ovs", files, error));
    EXPECT_EQ(files.folder, ".");
}

TEST(ProjectFilesTest, refuseNamesThatAreSavedAndReadElsewhere) {
    const std::pair<const char*, const char*> CASES[] = {
        {"demo.proj",
         "the project 'demo.proj' is not named NAME.ovs with one dot: its set would be written to "
         "'demo.proj' and read from 'demo.ovs'; name it demo.ovs."},
        {"p/my.demo.ovs",
         "the project 'p/my.demo.ovs' is not named NAME.ovs with one dot: its set would be written to "
         "'my.demo.ovs' and read from 'my.ovs'; name it my.ovs."},
        {"demo",
         "the project 'demo' is not named NAME.ovs with one dot: its set would be written to 'demo' and read "
         "from 'demo.ovs'; name it demo.ovs."},
        {".ovs",
         "the project '.ovs' is not named NAME.ovs with one dot: its set would be written to '.ovs' and read "
         "from '.ovs'; name it project.ovs."},
        {"", "the project '' is not named NAME.ovs with one dot: its set would be written to '' and read "
             "from '.ovs'; "
             "name it project.ovs."},
    };
    for (const auto& [path, expected] : CASES) {
        ProjectFiles files;
        ovMemory::String error;
        EXPECT_FALSE(ProjectFiles::find(path, files, error));
        EXPECT_EQ(error, expected);
    }
}

TEST(ProjectFilesTest, listWhatIsThere) {
    const TemporaryFolder folder;
    ProjectFiles files;
    ovMemory::String error;
    ASSERT_TRUE(ProjectFiles::find(folder.getPath("x.ovs"), files, error));
    EXPECT_TRUE(files.listExisting().empty());
    std::ofstream(files.scripts) << "{}";
    std::ofstream(files.set) << "{}";
    EXPECT_EQ(files.listExisting(), (ovMemory::Buffer<ovMemory::String>{files.set, files.scripts}));
}

TEST(ProjectFilesTest, lendTheirFolderToTheLibrary) {
    const TemporaryFolder folder;
    ProjectFiles files;
    ovMemory::String error;
    ASSERT_TRUE(ProjectFiles::find(folder.getPath("x.ovs"), files, error));
    const auto& resources = *ovResources::ResourceManager::getInstance();
    const ovMemory::String before = resources.getWorkingPath();
    {
        const veldris::ProjectFolder lent(files);
        EXPECT_EQ(resources.getAbsoluteFromWorkingDir(files.name), files.set);
    }
    EXPECT_EQ(resources.getWorkingPath(), before);
}

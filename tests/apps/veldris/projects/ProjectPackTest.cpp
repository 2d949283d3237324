#include <veldris/projects/ProjectPack.h>

#include <veldris/projects/ProjectTesting.h>

using namespace veldris;
using ovMemory::Buffer;
using ovMemory::String;

TEST(ProjectPackTest, copiesAllThatTheProjectNames) {
    const QuadProject project;
    const TemporaryFolder elsewhere;
    std::filesystem::create_directory(project.files.folder + "/pictures");
    std::filesystem::copy_file(project.folder.getPath("quad.png"), project.files.folder + "/pictures/a.png");
    QuadProject::edit(project.files.set, "\"textures\": [",
                      R"("textures": [{"name": "a", "file": "pictures/a.png"},)");
    QuadProject::write(project.files.folder + "/s.lua", "return 1");
    QuadProject::write(project.files.scripts, R"({"scripts": [{"name": "s", "file": "s.lua"}]})");
    QuadProject::write(project.folder.getPath("sky.exr"), "sky");
    QuadProject::write(project.files.settings, R"({"environment": "../sky.exr", "size": "8x8"})");
    Buffer<String> copied;
    const ovMemory::Result packed = packProject(project.files, elsewhere.getPath("q"), copied);
    ASSERT_TRUE(packed) << packed.error;
    const auto in = [&](const char* name) { return elsewhere.getPath(String("q/") + name); };
    EXPECT_EQ(copied,
              (Buffer<String>{in("x.ovs"), in("x.ovs.data"), in("x_materials.ovm"), in("x_scripts.ovscripts"),
                              in("pictures/a.png"), in("s.lua"), in("sky.exr"), in("x_render.json")}));
    EXPECT_EQ(QuadProject::read(in("x.ovs")), QuadProject::read(project.files.set));
    EXPECT_EQ(QuadProject::read(in("sky.exr")), "sky");
    EXPECT_EQ(QuadProject::read(in("x_render.json")),
              "{\n    \"environment\": \"sky.exr\",\n    \"size\": \"8x8\"\n}\n");
}

TEST(ProjectPackTest, tellsWhatIsMissingOrInTheWay) {
    const QuadProject project;
    const TemporaryFolder elsewhere;
    Buffer<String> copied;
    const auto errorOf = [&](const String& folder) {
        return packProject(project.files, folder, copied).error;
    };
    EXPECT_EQ(errorOf(project.files.folder),
              "the project is in '" + project.files.folder + "' already; give another folder.");
    QuadProject::write(elsewhere.getPath("x.ovs.data"), "");
    EXPECT_EQ(errorOf(elsewhere.getPath()), "the file '" + project.files.data + "' cannot be copied to '" +
                                                elsewhere.getPath("x.ovs.data") + "': File exists.");
    QuadProject::edit(project.files.set, "\"textures\": [",
                      R"("textures": [{"name": "a", "file": "../quad.png"},)");
    EXPECT_EQ(errorOf(elsewhere.getPath("q")),
              "the file '../quad.png' does not lie inside the folder of the project; copy it there.");
    std::filesystem::remove(project.files.set);
    EXPECT_EQ(errorOf(elsewhere.getPath("r")), "there is no project '" + project.files.set + "'.");
}

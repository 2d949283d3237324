#include <veldris/projects/ProjectCheck.h>

#include <veldris/projects/ProjectTesting.h>

using namespace veldris;
using ovMemory::String;

namespace {

/// All problems, a line each: the end of the file's name, the line, and the message.
String problemsOf(const ProjectFiles& files) {
    String text;
    for (const ProjectProblem& found : checkProject(files))
        text += found.file.substr(files.folder.size() + 1) + ":" + std::to_string(found.problem.line) + ": " +
                found.problem.message + "\n";
    return text;
}

} // namespace

TEST(ProjectCheckTest, findsNothingInWhatTheProgramWrites) {
    const QuadProject project;
    ASSERT_TRUE(writeScriptsSwitch(project.files));
    EXPECT_EQ(problemsOf(project.files), "");
}

TEST(ProjectCheckTest, tellsScriptsThatAreNotSeen) {
    const QuadProject project;
    EXPECT_EQ(problemsOf(project.files), "") << "there is no script";
    QuadProject::write(project.files.scripts, R"({"scripts": [{"name": "a", "source": ""}]})");
    EXPECT_EQ(problemsOf(project.files), "x_scripts.ovscripts:0: this file is not seen on load: the library "
                                         "asks for 'x_scripts.ovScripts', spelt "
                                         "with a large S, before it reads the scripts. Make an empty file of "
                                         "that name, or make the project with "
                                         "veldris project new --scripts.\n");
    std::filesystem::rename(project.files.scripts, project.files.scriptsSwitch);
    EXPECT_EQ(problemsOf(project.files), "x_scripts.ovScripts:0: there is no 'x_scripts.ovscripts' beside "
                                         "it, which the scripts are read from.\n");
}

TEST(ProjectCheckTest, tellsNamesThatNobodyHas) {
    const QuadProject project;
    ASSERT_TRUE(writeScriptsSwitch(project.files));
    QuadProject::edit(project.files.materials, "\"name\": \"paint\"", "\"name\": \"pain\"");
    QuadProject::edit(project.files.materials, "\"name\": \"texture 0\"", "\"name\": \"texture 9\"");
    EXPECT_EQ(problemsOf(project.files), "x_materials.ovm:3: material \"pain\": the set has no texture "
                                         "\"texture 9\". Did you mean 'texture 0'?\n"
                                         "x.ovs:0: entities are drawn with the material 'paint', and the "
                                         "project has none of that name. Did you "
                                         "mean 'pain'?\n");
}

TEST(ProjectCheckTest, tellsMaterialsThatNobodyReads) {
    const QuadProject project;
    ASSERT_TRUE(writeScriptsSwitch(project.files));
    QuadProject::write(project.files.set, R"({"resourceSet": 1})");
    for (const char* const text : {"[]", R"({"name": "a", "type": "PBS"})"}) {
        QuadProject::write(project.files.materials, text);
        EXPECT_EQ(problemsOf(project.files), "x_materials.ovm:1: there is no member \"materials\" with an "
                                             "array, which the materials of a project "
                                             "are read from.\n");
    }
    QuadProject::write(project.files.materials, "{}");
    EXPECT_EQ(problemsOf(project.files), "");
}

TEST(ProjectCheckTest, tellsFilesThatAreMissing) {
    const QuadProject project;
    ASSERT_TRUE(writeScriptsSwitch(project.files));
    std::filesystem::remove(project.files.materials);
    const String problems = problemsOf(project.files);
    EXPECT_NE(
        problems.find("x_materials.ovm:0: there is no such file, and the set draws with materials; save the "
                      "project anew.\n"),
        String::npos)
        << problems;
    for (const String& file : project.files.listExisting())
        std::filesystem::remove(file);
    EXPECT_EQ(problemsOf(project.files), "x.ovs:0: there is no such file; veldris project new makes one.\n");
}

TEST(ProjectCheckTest, tellsSettingsThatCannotBe) {
    const QuadProject project;
    ASSERT_TRUE(writeScriptsSwitch(project.files));
    const std::pair<const char*, const char*> CASES[] = {
        {R"({"shadow": true})",
         "x_render.json:0: 1: there is no setting \"shadow\". Did you mean 'shadows'?\n"},
        {R"({"environment": "none such.exr"})", "x_render.json:0: there is no environment '"},
        {R"({"camera": "behind"})", "x_render.json:0: the camera 'behind' is not"},
        {R"({"samples": 0})", "x_render.json:0: \"samples\" is '0': "},
    };
    for (const auto& [text, expected] : CASES) {
        QuadProject::write(project.files.settings, text);
        EXPECT_EQ(problemsOf(project.files).rfind(expected, 0), 0u) << problemsOf(project.files);
    }
}

TEST(ProjectCheckTest, tellsScriptsThatDoNotCompile) {
    const QuadProject project;
    QuadProject::write(project.files.scripts, R"({"scripts": [{"name": "a", "source": "x ="}]})");
    ASSERT_TRUE(writeScriptsSwitch(project.files));
    EXPECT_NE(problemsOf(project.files).find("script 'a': a:1: "), String::npos) << problemsOf(project.files);
}

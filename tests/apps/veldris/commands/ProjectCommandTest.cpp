#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"

#include <filesystem>

namespace {

using ovMemory::Buffer;
using ovMemory::String;

class ProjectCommandTest : public testing::Test {
protected:
    Outcome run(Buffer<String> arguments, const Buffer<String>& more = {}) {
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runVeldris(arguments);
    }
    Buffer<String> device() const { return {"--device", "software", "--cache", _folder.getPath("cache")}; }
    static String contentOf(const String& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TemporaryFolder _folder;
    String _project = _folder.getPath("p/x.ovs");
};

} // namespace

TEST_F(ProjectCommandTest, drawsAProjectAsItDrawsTheModel) {
    for (const char* const language : {"glsl", "hlsl"}) {
        for (const char* const alpha : {"OPAQUE", "MASK", "BLEND"}) {
            const String model =
                writeQuad(_folder, String(R"(, "doubleSided": true, "alphaMode": ")") + alpha + "\"");
            std::filesystem::remove_all(_folder.getPath("p"));
            const Buffer<String> scene = {"--size",    "24x24",   "--samples",     "1",
                                          "--camera",  "30,20",   "--environment", "none",
                                          "--shadows", "--light", "0.2,-1,-1"};
            Buffer<String> create = {"project", "new", _project, model, "--language", language};
            create.insert(create.end(), scene.begin(), scene.end());
            const Outcome made = run(create, device());
            ASSERT_EQ(made.status, 0) << made.error;
            EXPECT_NE(made.output.find(_folder.getPath("p/x_render.json")), String::npos);
            Buffer<String> draw = {"render",     model,   "-o", _folder.getPath("model.png"),
                                   "--language", language};
            draw.insert(draw.end(), scene.begin(), scene.end());
            ASSERT_EQ(run(draw, device()).status, 0);
            const Outcome drawn = run({"render", "--project", _project, "-o", _folder.getPath("project.png"),
                                       "--language", language},
                                      device());
            ASSERT_EQ(drawn.status, 0) << drawn.error;
            EXPECT_EQ(drawn.error, "");
            EXPECT_EQ(contentOf(_folder.getPath("project.png")), contentOf(_folder.getPath("model.png")))
                << language << " " << alpha;
            EXPECT_EQ(
                run({"project", "pack", _project, "-o", _folder.getPath(String(language) + alpha)}).status,
                0);
        }
    }
}

TEST_F(ProjectCommandTest, makesChecksAndPacksAProjectOfNothing) {
    ASSERT_EQ(run({"project", "new", _project, "--scripts"}).status, 0);
    const Outcome checked = run({"project", "check", _project});
    EXPECT_EQ(checked.status, 0);
    EXPECT_EQ(checked.output, _project + ": no problems\n");
    EXPECT_EQ(run({"project", "new", _project}).status, 1) << "it is there";
    const Outcome drawn = run({"render", "--project", _project, "-o", _folder.getPath("x.png")}, device());
    EXPECT_EQ(drawn.status, 1);
    EXPECT_NE(drawn.error.find("has nothing to draw"), String::npos);
    std::filesystem::remove(_folder.getPath("p/x_scripts.ovScripts"));
    std::ofstream(_folder.getPath("p/x_scripts.ovscripts"))
        << R"({"scripts": [{"name": "a", "source": ""}]})";
    const Outcome unseen = run({"project", "check", "--json", _project});
    EXPECT_EQ(unseen.status, 1);
    EXPECT_EQ(parseJson(unseen)["problems"].Size(), 1u);
    const Outcome packed = run({"project", "pack", _project, "-o", _folder.getPath("q"), "--json"});
    EXPECT_EQ(parseJson(packed)["files"].Size(), 3u);
}

TEST_F(ProjectCommandTest, refusesWhatItCannotMake) {
    const Outcome named = run({"project", "new", _folder.getPath("x.proj")});
    EXPECT_EQ(named.status, 1);
    EXPECT_NE(named.error.find("is not named NAME.ovs with one dot"), String::npos) << named.error;
    const Outcome camera = run({"project", "new", _project, "--camera", "file"});
    EXPECT_NE(camera.error.find("a project keeps no cameras"), String::npos) << camera.error;
    EXPECT_EQ(run({"project", "new", _project, "--effects", "none such"}).status, 1);
    EXPECT_EQ(run({"project", "new", _project, _folder.getPath("none.glb")}, device()).status, 1);
    EXPECT_EQ(run({"project", "check", _project}).status, 1);
    EXPECT_EQ(run({"project", "pack", _project, "-o", _folder.getPath("q")}).status, 1);
    EXPECT_EQ(run({"render", "--project", _project, "-o", _folder.getPath("x.png")}, device()).status, 1);
}

TEST_F(ProjectCommandTest, wantsAModelOrAProject) {
    EXPECT_EQ(run({"render", "-o", "x.png"}).status, 2);
    EXPECT_EQ(run({"render", "a.glb", "--project", "a.ovs", "-o", "x.png"}).status, 2);
    EXPECT_EQ(run({"project"}).status, 2);
}

TEST_F(ProjectCommandTest, warnsOfSettingsThatItCannotUse) {
    const String model = writeQuad(_folder);
    ASSERT_EQ(
        run({"project", "new", _project, model, "--size", "8x8", "--environment", "none"}, device()).status,
        0);
    std::ofstream(_folder.getPath("p/x_render.json")) << R"({"sise": "8x8", "samples": "many", "size": "9x7",
        "environment": "none"})";
    const Outcome drawn =
        run({"render", "--project", _project, "-o", _folder.getPath("x.png"), "--samples", "1", "--json"},
            device());
    EXPECT_EQ(drawn.status, 0) << drawn.error;
    EXPECT_EQ(parseJson(drawn)["width"].GetInt(), 9);
    EXPECT_NE(drawn.error.find("there is no setting"), String::npos) << drawn.error;
    EXPECT_EQ(drawn.error.find("many"), String::npos) << "the user's own samples count";
}

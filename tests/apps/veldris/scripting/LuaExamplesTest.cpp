// Runs the scripts that users learn from, and looks at what they print and write.
#include "veldris/commands/CommandTesting.h"
#include "veldris/demo/PictureMeans.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ovImages/CompositeEncoder.h>
#include <ovResources/ResourceManager.h>
#include <set>
#include <sstream>
#include <support/TemporaryFolder.h>

namespace {

using ovMemory::String;

const std::set<String> SCRIPTS = {"buffers.lua",   "effects.lua",   "irradiance.lua", "json.lua",
                                  "materials.lua", "mesh.lua",      "pictures.lua",   "project.lua",
                                  "scene.lua",     "scheduler.lua", "thread.lua",     "vectors.lua"};

String readExample(const String& name) {
    std::ifstream file(OV_LUA_EXAMPLES "/" + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// In a working folder of its own, which is also what scripts are told to write into.
class LuaExamplesTest : public testing::Test {
protected:
    LuaExamplesTest() { ovResources::ResourceManager::getInstance()->setWorkingPath(_folder.getPath()); }
    ~LuaExamplesTest() override { ovResources::ResourceManager::getInstance()->setWorkingPath(""); }

    /// What a script prints. It must end well, and say nothing else.
    String run(const String& name, const ovMemory::Buffer<String>& more = {}) {
        ovMemory::Buffer<String> arguments = {"run", "--no-cache", OV_LUA_EXAMPLES "/" + name,
                                              _folder.getPath()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.error, "");
        return outcome.output;
    }

    /// A picture that a script wrote.
    ovMemory::UniquePtr<ovImages::Image> picture(const String& name, unsigned int width,
                                                 unsigned int height) {
        ovImages::DecodeResult result = ovImages::CompositeEncoder().decodeFile(_folder.getPath(name));
        if (!result.image) {
            ADD_FAILURE() << name << ": " << result.error;
            return std::make_unique<ovImages::Image>(width, height, 3, ovImages::COMPONENT_TYPE::FLOAT,
                                                     ovImages::COLOR_ENCODING::LINEAR);
        }
        EXPECT_EQ(result.image->getWidth(), width) << name;
        EXPECT_EQ(result.image->getHeight(), height) << name;
        return std::move(result.image);
    }

    String readFile(const String& name) {
        std::ifstream file(_folder.getPath(name));
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const TemporaryFolder _folder;
};

} // namespace

TEST_F(LuaExamplesTest, areListedAndSayHowToRunThem) {
    const String list = readExample("README.md");
    std::set<String> found;
    for (const auto& entry : std::filesystem::directory_iterator(OV_LUA_EXAMPLES)) {
        const String name = entry.path().filename();
        if (entry.path().extension() != ".lua")
            continue;
        found.insert(name);
        EXPECT_NE(list.find("[" + name + "](" + name + ")"), String::npos) << name;
        EXPECT_NE(readExample(name).find("--     veldris run " + name), String::npos) << name;
    }
    EXPECT_EQ(found, SCRIPTS) << "each has a test below";
}

TEST_F(LuaExamplesTest, vectors) {
    const String output = run("vectors.lua");
    EXPECT_NE(output.find("sum       Vec(1.000000, 2.000000, 0.000000, 0.000000)\n"), String::npos) << output;
    EXPECT_NE(output.find("cross     Vec(0.000000, 0.000000, 1.000000, 0.000000)\n"), String::npos) << output;
    // (1, 0.5, 0) doubled, turned from x to -z and moved by 5 is (0, 1, 3), 13 m before the eye at a height
    // of 1 m.
    EXPECT_NE(output.find("placed    Vec(0.000000, 1.000000, 3.000000, 1.000000)\n"), String::npos) << output;
    EXPECT_NE(output.find("on screen 0.000 0.133\n"), String::npos) << output; // 1 / (13 tan 30)
}

TEST_F(LuaExamplesTest, json) {
    EXPECT_EQ(run("json.lua"), "name: value\nheight: value\nleaves: array\nleaf round\nleaf lobed\n"
                               "Unexpected character at byte 9\n");
    rapidjson::Document tree;
    tree.Parse(readFile("tree.json").c_str());
    ASSERT_FALSE(tree.HasParseError());
    EXPECT_EQ(tree["height"].GetDouble(), 22.0);
    EXPECT_STREQ(tree["leaves"][2].GetString(), "golden");
    EXPECT_EQ(tree["place"]["y"].GetInt(), -7);
}

TEST_F(LuaExamplesTest, buffers) {
    EXPECT_NE(run("buffers.lua").find("8239 bytes are 2059 integers, the first 41523f23\n"), String::npos)
        << "'#?RA', little endian";
    const auto sun = picture("sun.hdr", 64, 32);
    // The formulas of the script, at the sun and far from it; a pixel has 8 bits for its brightest channel.
    EXPECT_NEAR(sun->getComponent(44, 10, 0), 40.1, 0.5);
    EXPECT_NEAR(sun->getComponent(44, 10, 2), 24.75, 0.5);
    EXPECT_NEAR(sun->getComponent(0, 31, 0), 0.1, 0.01);
    EXPECT_NEAR(sun->getComponent(0, 31, 1), 0.51, 0.01);
}

TEST_F(LuaExamplesTest, pictures) {
    const String output = run("pictures.lua");
    EXPECT_EQ(output.find("read 64 x 64\nmip 6 is the mean colour: "), 0u) << output;
    EXPECT_NE(output.find("no known image format"), String::npos) << output;
    const auto board = picture("board.jpg", 64, 64);
    EXPECT_GT(meanIn(*board, 2, 2, 4, 4, 0), meanIn(*board, 2, 2, 4, 4, 2)) << "orange";
    EXPECT_LT(meanIn(*board, 10, 2, 4, 4, 0), meanIn(*board, 10, 2, 4, 4, 2)) << "blue";
}

TEST_F(LuaExamplesTest, irradiance) {
    EXPECT_EQ(run("irradiance.lua").find("up   receives"), 0u);
    const auto room = picture("room.hdr", 64, 32);
    EXPECT_NEAR(room->getComponent(30, 1, 0), 4.0, 0.05);
    EXPECT_NEAR(room->getComponent(30, 30, 0), 0.1, 0.005);
    const auto received = picture("received.hdr", 64, 32);
    // Facing up, the ceiling of a cube fills 0.5547 of what counts: the view factor of a square of 2 m at 1
    // m.
    EXPECT_NEAR(received->getComponent(30, 0, 0), 0.1 + 3.9 * 0.5541, 0.15);
    EXPECT_NEAR(received->getComponent(30, 31, 0), 0.1, 0.1);
}

TEST_F(LuaExamplesTest, mesh) {
    EXPECT_EQ(run("mesh.lua"), "1152 vertices, 2304 triangles\n");
    const auto ring = picture("ring.jpg", 64, 64);
    EXPECT_GT(meanIn(*ring, 30, 42, 4, 4, 0), 0.9) << "the front stands in the light; inside out it is dark";
    EXPECT_LT(meanIn(*ring, 30, 30, 3, 3, 0), meanIn(*ring, 30, 30, 3, 3, 2)) << "the night through the hole";
}

TEST_F(LuaExamplesTest, materials) {
    const String output = run("materials.lua");
    EXPECT_NE(output.find("leather: roughness 0.60, loaded: true\n"), String::npos) << output;
    EXPECT_NE(output.find("'leather' is gone: it was destroyed\nread again: roughness 0.80\n"), String::npos)
        << output;
    EXPECT_EQ(runVeldris({"check", _folder.getPath("leather.json")}).status, 0);
}

TEST_F(LuaExamplesTest, effects) {
    EXPECT_NE(run("effects.lua").find("Did you mean 'aces'?\n"), String::npos);
    for (const char* name : {"reinhard.jpg", "hables.jpg", "aces.jpg"}) {
        const auto mapped = picture(name, 64, 32);
        EXPECT_LT(meanIn(*mapped, 0, 0, 8, 8, 0), 0.5) << name;
        EXPECT_GT(meanIn(*mapped, 56, 0, 8, 8, 0), 0.9) << name;
        EXPECT_GT(meanIn(*mapped, 24, 26, 4, 4, 2), meanIn(*mapped, 24, 26, 4, 4, 0)) << name << ": blue";
    }
}

TEST_F(LuaExamplesTest, thread) {
    EXPECT_EQ(run("thread.lua"), "sum 250350.0\n"); // 100 + (1 + 2 + ... + 1000) / 2
}

TEST_F(LuaExamplesTest, scheduler) {
    EXPECT_EQ(run("scheduler.lua"), "8 tasks\n");
    const auto set = picture("mandelbrot.jpg", 64, 64);
    // 0 and -1 are in the set, 0.7 + i is not.
    EXPECT_LT(meanIn(*set, 46, 31, 2, 2, 0), 0.05);
    EXPECT_LT(meanIn(*set, 25, 31, 2, 2, 0), 0.05);
    EXPECT_GT(meanIn(*set, 61, 52, 2, 2, 0), 0.1);
}

TEST_F(LuaExamplesTest, project) {
    EXPECT_EQ(run("project.lua"), "1 material: paint\nits texture: 2 x 2\nentities: 1\n");
    const Outcome checked = runVeldris({"project", "check", _folder.getPath("square.ovs")});
    EXPECT_EQ(checked.status, 0) << checked.output << checked.error;
}

// A whole picture of thirty lines: what is empty or a comment does not count.
TEST_F(LuaExamplesTest, theSceneIsShort) {
    std::istringstream text(readExample("scene.lua"));
    int lines = 0;
    for (std::string line; std::getline(text, line);)
        lines += !line.empty() && !line.starts_with("--") ? 1 : 0;
    EXPECT_LE(lines, 30);
    EXPECT_GT(lines, 10);
}

TEST_F(LuaExamplesTest, scene) {
    EXPECT_EQ(run("scene.lua"), "");
    const auto gem = picture("scene.png", 64, 64);
    EXPECT_GT(meanIn(*gem, 0, 0, 8, 8, 2), meanIn(*gem, 0, 0, 8, 8, 0)) << "a blue sky";
    EXPECT_GT(meanIn(*gem, 28, 24, 8, 8, 0), 1.2 * meanIn(*gem, 28, 24, 8, 8, 2)) << "a red gem";
    run("scene.lua", {OV_LUA_EXAMPLES "/gem.gltf", "32"});
    picture("scene.png", 32, 32);
}

#include "veldris/commands/CommandTesting.h"

#include <fstream>
#include <support/TemporaryFolder.h>

namespace {

using ovMemory::String;

class CheckCommandTest : public testing::Test {
protected:
    String write(const char* text) {
        std::ofstream(folder.getPath("m.json")) << text;
        return folder.getPath("m.json");
    }

    TemporaryFolder folder;
};

constexpr const char* TWO_PROBLEMS = "[{\"name\": \"a\", \"type\": \"PBS\"},\n"
                                     " {\"name\": \"b\", \"type\": \"PBS\", \"alpha\": 1,\n"
                                     "  \"alphaValue\": 2}]";

} // namespace

TEST_F(CheckCommandTest, listsEveryProblem) {
    const String path = write(TWO_PROBLEMS);
    const Outcome outcome = runVeldris({"check", path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              path + ":2: material \"b\": there is no member \"alpha\"; did you mean \"alphaValue\"?\n" +
                  path + ":3: material \"b\": \"alphaValue\" is 2, not between 0 and 1.\n");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(CheckCommandTest, printsJson) {
    const String path = write(TWO_PROBLEMS);
    const Outcome outcome = runVeldris({"check", path, "--json"});
    EXPECT_EQ(outcome.status, 1);
    const auto report = parseJson(outcome);
    EXPECT_EQ(report["file"].GetString(), path);
    EXPECT_EQ(report["materials"].GetInt(), 2);
    ASSERT_EQ(report["problems"].Size(), 2u);
    EXPECT_EQ(report["problems"][1]["line"].GetInt(), 3);
    EXPECT_STREQ(report["problems"][1]["message"].GetString(),
                 "material \"b\": \"alphaValue\" is 2, not between 0 and 1.");
}

TEST_F(CheckCommandTest, aSoundFileSucceeds) {
    const String path = write("[{\"name\": \"a\", \"type\": \"PBS\"}]");
    const Outcome text = runVeldris({"check", path});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.output, path + ": no problems; materials: 1\n");
    const Outcome json = runVeldris({"check", path, "--json"});
    EXPECT_EQ(json.status, 0);
    EXPECT_TRUE(parseJson(json)["problems"].Empty());
}

TEST_F(CheckCommandTest, aParseErrorIsOneProblem) {
    const String path = write("[\n{]");
    const Outcome outcome = runVeldris({"check", path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.starts_with(path + ":2: ")) << outcome.output;
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1);
}

TEST_F(CheckCommandTest, aMissingFileFails) {
    const Outcome outcome = runVeldris({"check", folder.getPath("none.json")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.error.find("none.json"), String::npos) << outcome.error;
    EXPECT_EQ(runVeldris({"check"}).status, 2);
}

#include "veldris/commands/CommandTesting.h"

#include <fstream>
#include <sstream>
#include <support/TemporaryFolder.h>

namespace {

using ovMemory::String;

class RunCommandTest : public testing::Test {
protected:
    String write(const String& text, const char* name = "demo.lua") {
        std::ofstream(folder.getPath(name)) << text;
        return folder.getPath(name);
    }

    Outcome run(const String& text, const ovMemory::Buffer<String>& options = {},
                const ovMemory::Buffer<String>& arguments = {}) {
        ovMemory::Buffer<String> all = {"run", "--no-cache"};
        all.insert(all.end(), options.begin(), options.end());
        all.push_back(write(text));
        all.insert(all.end(), arguments.begin(), arguments.end());
        return runVeldris(all);
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(RunCommandTest, printsWhatTheScriptPrints) {
    const Outcome outcome = run("print('hello') print(1 + 1, 'only the first')");
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "hello\n2\n");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(RunCommandTest, argumentsReachTheScript) {
    const Outcome outcome = run("local a, b = ... print(a .. '|' .. b .. '|' .. arg[1] .. '|' .. #arg .. "
                                "'|' .. tostring(arg[0]:match('demo.lua$')))",
                                {}, {"first", "--size"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "first|--size|first|2|demo.lua\n");
}

TEST_F(RunCommandTest, whatFollowsTheScriptIsTheScripts) {
    const ovMemory::Buffer<String> arguments = {"--time-limit", "never", "--help", "-x", "--", "--no-cache"};
    const Outcome outcome = run("print(table.concat(arg, ' '))", {"--time-limit", "60"}, arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(outcome.output, "--time-limit never --help -x -- --no-cache\n");
    EXPECT_EQ(runVeldris({"run", "--help"}).output.substr(0, 36), "run a Lua script over the whole libr");
}

TEST_F(RunCommandTest, unknownOptionsAreErrors) {
    const Outcome outcome = run("print('no')", {"--bogus"});
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.status, 0);
    EXPECT_NE(outcome.error.find("--bogus"), String::npos) << outcome.error;
    EXPECT_NE(runVeldris({"run", "--bogus"}).error.find("--bogus"), String::npos);
}

TEST_F(RunCommandTest, errorsTellScriptLineAndTraceback) {
    const Outcome outcome = run("local function inner()\n  error('broken')\nend\ninner()");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("demo.lua:2: broken\nstack traceback:"), String::npos) << outcome.error;
    EXPECT_NE(outcome.error.find("demo.lua:4: in main chunk"), String::npos) << outcome.error;
}

TEST_F(RunCommandTest, mistakesOfTheTextAndMissingFilesFail) {
    const Outcome outcome = run("local = 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("demo.lua:1: <name> expected near '='"), String::npos) << outcome.error;
    const Outcome missing = runVeldris({"run", "--no-cache", folder.getPath("none.lua")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.error.find("none.lua"), String::npos) << missing.error;
}

TEST_F(RunCommandTest, librariesAreClosedUntilAskedFor) {
    EXPECT_EQ(run("print(io) print(debug)").output, "nil\nnil\n");
    EXPECT_EQ(run("print(type(io.open))", {"--files-and-processes"}).output, "function\n");
    EXPECT_EQ(run("print(type(debug.getinfo))", {"--debug-library"}).output, "function\n");
}

TEST_F(RunCommandTest, limitsEndScripts) {
    const Outcome time =
        run("while true do pcall(function() while true do end end) end", {"--time-limit", "0.1"});
    EXPECT_EQ(time.status, 1);
    EXPECT_NE(time.error.find("the time limit of 0.1 s is reached\nstack traceback:"), String::npos)
        << time.error;
    const Outcome memory =
        run("local t = {} while true do t[#t + 1] = ('x'):rep(1000) .. #t end", {"--memory-limit", "8"});
    EXPECT_EQ(memory.status, 1);
    EXPECT_NE(memory.error.find("not enough memory"), String::npos) << memory.error;
    EXPECT_EQ(run("print(1)", {"--time-limit", "-1"}).status, 2);
}

TEST_F(RunCommandTest, scriptsSeeTheSystemOfTheProcess) {
    const Outcome outcome = run("print(ovMaths.Vector.newVec3(1, 2, 3))");
    EXPECT_EQ(outcome.output, "Vec(1.000000, 2.000000, 3.000000, 0.000000)\n") << outcome.error;
}

// The page of the manual is what this version prints.
TEST_F(RunCommandTest, theReferenceIsThatOfTheManual) {
    const Outcome outcome = runVeldris({"run", "--reference"});
    EXPECT_EQ(outcome.status, 0);
    std::ifstream file(OV_SCRIPTING_REFERENCE);
    std::stringstream page;
    page << file.rdbuf();
    EXPECT_EQ(outcome.output, page.str())
        << "write it anew: veldris run --reference > docs/scripting-reference.md";
}

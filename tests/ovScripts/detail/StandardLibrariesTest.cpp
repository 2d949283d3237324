#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;

TEST(StandardLibrariesTest, onlyHarmlessOnesAreOpen) {
    const auto environment = luaEnvironment();
    for (const char* name : {"string.format", "table.sort", "math.sin", "utf8.char", "coroutine.wrap",
                             "os.time", "os.clock", "os.date", "os.difftime", "pcall", "load"})
        EXPECT_EQ(evaluate(*environment, ovMemory::String("return type(") + name + ")"), "function") << name;
    for (const char* name : {"io", "debug", "package", "require", "loadfile", "dofile", "os.execute",
                             "os.remove", "os.getenv", "os.exit", "os.rename", "os.tmpname", "os.setlocale"})
        EXPECT_EQ(evaluate(*environment, ovMemory::String("return ") + name), "nil") << name;
}

TEST(StandardLibrariesTest, optionsOpenTheOthers) {
    const auto files = luaEnvironment({.filesAndProcesses = true});
    for (const char* name : {"io.open", "os.execute", "os.getenv", "require", "loadfile", "dofile"})
        EXPECT_EQ(evaluate(*files, ovMemory::String("return type(") + name + ")"), "function") << name;
    EXPECT_EQ(evaluate(*files, "return debug"), "nil");
    EXPECT_EQ(evaluate(*luaEnvironment({.debugLibrary = true}), "return type(debug.getinfo)"), "function");
}

TEST(StandardLibrariesTest, loadTakesTexts) {
    const auto environment = luaEnvironment();
    EXPECT_EQ(evaluate(*environment, "return load('return 1 + 1')()"), "2");
    EXPECT_EQ(evaluate(*environment, "return load('return x', 'n', 't', {x = 5})()"), "5");
    EXPECT_EQ(evaluate(*environment, "return load('return x', 'n', nil, {x = 5})()"), "5");
    EXPECT_EQ(evaluate(*environment, "x = 6 return load('return x', 'n', 't', nil) and load('return x')()"),
              "6");
    EXPECT_EQ(evaluate(*environment,
                       "local n = 0 return load(function() n = n + 1 return ({'return ', '7'})[n] end)()"),
              "7");
    EXPECT_EQ(evaluate(*environment, "return select(2, load('=', 'named'))"),
              "[string \"named\"]:1: unexpected symbol near '='");
    // An explicit nil is an environment of its own: no globals.
    EXPECT_EQ(evaluate(*environment, "return pcall(load('return x', 'n', 't', nil))"), "false");
}

TEST(StandardLibrariesTest, loadRefusesWhatIsCompiled) {
    const auto environment = luaEnvironment();
    for (const char* mode : {"", ", 'n'", ", 'n', 'b'", ", 'n', 'bt'", ", 'n', 't'", ", 'n', 'bt', {}"}) {
        const ovMemory::String load =
            ovMemory::String("return load(string.dump(function() return 1 end)") + mode + ")";
        EXPECT_EQ(evaluate(*environment, load), "nil") << mode;
    }
    EXPECT_EQ(evaluate(*environment, "local code = string.dump(function() return 1 end) local n = 0 "
                                     "return load(function() n = n + 1 return code:sub(n, n) end)"),
              "nil");
}

} // namespace

// Whatever scripts call with whatever ends in a value or an error.
#include <filesystem>
#include <ovGraphics/System.h>
#include <ovResources/ResourceManager.h>
#include <ovVeldris/System.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <support/HeadlessSystem.h>
#include <support/Lua.h>
#include <support/TemporaryFolder.h>

namespace {

using ovMemory::String;

constexpr int CALLS = 10000;

// It waits by order, for as long as it is told.
constexpr ovMemory::StringView WAITS = "ovTasks.ThreadSubmittedWork.waitFor";

// Every function of an environment as a list of the language: {name, is it a method, how many arguments}.
String listOfFunctions(const ovScripts::Environment& environment) {
    String list = "{";
    const auto add = [&](const ovScripts::Function& function, bool isMethod) {
        if (function.getFullName() != WAITS)
            list += "{'" + (isMethod ? String(function.getName()) : function.getFullName()) + "', " +
                    (isMethod ? "true" : "false") + ", " + std::to_string(function.getArguments().size()) +
                    "},\n";
    };
    for (const auto& function : environment.getFunctions())
        add(*function, false);
    for (const auto& type : environment.getUserTypes()) {
        if (type->getConstructor())
            add(*type->getConstructor(), false);
        for (const auto& function : type->getStaticFunctions())
            add(*function, false);
        for (const auto& function : type->getMethods())
            add(*function, true);
    }
    return list + "}";
}

// Calls functions in random order with plain values and with objects that earlier calls gave.
constexpr const char* CALL_AT_RANDOM = R"(
local functions, calls, seed = load("return " .. FUNCTIONS)(), CALLS, SEED
math.randomseed(seed)
local plain = {true, false, -1, 0, 1, 2, 3, 64, 255, 2^31, 2^53, -0.5, 0.5, 1e308, -1e308, 0/0, 1/0, "", "x", "a.b",
    "tone-mapping", "blur", "PBS", "{}", "[1]", ("y"):rep(1000), {}, {1, 2}, print, function() end,
    coroutine.create(print), string}
local objects = {}
local function anything()
    if #objects > 0 and math.random() < 0.6 then
        return objects[math.random(#objects)]
    end
    return plain[math.random(#plain + 1)]
end
local function keep(value)
    if type(value) == "userdata" then
        objects[#objects < 60 and #objects + 1 or math.random(60)] = value
    end
end
local done, failed = 0, 0
for call = 1, calls do
    local name, isMethod, count = table.unpack(functions[math.random(#functions)])
    local ok, result = pcall(function()
        local arguments = {}
        for i = 1, math.max(count + math.random(-1, 1), 0) do
            arguments[i] = anything()
        end
        if not isMethod then
            return load("return " .. name)()(table.unpack(arguments, 1, count))
        end
        -- An object that knows the method, if there is one.
        for i = 1, 20 do
            local object = anything()
            if type(object) == "userdata" and pcall(function() return object[name] end) then
                return object[name](object, table.unpack(arguments, 2, count))
            end
        end
        error("no object has " .. name)
    end)
    done, failed = done + (ok and 1 or 0), failed + (ok and 0 or 1)
    if ok then
        keep(result)
    elseif type(result) ~= "string" then
        error("an error that is no text: " .. tostring(result))
    end
end
return done .. " " .. failed
)";

class RandomCallsTest : public testing::Test {
protected:
    // Scripts reach the system of the process, and files below the working folder.
    void SetUp() override {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration =
            HeadlessSystem::makeConfiguration(ovGraphics::SHADER_LANGUAGE::GLSL, &logger);
        before = std::filesystem::current_path();
        std::filesystem::current_path(folder.getPath());
        // By itself it keeps the folder that the process, or another suite, began in.
        ovResources::ResourceManager::getInstance()->setWorkingPath(folder.getPath());
        ASSERT_TRUE(ovVeldris::System::getInstance()->initialize(configuration));
    }
    void TearDown() override {
        ovVeldris::System::kill();
        ovResources::ResourceManager::getInstance()->setWorkingPath("");
        std::filesystem::current_path(before);
    }

    TemporaryFolder folder;
    std::filesystem::path before;
    RecordingLogger logger;
};

} // namespace

TEST_F(RandomCallsTest, everyCallEndsInAValueOrAnError) {
    ovVeldris::ScriptsEngine& engine = *ovVeldris::System::getInstance()->getScriptsEngine();
    engine.initialize({.memoryLimit = 256 << 20});
    ovScripts::Environment& environment = *engine.getEnvironment();
    environment.setGlobal("FUNCTIONS", listOfFunctions(environment));
    environment.setGlobal("CALLS", CALLS);
    // Another one by --gtest_random_seed.
    environment.setGlobal("SEED", testing::UnitTest::GetInstance()->random_seed());
    ovScripts::FunctionParameter result;
    const ovScripts::Script script = luaTest::scriptOf(CALL_AT_RANDOM);
    ASSERT_TRUE(environment.execute(script, {}, {&result, 1})) << environment.getLastExecutionResult().error;
    int done = 0;
    int failed = 0;
    ASSERT_EQ(std::sscanf(String(result.getValueAsString()).c_str(), "%d %d", &done, &failed), 2);
    EXPECT_EQ(done + failed, CALLS);
    EXPECT_GT(done, CALLS / 20);
    EXPECT_GT(failed, CALLS / 20);
}

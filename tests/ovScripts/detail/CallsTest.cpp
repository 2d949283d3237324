#include <random>
#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using Arguments = ovMemory::BufferView<FunctionParameter>;

struct Box {
    int value = 0;
};

// "engine.Box" with a member, "engine.Other" without anything.
ovMemory::UniquePtr<Environment> boxEnvironment() {
    auto environment = luaEnvironment();
    environment->setNamespace("engine");
    UserType* type = environment->setUserType("engine.Box");
    type->setConstructor([](Arguments) -> void* { return new Box; });
    type->setDestructor([](void* box) { delete static_cast<Box*>(box); });
    type->addMemberVariable(
        "value", FUNCTION_PARAMETER_TYPE::INT, {},
        [](void* box) { return FunctionParameter(static_cast<Box*>(box)->value); },
        [](void* box, const FunctionParameter& value) {
            if (value.getValueAsInt() < 0)
                return FunctionParameter::error("expected 0 or more; give a size");
            static_cast<Box*>(box)->value = static_cast<int>(value.getValueAsInt());
            return FunctionParameter::VOID;
        });
    type->addMemberVariable("writeOnly", FUNCTION_PARAMETER_TYPE::INT, {}, nullptr,
                            [](void*, const FunctionParameter&) { return FunctionParameter::VOID; });
    type->addMemberVariable(
        "readOnly", FUNCTION_PARAMETER_TYPE::INT, {}, [](void*) { return FunctionParameter(1); }, nullptr);
    type->addMethod("take")->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "engine.Box", "other");
    type->addMethod("offer")->addParameter(FUNCTION_PARAMETER_TYPE::USER_DATA, "engine.Box");
    UserType* other = environment->setUserType("engine.Other");
    other->setConstructor([](Arguments) -> void* { return new Box; });
    other->setDestructor([](void* box) { delete static_cast<Box*>(box); });
    return environment;
}

TEST(CallsTest, wrongArgumentsAreNamed) {
    const auto environment = boxEnvironment();
    const auto expectError = [&](const char* text, const char* message) {
        EXPECT_EQ(evaluate(*environment, text), ovMemory::String("error: test:1: ") + message) << text;
    };
    expectError("engine.Box():take(1)",
                "engine.Box.take: argument 2 (other) expected engine.Box, got number");
    expectError("engine.Box():take()",
                "engine.Box.take: argument 2 (other) expected engine.Box, got nothing");
    expectError("engine.Box():take(engine.Other())",
                "engine.Box.take: argument 2 (other) expected engine.Box, got engine.Other");
    expectError("engine.Box():offer('x')",
                "engine.Box.offer: argument 2 expected engine.Box or nil, got string");
    expectError("local m = engine.Box().take m({}, engine.Box())",
                "engine.Box.take: argument 1 expected engine.Box, got table");
    EXPECT_EQ(evaluate(*environment, "return engine.Box():offer(nil)"), "nil");
    EXPECT_EQ(evaluate(*environment, "return engine.Box():offer(engine.Box())"), "nil");
}

TEST(CallsTest, eachKindRefusesTheOthers) {
    const auto environment = boxEnvironment();
    const struct {
        FUNCTION_PARAMETER_TYPE type;
        const char* expected;
        std::vector<const char*> taken;
    } kinds[] = {
        {FUNCTION_PARAMETER_TYPE::BOOL, "boolean", {"true", "false"}},
        {FUNCTION_PARAMETER_TYPE::INT, "integer", {"1", "2.0", "-0.0"}},
        {FUNCTION_PARAMETER_TYPE::FLOAT, "number", {"1", "2.0", "-0.0", "1.5", "1/0"}},
        {FUNCTION_PARAMETER_TYPE::DOUBLE, "number", {"1", "2.0", "-0.0", "1.5", "1/0"}},
        {FUNCTION_PARAMETER_TYPE::STRING, "string", {"'12'", "''"}},
        {FUNCTION_PARAMETER_TYPE::USER_DATA_PTR, "an object of a declared type", {"engine.Box()"}},
        {FUNCTION_PARAMETER_TYPE::FUNCTION, "function", {"print", "function() end"}},
    };
    const char* values[] = {"nil",
                            "true",
                            "false",
                            "1",
                            "2.0",
                            "-0.0",
                            "1.5",
                            "1/0",
                            "'12'",
                            "''",
                            "{}",
                            "print",
                            "function() end",
                            "engine.Box()",
                            "coroutine.create(print)"};
    for (const auto& kind : kinds) {
        const ovMemory::String name = "take" + std::to_string(static_cast<int>(kind.type));
        environment->setFunc(name)->addParameter(kind.type);
        for (const ovMemory::StringView value : values) {
            const bool isTaken = std::find(kind.taken.begin(), kind.taken.end(), value) != kind.taken.end();
            const ovMemory::String result =
                evaluate(*environment, "return " + name + '(' + ovMemory::String(value) + ')');
            if (isTaken)
                EXPECT_EQ(result, "nil") << name << value;
            else
                EXPECT_EQ(result.find("error: test:1: " + name + ": argument 1 expected " + kind.expected +
                                      ", got "),
                          0u)
                    << result;
        }
    }
}

TEST(CallsTest, anythingIsTakenAsWhatItIs) {
    const auto environment = boxEnvironment();
    Function* function = environment->setFunc("kind");
    function->addParameter(FUNCTION_PARAMETER_TYPE::ANY);
    function->setFunction(
        [](Arguments arguments) { return FunctionParameter(ovMemory::enumToText(arguments[0].getType())); });
    EXPECT_EQ(evaluate(*environment, "return kind(nil)"), "VOID");
    EXPECT_EQ(evaluate(*environment, "return kind(true)"), "BOOL");
    EXPECT_EQ(evaluate(*environment, "return kind(1)"), "INT");
    EXPECT_EQ(evaluate(*environment, "return kind(1.0)"), "DOUBLE");
    EXPECT_EQ(evaluate(*environment, "return kind('1')"), "STRING");
    EXPECT_EQ(evaluate(*environment, "return kind({})"), "SCRIPT_OBJECT");
    EXPECT_EQ(evaluate(*environment, "return kind(print)"), "SCRIPT_OBJECT");
    EXPECT_EQ(evaluate(*environment, "return kind(engine.Box())"), "USER_DATA");
}

TEST(CallsTest, resultsArriveAsWhatTheyAre) {
    const auto environment = boxEnvironment();
    FunctionParameter result;
    environment->setFunc("give")->setFunction([&](Arguments) { return result; });
    const auto given = [&](FunctionParameter value) {
        result = std::move(value);
        return evaluate(*environment, "local v = give() return math.type(v) or type(v)") + ' ' +
               evaluate(*environment, "return give()");
    };
    EXPECT_EQ(given(FunctionParameter::VOID), "nil nil");
    EXPECT_EQ(given(true), "boolean true");
    EXPECT_EQ(given(-5), "integer -5");
    EXPECT_EQ(given(0.5f), "float 0.5");
    EXPECT_EQ(given(2.0), "float 2.0");
    EXPECT_EQ(given("text"), "string text");
    EXPECT_EQ(given(FunctionParameter::error("wrong; do it right")),
              "error: test:1: give: wrong; do it right "
              "error: test:1: give: wrong; do it right");
}

TEST(CallsTest, whatABodyThrowsIsAnError) {
    const auto environment = luaEnvironment();
    environment->setFunc("fail")->setFunction(
        [](Arguments) -> FunctionParameter { throw std::runtime_error("broken"); });
    environment->setFunc("exhaust")->setFunction(
        [](Arguments) -> FunctionParameter { throw std::bad_alloc(); });
    EXPECT_EQ(evaluate(*environment, "fail()"), "error: test:1: fail: broken");
    EXPECT_EQ(evaluate(*environment, "exhaust()"), "error: test:1: exhaust: not enough memory");
    EXPECT_EQ(evaluate(*environment, "return pcall(fail)"), "false");
    UserType* type = environment->setUserType("Fragile");
    type->setConstructor([](Arguments) -> void* { return new Box; });
    type->setDestructor([](void* box) { delete static_cast<Box*>(box); });
    type->addMemberVariable(
        "value", FUNCTION_PARAMETER_TYPE::INT, {},
        [](void*) -> FunctionParameter { throw std::runtime_error("not read"); },
        [](void*, const FunctionParameter&) -> FunctionParameter { throw std::runtime_error("not set"); });
    EXPECT_EQ(evaluate(*environment, "return Fragile().value"), "error: test:1: Fragile.value: not read");
    EXPECT_EQ(evaluate(*environment, "Fragile().value = 1"), "error: test:1: Fragile.value: not set");
    EXPECT_EQ(evaluate(*environment, "return 1"), "1");
}

TEST(CallsTest, membersAreReadAndWritten) {
    const auto environment = boxEnvironment();
    const auto expectError = [&](const char* text, const char* message) {
        EXPECT_EQ(evaluate(*environment, ovMemory::String("local b = engine.Box() ") + text),
                  ovMemory::String("error: test:1: ") + message)
            << text;
    };
    EXPECT_EQ(evaluate(*environment, "local b = engine.Box() b.value = 7 return b.value"), "7");
    expectError("b.value = 'x'", "engine.Box.value expected integer, got string");
    expectError("b.value = -1", "engine.Box.value: expected 0 or more; give a size");
    expectError("b.readOnly = 1", "engine.Box.readOnly can be read, not set");
    expectError("return b.writeOnly", "engine.Box.writeOnly can be set, not read");
    expectError("return b.wrong", "engine.Box has no member 'wrong'");
    expectError("b.wrong = 1", "engine.Box has no member 'wrong'");
    expectError("b:wrong()", "engine.Box has no member 'wrong'");
    expectError("b[1] = 1", "engine.Box has no member '1'");
    expectError("engine.Other().x = 1", "engine.Other has no member 'x'");
    expectError("return engine.Other().x", "engine.Other has no member 'x'");
}

TEST(CallsTest, namedMembersComeAfterDeclaredOnes) {
    const auto environment = luaEnvironment();
    environment->setNamespace("engine");
    UserType* type = environment->setUserType("engine.Effect");
    std::map<ovMemory::String, double, std::less<>> settings = {{"strength", 0.5}};
    type->setConstructor([&](Arguments) -> void* { return &settings; });
    type->setNamedMembers(
        [](void* object, ovMemory::StringView name, FunctionParameter& value) {
            const auto& all = *static_cast<std::map<ovMemory::String, double, std::less<>>*>(object);
            const auto found = all.find(name);
            if (found != all.end())
                value = found->second;
            return found != all.end();
        },
        [](void* object, ovMemory::StringView name, const FunctionParameter& value,
           FunctionParameter& result) {
            auto& all = *static_cast<std::map<ovMemory::String, double, std::less<>>*>(object);
            if (!all.count(name))
                return false;
            if (value.getType() == FUNCTION_PARAMETER_TYPE::STRING)
                result = FunctionParameter::error("expected a number; the range is 0 to 1");
            else
                all.find(name)->second = value.getValueAsDouble();
            return true;
        });
    EXPECT_EQ(evaluate(*environment, "effect = engine.Effect() return effect.strength"), "0.5");
    EXPECT_EQ(evaluate(*environment, "effect.strength = 1 return effect.strength"), "1.0");
    EXPECT_EQ(evaluate(*environment, "effect.strength = 'x'"),
              "error: test:1: engine.Effect.strength: expected a number; the range is 0 to 1");
    EXPECT_EQ(evaluate(*environment, "return effect.other"),
              "error: test:1: engine.Effect has no member 'other'");
    EXPECT_EQ(evaluate(*environment, "effect.other = 1"),
              "error: test:1: engine.Effect has no member 'other'");
}

TEST(CallsTest, bodiesMayCallBack) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("twice");
    function->addParameter(FUNCTION_PARAMETER_TYPE::FUNCTION);
    function->setFunction([&](Arguments arguments) {
        FunctionParameter results[2];
        for (FunctionParameter& result : results)
            if (!environment->callScriptFunction(arguments[0].getScriptObjectReference(), {}, {&result, 1}))
                return FunctionParameter::error(environment->getLastExecutionResult().error);
        return FunctionParameter(results[0].getValueAsInt() + results[1].getValueAsInt());
    });
    EXPECT_EQ(evaluate(*environment, "local n = 0 return twice(function() n = n + 1 return n end)"), "3");
    EXPECT_EQ(evaluate(*environment, "return twice(function() error('inside') end)"),
              "error: test:1: twice: test:1: inside");
    // From a coroutine too: calls back run where the call came from.
    EXPECT_EQ(evaluate(*environment,
                       "return coroutine.wrap(function() return twice(function() return 21 end) end)()"),
              "42");
    EXPECT_EQ(evaluate(*environment, "local function deep(n) return twice(function() return n == 0 and 1 or "
                                     "deep(n - 1) end) end return deep(5)"),
              "64");
}

// A body that calls back for ever ends with an error of the interpreter, not of the process.
TEST(CallsTest, endlessCallsBackEnd) {
    const auto environment = luaEnvironment();
    Function* function = environment->setFunc("again");
    function->addParameter(FUNCTION_PARAMETER_TYPE::FUNCTION);
    function->setFunction([&](Arguments arguments) {
        if (!environment->callScriptFunction(arguments[0].getScriptObjectReference(), {}, {}))
            return FunctionParameter::error("failed inside");
        return FunctionParameter::VOID;
    });
    EXPECT_NE(evaluate(*environment, "local function f() again(f) end f()").find("failed inside"),
              std::string::npos);
    EXPECT_EQ(evaluate(*environment, "return 1"), "1");
}

// Whatever is called with whatever ends in a value or an error.
TEST(CallsTest, tenThousandRandomCallsEnd) {
    const auto environment = boxEnvironment();
    for (const auto type : {FUNCTION_PARAMETER_TYPE::INT, FUNCTION_PARAMETER_TYPE::STRING})
        environment->setFunc("f" + std::to_string(static_cast<int>(type)))
            ->addParameter(type)
            .addParameter(type);
    const char* callees[] = {"f2",           "f5",     "engine.Box",        "box.take", "box.offer",
                             "engine.Other", "select", "engine.Box().take", "tostring", "getmetatable"};
    const char* values[] = {"nil",   "1",    "-1.5",    "'x'", "{}", "box", "engine.Other()",
                            "print", "true", "box.take"};
    evaluate(*environment, "box = engine.Box()");
    std::mt19937 random(7);
    int failed = 0;
    for (int i = 0; i < 10000; ++i) {
        ovMemory::String call = ovMemory::String("return ") + callees[random() % std::size(callees)] + '(';
        for (unsigned int argument = 0, count = random() % 4; argument < count; ++argument)
            call += ovMemory::String(argument ? ", " : "") + values[random() % std::size(values)];
        failed += evaluate(*environment, call + ')').starts_with("error: ");
    }
    EXPECT_GT(failed, 1000);
    EXPECT_LT(failed, 9000);
}

} // namespace

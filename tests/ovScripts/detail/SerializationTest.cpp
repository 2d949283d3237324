#include <random>
#include <support/Lua.h>

namespace {

using namespace ovScripts;
using luaTest::evaluate;
using luaTest::luaEnvironment;
using Arguments = ovMemory::BufferView<FunctionParameter>;
using Bytes = ovMemory::Buffer<unsigned char>;

int destroyed = 0;

ovMemory::UniquePtr<Environment> objectEnvironment() {
    auto environment = luaEnvironment();
    environment->setNamespace("engine");
    UserType* type = environment->setUserType("engine.Object");
    type->setConstructor([](Arguments) -> void* { return new int(3); });
    type->setDestructor([](void* object) {
        ++destroyed;
        delete static_cast<int*>(object);
    });
    type->addMethod("read")->setFunction(
        [](Arguments arguments) { return FunctionParameter(*arguments[0].getValueAsUserData<int>()); });
    environment->setUserType("engine.Value")->setValueType<double>();
    environment->getUserType("engine.Value")->setConstructor([](Arguments) -> void* {
        return new double(1.5);
    });
    environment->getUserType("engine.Value")->addMethod("read")->setFunction([](Arguments arguments) {
        return FunctionParameter(*arguments[0].getValueAsUserData<double>());
    });
    environment->setFunc("declared")->setFunction([](Arguments) { return FunctionParameter(11); });
    return environment;
}

// The global "o" of one environment becomes the global "o" of another one.
bool carry(Environment& from, Environment& to, bool forward = false) {
    const Bytes bytes = from.serializeScriptObject(from.referToGlobal("o"), forward);
    if (bytes.empty())
        return false;
    const ScriptObjectReference object = to.deserializeScriptObject(bytes);
    to.setGlobal("o", object);
    return bool(object);
}

ovMemory::String carried(ovMemory::StringView definition, ovMemory::StringView question) {
    const auto from = objectEnvironment();
    const auto to = objectEnvironment();
    evaluate(*from, definition);
    if (!carry(*from, *to))
        return "not carried: " + from->getLastExecutionResult().error + to->getLastExecutionResult().error;
    return evaluate(*to, question);
}

TEST(SerializationTest, plainValuesArrive) {
    for (const char* value : {"true", "false", "7", "-0.0", "1e300", "math.mininteger", "'a\\0b'", "''"})
        EXPECT_EQ(carried(ovMemory::String("o = ") + value, ovMemory::String("return o == ") + value), "true")
            << value;
    EXPECT_EQ(carried("o = 7", "return math.type(o)"), "integer");
    EXPECT_EQ(carried("o = 7.0", "return math.type(o)"), "float");
}

TEST(SerializationTest, tablesKeepTheirShape) {
    EXPECT_EQ(carried("o = {1, 2, {3}, name = 'x', [2.5] = true}",
                      "return #o .. o[3][1] .. o.name .. tostring(o[2.5])"),
              "33xtrue");
    EXPECT_EQ(
        carried("o = {} o.self = o o.twice = {o, o}", "return o.self == o and o.twice[1] == o.twice[2]"),
        "true");
    EXPECT_EQ(carried("o = setmetatable({}, {__index = function(t, k) return k .. '!' end})", "return o.x"),
              "x!");
    EXPECT_EQ(carried("o = setmetatable({1}, {__newindex = function() error('called') end})", "return o[1]"),
              "1");
}

TEST(SerializationTest, functionsBringWhatTheyEnclose) {
    EXPECT_EQ(carried("local n = 5 o = function(a) n = n + 1 return a + n end", "return o(1) + o(1)"), "15");
    EXPECT_EQ(carried("local function f(n) return n == 0 and 1 or n * f(n - 1) end o = f", "return o(5)"),
              "120");
    EXPECT_EQ(carried("x = 1 o = function() return x end", "x = 2 return o()"), "2");
    EXPECT_EQ(carried("local format = string.format o = function() return format('%d', 3) end", "return o()"),
              "3");
    EXPECT_EQ(carried("local Object = engine.Object o = function() return Object():read() end", "return o()"),
              "3");
    EXPECT_EQ(carried("local d, e = declared, engine o = function() return d() + e.Object():read() end",
                      "return o()"),
              "14");
}

TEST(SerializationTest, whatCannotArriveIsAnError) {
    EXPECT_EQ(carried("o = coroutine.create(print)", ""),
              "not carried: the object cannot be serialised: it holds a thread");
    EXPECT_EQ(carried("o = {} local t = o for i = 1, 1000 do t[1] = {} t = t[1] end", ""),
              "not carried: the object cannot be serialised: it is nested deeper than 150");
    const auto from = luaEnvironment({.filesAndProcesses = true});
    evaluate(*from, "o = {io.stdout}");
    EXPECT_TRUE(from->serializeScriptObject(from->referToGlobal("o"), false).empty());
    EXPECT_EQ(from->getLastExecutionResult().error,
              "the object cannot be serialised: it holds foreign user data");
    EXPECT_TRUE(from->serializeScriptObject({}, false).empty());
}

TEST(SerializationTest, lentObjectsAreTheSame) {
    destroyed = 0;
    auto from = objectEnvironment();
    auto to = objectEnvironment();
    evaluate(*from, "o = engine.Object()");
    ASSERT_TRUE(carry(*from, *to));
    EXPECT_EQ(evaluate(*to, "return o:read()"), "3");
    EXPECT_EQ(evaluate(*from, "return o:read()"), "3");
    from.reset();
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(evaluate(*to, "return o:read()"), "3");
    to.reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(SerializationTest, objectsThatWentBeforeTheyWereReadAreErrors) {
    const auto from = objectEnvironment();
    const auto to = objectEnvironment();
    evaluate(*from, "o = engine.Object()");
    const Bytes bytes = from->serializeScriptObject(from->referToGlobal("o"), false);
    evaluate(*from, "o = nil");
    from->collectGarbage();
    EXPECT_FALSE(to->deserializeScriptObject(bytes));
    EXPECT_EQ(to->getLastExecutionResult().error,
              "an object of type engine.Object is gone, or another environment has taken it");
}

TEST(SerializationTest, objectsAreTakenOverOnce) {
    destroyed = 0;
    auto from = objectEnvironment();
    auto to = objectEnvironment();
    evaluate(*from, "o = engine.Object()");
    const Bytes bytes = from->serializeScriptObject(from->referToGlobal("o"), true);
    EXPECT_NE(evaluate(*from, "return o:read()").find("was handed to another environment"),
              std::string::npos);
    const ScriptObjectReference object = to->deserializeScriptObject(bytes);
    EXPECT_TRUE(object);
    EXPECT_FALSE(to->deserializeScriptObject(bytes));
    from.reset();
    EXPECT_EQ(destroyed, 0);
    to.reset();
    EXPECT_EQ(destroyed, 1);
}

TEST(SerializationTest, objectsThatNobodyTookEndWithTheirEnvironment) {
    destroyed = 0;
    auto from = objectEnvironment();
    evaluate(*from, "o = engine.Object()");
    const Bytes bytes = from->serializeScriptObject(from->referToGlobal("o"), true);
    from.reset();
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(objectEnvironment()->deserializeScriptObject(bytes));
}

TEST(SerializationTest, valuesAreCopies) {
    EXPECT_EQ(carried("o = engine.Value()", "return o:read()"), "1.5");
}

TEST(SerializationTest, anEnvironmentWithoutTheTypeRefuses) {
    const auto from = objectEnvironment();
    const auto to = luaEnvironment();
    evaluate(*from, "o = engine.Object()");
    EXPECT_FALSE(carry(*from, *to));
    evaluate(*from, "o = engine.Object");
    EXPECT_FALSE(carry(*from, *to));
}

TEST(SerializationTest, changedBytesAreRefused) {
    const auto environment = objectEnvironment();
    evaluate(*environment, "local n = {1, 'x'} o = function() return n end");
    const Bytes bytes = environment->serializeScriptObject(environment->referToGlobal("o"), false);
    ASSERT_FALSE(bytes.empty());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        Bytes changed = bytes;
        changed[i] ^= 1;
        EXPECT_FALSE(environment->deserializeScriptObject(changed)) << i;
        EXPECT_FALSE(environment->deserializeScriptObject(std::span(bytes).first(i))) << i;
    }
    Bytes longer = bytes;
    longer.push_back(0);
    EXPECT_FALSE(environment->deserializeScriptObject(longer));
    EXPECT_FALSE(environment->deserializeScriptObject(Bytes(100, 0x1b)));
    EXPECT_TRUE(environment->deserializeScriptObject(bytes));
}

} // namespace

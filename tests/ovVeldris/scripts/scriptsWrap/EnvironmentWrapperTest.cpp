#include <ovVeldris/scripts/scriptsWrap/EnvironmentWrapper.h>

#include "../support/Cases.h"

TEST(EnvironmentWrapperTest, objectsComeBack) {
    luaTest::expectCases({
        {"return deserialize(serialize(7))", "7"},
        {"return deserialize(serialize('a\\0b')) == 'a\\0b'", "true"},
        {"local t = {1, {x = 2}} t.self = t local u = deserialize(serialize(t)) "
         "return u[1] .. ' ' .. u[2].x .. ' ' .. tostring(u.self == u) .. ' ' .. tostring(u == t)",
         "1 2 true false"},
        {"local n = 3 return deserialize(serialize(function(x) return x * n end))(14)", "42"},
        {"local v = deserialize(serialize(ovMaths.Vector(1, 2, 3, 4))) return v",
         "Vec(1.000000, 2.000000, 3.000000, 4.000000)"},
        {"return serialize('x'):getSize() > 0", "true"},
        {"serialize(coroutine.create(print))",
         "error: test:1: serialize: the object cannot be serialised: it holds a thread"},
        {"serialize(nil)",
         "error: test:1: serialize: The object cannot be serialised: there is none, or it belongs "
         "to another environment"},
    });
}

TEST(EnvironmentWrapperTest, foreignAndChangedBytesAreRefused) {
    luaTest::expectCases({
        {"return pcall(deserialize, ovMemory.Buffer.fromString('\\27Lua'))", "false"},
        {"return pcall(deserialize, ovMemory.Buffer.new(0))", "false"},
        {"local b = serialize({1, 2, 3}) local refused = 0 for i = 0, #b - 1 do local old = b:getData(i) "
         "b:setData(i, old ~ 1) if not pcall(deserialize, b) then refused = refused + 1 end b:setData(i, "
         "old) end "
         "return refused == #b and #deserialize(b)",
         "3"},
    });
}

TEST(EnvironmentWrapperTest, ownershipGoesOver) {
    ovVeldris::ScriptsEngine from(nullptr);
    ovVeldris::ScriptsEngine to(nullptr);
    from.initialize();
    to.initialize();
    // The bytes go over as a host would carry them.
    luaTest::evaluate(*from.getEnvironment(), "buffer = ovMemory.Buffer.fromString('kept') "
                                              "function give() return serializeForwardOwnership(buffer) end "
                                              "function lend() return serialize(buffer) end");
    const auto carry = [&](const char* call) {
        const ovMemory::String bytes =
            luaTest::evaluate(*from.getEnvironment(), "return " + ovMemory::String(call));
        to.getEnvironment()->setGlobal("bytes", ovScripts::FunctionParameter(bytes));
    };
    carry("lend()");
    luaTest::evaluate(*to.getEnvironment(), "lent = deserialize(ovMemory.Buffer.fromString(bytes))");
    EXPECT_EQ(luaTest::evaluate(*to.getEnvironment(), "return lent"), "kept");
    EXPECT_EQ(luaTest::evaluate(*from.getEnvironment(), "return buffer"), "kept");
    carry("give()");
    luaTest::evaluate(*to.getEnvironment(),
                      "lent = nil given = deserialize(ovMemory.Buffer.fromString(bytes))");
    from.shutdown();
    EXPECT_EQ(luaTest::evaluate(*to.getEnvironment(), "collectgarbage() return given"), "kept");
}

#include <ovVeldris/scripts/memoryWrap/BufferWrapper.h>

#include "../support/Cases.h"

TEST(BufferWrapperTest, holdsBytes) {
    luaTest::expectCases({
        {"local b = ovMemory.Buffer.new(3) return b:getSize() .. b:getData(0) .. b:getData(2)", "300"},
        {"return ovMemory.Buffer.new(0):getSize()", "0"},
        {"local b = ovMemory.Buffer.fromString('a\\0\\xFFz') return b:getSize() .. ' ' .. #b .. ' ' .. "
         "b:getData(0) .. ' ' .. b:getData(1) .. ' ' .. b:getData(2)",
         "4 4 97 0 255"},
        {"return math.type(ovMemory.Buffer.fromString('a'):getData(0))", "integer"},
        {"return #tostring(ovMemory.Buffer.fromString('a\\0b'))", "3"},
        {"return ovMemory.Buffer.fromString('text')", "text"},
        {"local b = ovMemory.Buffer.new(2) b:setData(1, 255) b:setData(0, 65) return b:getData(1) .. "
         "tostring(b):sub(1, 1)",
         "255A"},
    });
}

TEST(BufferWrapperTest, refusesWhatIsNoByteOfIt) {
    luaTest::expectCases({
        {"return ovMemory.Buffer.fromString('abc'):getData(3)",
         "error: test:1: ovMemory.Buffer.getData: argument 2 is past the end, got 3; there are 3 elements, "
         "the "
         "first is 0"},
        {"ovMemory.Buffer.new(0):setData(0, 1)", "error: test:1: ovMemory.Buffer.setData: argument 2 is past "
                                                 "the end, got 0; there are 0 elements, the "
                                                 "first is 0"},
        {"ovMemory.Buffer.new(1):setData(0, 256)",
         "error: test:1: ovMemory.Buffer.setData: argument 3 expected an integer from 0 to 255, got 256"},
        {"return ovMemory.Buffer.new(-1)",
         "error: test:1: ovMemory.Buffer.new: argument 1 expected an integer "
         "from 0 to 18446744073709551615, got -1"},
        {"return ovMemory.Buffer.new(1 << 40)",
         "error: test:1: ovMemory.Buffer.new: argument 1 (size) expected "
         "at most 2147483648 bytes, got 1099511627776"},
        {"return ovMemory.Buffer.fromString(7)",
         "error: test:1: ovMemory.Buffer.fromString: argument 1 (text) expected string, got number"},
        {"return ovMemory.Buffer.new('7')",
         "error: test:1: ovMemory.Buffer.new: argument 1 (size) expected integer, got string"},
    });
}

TEST(BufferWrapperTest, countsAgainstTheMemoryOfItsEnvironment) {
    ovScripts::EnvironmentOptions options;
    options.memoryLimit = 32 << 20;
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize(options);
    luaTest::expectCases(
        *engine.getEnvironment(),
        {
            {"return #ovMemory.Buffer.new(8 << 20)", "8388608"},
            {"ovMemory.Buffer.new(40 << 20)", "error: test:1: ovMemory.Buffer.new: not enough memory"},
            {"keep = {} for i = 1, 100 do keep[i] = ovMemory.Buffer.new(1 << 20) end",
             "error: test:1: ovMemory.Buffer.new: not enough memory"},
            {"keep = nil return #ovMemory.Buffer.new(8 << 20)", "8388608"},
            {"for i = 1, 200 do ovMemory.Buffer.new(1 << 20) end return 'collected'", "collected"},
        });
}

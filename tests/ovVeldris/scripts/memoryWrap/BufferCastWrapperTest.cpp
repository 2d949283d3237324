#include <ovVeldris/scripts/memoryWrap/BufferCastWrapper.h>

#include "../support/Cases.h"

TEST(BufferCastWrapperTest, readsBytesAsElements) {
    // Lua packs the bytes: another encoder than the one that is tested.
    luaTest::expectCases({
        {"local c = ovMemory.BufferCastInt.new(ovMemory.Buffer.fromString(string.pack('<i4i4', -7, "
         "2147483647))) "
         "return c:getSize() .. ' ' .. #c .. ' ' .. c:getData(0) .. ' ' .. c:getData(1)",
         "2 2 -7 2147483647"},
        {"local c = ovMemory.BufferCastFloat.new(ovMemory.Buffer.fromString(string.pack('<fff', 0.5, -3, "
         "1e10))) "
         "return c:getSize() .. ' ' .. c:getData(0) .. ' ' .. c:getData(1) .. ' ' .. c:getData(2)",
         "3 0.5 -3.0 10000000000.0"},
        {"local c = ovMemory.BufferCastDouble.new(ovMemory.Buffer.fromString(string.pack('<dd', 0.1, "
         "-1e300))) "
         "return c:getSize() .. ' ' .. c:getData(0) .. ' ' .. c:getData(1)",
         "2 0.1 -1e+300"},
        {"local c = ovMaths.BufferCastVector.new(ovMemory.Buffer.fromString(string.pack('<ffffffff', 1, 2, "
         "3, 4, "
         "5, 6, 7, 8))) return c:getSize() .. ' ' .. tostring(c:getData(1))",
         "2 Vec(5.000000, 6.000000, 7.000000, 8.000000)"},
        {"return ovMemory.BufferCastInt.new(ovMemory.Buffer.new(7)):getSize()", "1"},
        {"return ovMaths.BufferCastVector.new(ovMemory.Buffer.new(0)):getSize()", "0"},
        {"ovMemory.BufferCastInt.new(ovMemory.Buffer.new(7)):getData(1)",
         "error: test:1: ovMemory.BufferCastInt.getData: argument 2 is past the end, got 1; there are 1 "
         "elements, "
         "the first is 0"},
        {"ovMemory.BufferCastInt.new()",
         "error: test:1: ovMemory.BufferCastInt.new: argument 1 (buffer) expected "
         "ovMemory.Buffer, got nothing"},
    });
}

TEST(BufferCastWrapperTest, writesIntoTheBuffer) {
    luaTest::expectCases({
        {"local b = ovMemory.Buffer.new(8) ovMemory.BufferCastInt.new(b):setData(1, -2) "
         "return string.unpack('<i4', tostring(b), 5)",
         "-2"},
        {"local b = ovMemory.Buffer.new(8) ovMemory.BufferCastFloat.new(b):setData(1, 0.1) "
         "return ('%.17g'):format(string.unpack('<f', tostring(b), 5))",
         "0.10000000149011612"},
        {"local b = ovMemory.Buffer.new(16) ovMemory.BufferCastDouble.new(b):setData(1, 0.1) "
         "return string.unpack('<d', tostring(b), 9)",
         "0.1"},
        {"local b = ovMemory.Buffer.new(32) local c = ovMaths.BufferCastVector.new(b) "
         "c:setData(0, ovMaths.Vector(1, 2, 3, 4)) c:getData(1)._z = 9 "
         "return table.concat({string.unpack('<ffffffff', tostring(b))}, ' ', 1, 8)",
         "1.0 2.0 3.0 4.0 0.0 0.0 9.0 0.0"},
        {"ovMemory.BufferCastInt.new(ovMemory.Buffer.new(4)):setData(0, 1 << 31)",
         "error: test:1: ovMemory.BufferCastInt.setData: argument 3 expected an integer from -2147483648 to "
         "2147483647, got 2147483648"},
        {"ovMaths.BufferCastVector.new(ovMemory.Buffer.new(16)):setData(0, 1)",
         "error: test:1: ovMaths.BufferCastVector.setData: argument 3 (value) expected ovMaths.Vector, got "
         "number"},
    });
}

TEST(BufferCastWrapperTest, keepsItsBufferAlive) {
    luaTest::expectCases({
        {"local c = ovMemory.BufferCastInt.new(ovMemory.Buffer.fromString(string.pack('<i4', 77))) "
         "for i = 1, 3 do collectgarbage() ovMemory.Buffer.new(4) end return c:getData(0)",
         "77"},
        {"local v = ovMaths.BufferCastVector.new(ovMemory.Buffer.fromString(string.pack('<ffff', 1, 2, 3, "
         "4))):getData(0) for i = 1, 3 do collectgarbage() ovMemory.Buffer.new(16) end return v",
         "Vec(1.000000, 2.000000, 3.000000, 4.000000)"},
    });
}

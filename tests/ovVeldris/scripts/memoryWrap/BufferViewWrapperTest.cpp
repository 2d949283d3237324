#include <ovVeldris/scripts/memoryWrap/BufferViewWrapper.h>

#include "../support/Cases.h"

namespace {

constexpr const char* TEN_INTEGERS =
    "local b = ovMemory.Buffer.fromString(string.pack('<i4i4i4i4i4i4i4i4i4i4', 0, 10, 20, 30, 40, 50, 60, "
    "70, 80, "
    "90)) local View, Cast = ovMemory.BufferViewInt, ovMemory.BufferCastInt "
    "local function show(v) local t = {} for i = 0, #v - 1 do t[i + 1] = v:getData(i) end "
    "return table.concat(t, ' ') end ";

} // namespace

TEST(BufferViewWrapperTest, showsParts) {
    const luaTest::Case cases[] = {
        {"show(View.view(b))", "0 10 20 30 40 50 60 70 80 90"},
        {"show(View.view(b, 7))", "70 80 90"},
        {"show(View.view(b, 2, 3))", "20 30 40"},
        {"show(View.view(Cast.new(b), 8))", "80 90"},
        {"show(View.view(b, 2):subView(3))", "50 60 70 80 90"},
        {"show(View.view(b, 2, 5):subView(1, 2))", "30 40"},
        {"View.view(b, 2, 5):getSize()", "5"},
        {"View.view(b, 10):getSize()", "0"},
        {"View.view(b, 4, 0):getSize()", "0"},
        {"View.view(b, 11)",
         "error: test:1: ovMemory.BufferViewInt.view: argument 2 (offset) is past the end, "
         "got 11; there are 10 elements"},
        {"View.view(b, 8, 3)",
         "error: test:1: ovMemory.BufferViewInt.view: argument 3 (count) goes past the end, "
         "got 3; behind the offset there are 2 elements"},
        {"View.view(b, -1)",
         "error: test:1: ovMemory.BufferViewInt.view: argument 2 expected an integer from 0 "
         "to 18446744073709551615, got -1"},
        {"View.view(b, 2, 5):subView(1, 5)", "error: test:1: ovMemory.BufferViewInt.subView: argument 3 "
                                             "(count) goes past the end, got 5; behind the "
                                             "offset there are 4 elements"},
        {"View.view(b, 2, 5):getData(5)",
         "error: test:1: ovMemory.BufferViewInt.getData: argument 2 is past the "
         "end, got 5; there are 5 elements, the first is 0"},
        {"View.view(ovMemory.BufferCastFloat.new(b))", "error: test:1: ovMemory.BufferViewInt.view: argument "
                                                       "1 (source) expected ovMemory.Buffer, or a cast of it "
                                                       "to the same elements, got ovMemory.BufferCastFloat"},
        {"View.view(7)", "error: test:1: ovMemory.BufferViewInt.view: argument 1 (source) expected an object "
                         "of a declared type, got number"},
    };
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    for (const luaTest::Case& row : cases)
        EXPECT_EQ(luaTest::evaluate(*engine.getEnvironment(),
                                    TEN_INTEGERS + ("return " + ovMemory::String(row.text))),
                  row.expected)
            << row.text;
}

TEST(BufferViewWrapperTest, hasElementsOfEachType) {
    luaTest::expectCases({
        {"local v = ovMemory.BufferView.view(ovMemory.Buffer.fromString('a\\xFF')) v:setData(0, 66) "
         "return v:getData(0) .. ' ' .. v:getData(1)",
         "66 255"},
        {"local v = ovMemory.BufferViewFloat.view(ovMemory.Buffer.fromString(string.pack('<ff', 0.5, 8))) "
         "v:setData(0, 2.25) return v:getData(0) .. ' ' .. v:getData(1)",
         "2.25 8.0"},
        {"local v = ovMemory.BufferViewDouble.view(ovMemory.Buffer.fromString(string.pack('<dd', 0.1, 8))) "
         "v:setData(1, 0.2) return v:getData(0) .. ' ' .. v:getData(1)",
         "0.1 0.2"},
        {"local b = ovMemory.Buffer.new(48) local v = ovMaths.BufferViewVector.view(b, 1, 2) "
         "v:setData(0, ovMaths.Vector(1, 2, 3, 4)) v:getData(1)._w = 7 "
         "return table.concat({string.unpack('<ffffffff', tostring(b), 17)}, ' ', 1, 8)",
         "1.0 2.0 3.0 4.0 0.0 0.0 0.0 7.0"},
    });
}

TEST(BufferViewWrapperTest, keepsAliveWhatItLooksInto) {
    luaTest::expectCases({
        {"local v = ovMemory.BufferViewInt.view(ovMemory.BufferCastInt.new(ovMemory.Buffer.fromString("
         "string.pack('<i4i4i4', 5, 6, 7))), 1):subView(1) "
         "for i = 1, 3 do collectgarbage() ovMemory.Buffer.new(12) end return v:getData(0)",
         "7"},
    });
}

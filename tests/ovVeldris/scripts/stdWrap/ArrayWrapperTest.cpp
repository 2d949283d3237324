#include <ovVeldris/scripts/stdWrap/ArrayWrapper.h>

#include "../support/Cases.h"

TEST(ArrayWrapperTest, elementsAreReadAndSetByNumber) {
    luaTest::expectCases({
        {"local a = std.array_float_4() return a:getSize() .. ' ' .. #a .. ' ' .. a:get(3)", "4 4 0.0"},
        {"local a = std.array_float_4() for i = 0, 3 do a:set(i, i / 4) end return a:get(1) .. ' ' .. "
         "a:get(3)",
         "0.25 0.75"},
        {"return std.array_float_4():get(4)",
         "error: test:1: std.array_float_4.get: argument 2 is past the end, "
         "got 4; there are 4 elements, the first is 0"},
        {"std.array_float_4():set(7, 1)",
         "error: test:1: std.array_float_4.set: argument 2 is past the end, got "
         "7; there are 4 elements, the first is 0"},
        {"return std.array_float_4():get(-1)", "error: test:1: std.array_float_4.get: argument 2 expected an "
                                               "integer from 0 to 18446744073709551615, got -1"},
    });
}

TEST(ArrayWrapperTest, rowsArePartsOfTheirArray) {
    luaTest::expectCases({
        {"local rows = std.array_array_float_4_4() return #rows .. ' ' .. #rows:get(3)", "4 4"},
        {"local rows = std.array_array_float_4_4() rows:get(2):set(1, 5) return rows:get(2):get(1)", "5.0"},
        {"local rows, row = std.array_array_float_4_4(), std.array_float_4() row:set(3, 8) rows:set(1, row) "
         "row:set(3, 9) return rows:get(1):get(3)",
         "8.0"},
        {"local row = std.array_array_float_4_4():get(0) collectgarbage() collectgarbage() row:set(0, 3) "
         "return row:get(0)",
         "3.0"},
        {"std.array_array_float_4_4():set(0, 1)", "error: test:1: std.array_array_float_4_4.set: argument 3 "
                                                  "(value) expected std.array_float_4, got number"},
    });
}

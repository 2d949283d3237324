#include <ovVeldris/scripts/mathsWrap/MatrixWrapper.h>

#include "../support/Cases.h"

using luaTest::expectCases;

namespace {

/// Evaluates "return " and each text behind common statements.
void expectMatrixResults(const ovMemory::String& before, std::initializer_list<luaTest::Case> cases) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    for (const luaTest::Case& row : cases)
        EXPECT_EQ(
            luaTest::evaluate(*engine.getEnvironment(), before + "return " + ovMemory::String(row.text)),
            row.expected)
            << row.text;
}

// Shows a matrix as its sixteen numbers, without a sign before zeros.
constexpr const char* SHOW = "local M, V = ovMaths.Matrix, ovMaths.Vector\n"
                             "local function show(m) local t = {} for r = 0, 3 do for c = 0, 3 do "
                             "t[#t + 1] = ('%.5g'):format(m:get(r, c) + 0.0):gsub('^%-0$', '0') end end "
                             "return table.concat(t, ' ') end\n";

} // namespace

TEST(MatrixWrapperTest, textKeepsItsIrregularEnd) {
    expectCases({
        {"return ovMaths.Matrix()", "Mat\n(\n"
                                    "\t1.000000, 0.000000, 0.000000, 0.000000, \n"
                                    "\t0.000000, 1.000000, 0.000000, 0.000000, \n"
                                    "\t0.000000, 0.000000, 1.000000, 0.000000, \n"
                                    "\t0.000000, 0.000000, 0.000000, 1.000000\n"
                                    ")"},
    });
}

TEST(MatrixWrapperTest, elementsStandInRows) {
    expectMatrixResults(
        SHOW + ovMemory::String("local m = M.newMat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, "
                                "14, 15, 16)\n"),
        {
            {"show(M())", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
            {"show(m)", "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
            {"show(M.newMat2(2, 3, 4, 5))", "2 3 0 0 4 5 0 0 0 0 1 0 0 0 0 1"},
            {"show(M.newMat3(1, 2, 3, 4, 5, 6, 7, 8, 9))", "1 2 3 0 4 5 6 0 7 8 9 0 0 0 0 1"},
            {"m:getRow0()", "Vec(1.000000, 2.000000, 3.000000, 4.000000)"},
            {"m:getRow1()", "Vec(5.000000, 6.000000, 7.000000, 8.000000)"},
            {"m:getRow2()", "Vec(9.000000, 10.000000, 11.000000, 12.000000)"},
            {"m:getRow3()", "Vec(13.000000, 14.000000, 15.000000, 16.000000)"},
            {"m:getCol0()", "Vec(1.000000, 5.000000, 9.000000, 13.000000)"},
            {"m:getCol1()", "Vec(2.000000, 6.000000, 10.000000, 14.000000)"},
            {"m:getCol2()", "Vec(3.000000, 7.000000, 11.000000, 15.000000)"},
            {"m:getCol3()", "Vec(4.000000, 8.000000, 12.000000, 16.000000)"},
            {"m:get(1, 2)", "7.0"},
            {"m:get(4, 0)", "0.0"},
            {"m:get(-1, 0)", "0.0"},
            {"m:set(2, 0, 0.5) and m:getRow2()", "Vec(0.500000, 10.000000, 11.000000, 12.000000)"},
            {"m:set(0, 4, 1)", "false"},
            {"m:get(0.5, 0)",
             "error: test:4: ovMaths.Matrix.get: argument 2 (row) expected integer, got 0.5"},
            {"M.newMat2(1, 2, 3)", "error: test:4: ovMaths.Matrix.newMat2: argument 4 (m11) "
                                   "expected number, got nothing"},
        });
}

TEST(MatrixWrapperTest, memberMIsThePlaceOfTheElements) {
    expectMatrixResults(
        SHOW, {
                  {"(function() local m = M() m._m:get(1):set(3, 7) return show(m) end)()",
                   "1 0 0 0 0 1 0 7 0 0 1 0 0 0 0 1"},
                  {"(function() local m = M() local rows = std.array_array_float_4_4() "
                   "rows:get(2):set(0, 5) m._m = rows return show(m) end)()",
                   "0 0 0 0 0 0 0 0 5 0 0 0 0 0 0 0"},
                  // The rows keep their matrix alive.
                  {"(function() local row = M.newMat2(2, 3, 4, 5)._m:get(1) collectgarbage() "
                   "collectgarbage() return row:get(0) end)()",
                   "4.0"},
                  {"(function() M()._m = 7 end)()",
                   "error: test:3: ovMaths.Matrix._m expected std.array_array_float_4_4, got number"},
              });
}

TEST(MatrixWrapperTest, operatorsFollowTheirFormulas) {
    expectMatrixResults(
        SHOW + ovMemory::String("local a, b = M.newMat2(1, 2, 3, 4), M.newMat2(5, 6, 7, 8)\n"),
        {
            {"show(a + b)", "6 8 0 0 10 12 0 0 0 0 2 0 0 0 0 2"},
            {"show(a - b)", "-4 -4 0 0 -4 -4 0 0 0 0 0 0 0 0 0 0"},
            {"show(a * b)", "19 22 0 0 43 50 0 0 0 0 1 0 0 0 0 1"},
            // b^-1 = (-4, 3; 3.5, -2.5)
            {"show(a / b)", "3 -2 0 0 2 -1 0 0 0 0 1 0 0 0 0 1"},
            {"show(a / M.newMat2(1, 2, 2, 4))", "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0"},
            {"a * V(1, 2, 3, 4)", "Vec(5.000000, 11.000000, 3.000000, 4.000000)"},
            {"a == M.newMat2(1, 2, 3, 4)", "true"},
            {"a == b", "false"},
            {"a == V()", "false"},
            {"a * 2", "error: test:4: ovMaths.Matrix.mul: expected an ovMaths.Matrix or an "
                      "ovMaths.Vector behind the *"},
            {"a + V()", "error: test:4: ovMaths.Matrix.add: argument 2 expected ovMaths.Matrix, "
                        "got ovMaths.Vector"},
        });
}

TEST(MatrixWrapperTest, invertsAndTransposes) {
    const ovMemory::String matrices =
        "local two, three = M.newMat2(2, 1, 4, 4), M.newMat3(1, 2, 0, 0, 1, 0, 3, 0, 2)\n"
        "local four = M.newMat4(2, 0, 0, 6, 0, 4, 0, 8, 0, 0, 0.5, 3, 0, 0, 0, 1)\n";
    // By hand: 1/4 (4, -1; -4, 2); rows (1, -2, 0), (0, 1, 0), (-1.5, 3, 0.5); each scale and translation.
    expectMatrixResults(
        SHOW + matrices,
        {
            {"show(two:getInverseMat2())", "1 -0.25 0 0 -1 0.5 0 0 0 0 1 0 0 0 0 1"},
            {"show(three:getInverseMat3())", "1 -2 0 0 0 1 0 0 -1.5 3 0.5 0 0 0 0 1"},
            {"show(four:getInverseMat4())", "0.5 0 0 -3 0 0.25 0 -2 0 0 2 -6 0 0 0 1"},
            {"two:inverseMat2() and show(two)", "1 -0.25 0 0 -1 0.5 0 0 0 0 1 0 0 0 0 1"},
            {"three:inverseMat3() and show(three)", "1 -2 0 0 0 1 0 0 -1.5 3 0.5 0 0 0 0 1"},
            {"four:inverseMat4() and show(four)", "0.5 0 0 -3 0 0.25 0 -2 0 0 2 -6 0 0 0 1"},
            {"M.newMat2(1, 2, 2, 4):inverseMat2()", "false"},
            {"show(four:getTranspose())", "2 0 0 0 0 4 0 0 0 0 0.5 0 6 8 3 1"},
            {"show((function() four:transpose() return four end)())", "2 0 0 0 0 4 0 0 0 0 0.5 0 6 8 3 1"},
            {"two:getDeterminantMat2()", "4.0"},
            {"three:getDeterminantMat3()", "2.0"},
            {"four:getDeterminantMat4()", "4.0"},
            {"two:getTraceMat2()", "6.0"},
            {"three:getTraceMat3()", "4.0"},
            {"four:getTraceMat4()", "7.5"},
        });
}

// Scaled by (2, 3, 4), a quarter turn about z, moved by (5, 6, 7): columns (0, 2, 0), (-3, 0, 0), (0, 0, 4).
TEST(MatrixWrapperTest, transformationsComeApart) {
    const ovMemory::String moved =
        "local q = ovMaths.Quaternion.newQuat4(0, 0, math.sqrt(0.5), math.sqrt(0.5))\n"
        "local m = M() m:setToTransformation(V(5, 6, 7), V(2, 3, 4), q)\n"
        "local function round(v) return ('%.4f %.4f %.4f'):format(v._x, v._y, v._z) end\n";
    expectMatrixResults(
        SHOW + moved,
        {
            {"(show(m):gsub('%-?%d[%d.]*e%-%d+', '0'))", "0 -3 0 5 2 0 0 6 0 0 4 7 0 0 0 1"},
            {"m:getPositionComponent()", "Vec(5.000000, 6.000000, 7.000000, 0.000000)"},
            {"round(m:getScaleComponent())", "2.0000 3.0000 4.0000"},
            {"round(m:getOrientationComponent())", "0.0000 0.0000 0.7071"},
            {"(function() local p, s, o = V(), V(), ovMaths.Quaternion() m:getDecomposed(p, s, o) "
             "return round(p) .. ' ' .. round(s) .. ' ' .. round(o) end)()",
             "5.0000 6.0000 7.0000 2.0000 3.0000 4.0000 0.0000 0.0000 0.7071"},
            {"(function() m:setPositionComponent(V(1, 2, 3)) return m:getCol3() end)()",
             "Vec(1.000000, 2.000000, 3.000000, 1.000000)"},
            {"(function() m:setScaleComponent(V(1, 1, 2)) return round(m:getScaleComponent()) end)()",
             "1.0000 1.0000 2.0000"},
            {"(function() m:setOrientationComponent(ovMaths.Quaternion()) return show(m) end)()",
             "2 0 0 5 0 3 0 6 0 0 4 7 0 0 0 1"},
            {"m:setPositionComponent(1, 2, 3)",
             "error: test:6: ovMaths.Matrix.setPositionComponent: argument 2 "
             "(position) expected ovMaths.Vector, got number"},
        });
}

// y scale 1 / tan(45 degrees) = 1, x scale 1 / 2; A = 3 / (3 - 1) = 1.5, B = -1 * 3 / 2 = -1.5.
TEST(MatrixWrapperTest, projectionsAndViewsFollowTheirFormulas) {
    expectMatrixResults(
        SHOW,
        {
            {"(function() local m = M() m:setToPerspectiveMatrix(math.pi / 2, 2, 1, 3) return show(m) end)()",
             "0.5 0 0 0 0 1 0 0 0 0 1.5 -1.5 0 0 1 0"},
            {"M():setToPerspectiveMatrix(0, 2, 1, 3)", "false"},
            // 2 / 4, 2 / 8, 1 / (5 - 1), -1 / (5 - 1)
            {"(function() local m = M() m:setToOrthographicMatrix(4, 8, 1, 5) return show(m) end)()",
             "0.5 0 0 0 0 0.25 0 0 0 0 0.25 -0.25 0 0 0 1"},
            // Looks along +x from (1, 2, 3): right is -z, so the rows are -z, y, x.
            {"(function() local m = M() m:setToViewMatrixDirection(V(1, 2, 3), V(9, 0, 0)) return show(m) "
             "end)()",
             "0 0 -1 3 0 1 0 -2 1 0 0 -1 0 0 0 1"},
            // With +z up: right is up x forward = z x x = y.
            {"(function() local m = M() m:setToViewMatrixDirection(V(1, 2, 3), V(9, 0, 0), V(0, 0, 1)) "
             "return show(m) end)()",
             "0 1 0 -2 0 0 1 -3 1 0 0 -1 0 0 0 1"},
            {"M():setToViewMatrixDirection(V(), 7)",
             "error: test:3: ovMaths.Matrix.setToViewMatrixDirection: "
             "argument 3 (direction) expected ovMaths.Vector, got number"},
        });
}

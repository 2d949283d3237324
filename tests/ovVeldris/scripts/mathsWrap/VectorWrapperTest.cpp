#include <ovVeldris/scripts/mathsWrap/VectorWrapper.h>

#include "../support/Cases.h"

using luaTest::expectCases;

TEST(VectorWrapperTest, isMadeOfUpToFourNumbers) {
    expectCases({
        {"return ovMaths.Vector()", "Vec(0.000000, 0.000000, 0.000000, 0.000000)"},
        {"return ovMaths.Vector(1, -2.5)", "Vec(1.000000, -2.500000, 0.000000, 0.000000)"},
        {"return ovMaths.Vector(1, 2, 3, 4)", "Vec(1.000000, 2.000000, 3.000000, 4.000000)"},
        {"return ovMaths.Vector.newVec2(0.125, 7)", "Vec(0.125000, 7.000000, 0.000000, 0.000000)"},
        {"return ovMaths.Vector.newVec3(1e6, 2, -3)", "Vec(1000000.000000, 2.000000, -3.000000, 0.000000)"},
        {"return ovMaths.Vector.newVec4(1, 2, 3, 0.1)", "Vec(1.000000, 2.000000, 3.000000, 0.100000)"},
        {"return ovMaths.Vector('1')",
         "error: test:1: ovMaths.Vector: argument 1 (x) expected number, got string"},
        {"return ovMaths.Vector.newVec3(1, 2)",
         "error: test:1: ovMaths.Vector.newVec3: argument 3 (z) expected number, got nothing"},
    });
}

TEST(VectorWrapperTest, membersAreFloats) {
    expectCases({
        {"local v = ovMaths.Vector(1, 2, 3, 4) return v._x .. v._y .. v._z .. v._w", "1.02.03.04.0"},
        {"local v = ovMaths.Vector() v._x = 5 v._y = 6 v._z = 7 v._w = 8 return v",
         "Vec(5.000000, 6.000000, 7.000000, 8.000000)"},
        {"local v = ovMaths.Vector() v._x = 0.1 return ('%.17g'):format(v._x)", "0.10000000149011612"},
        {"local v = ovMaths.Vector() v._y = nil",
         "error: test:1: ovMaths.Vector._y expected number, got nil"},
        {"return ovMaths.Vector().x", "error: test:1: ovMaths.Vector has no member 'x'"},
    });
}

TEST(VectorWrapperTest, operatorsWorkElementByElement) {
    const ovMemory::String values =
        "local a, b = ovMaths.Vector(6, -8, 1, 0.5), ovMaths.Vector(2, 4, -1, 0.25) ";
    const struct {
        const char *operation, *expected;
    } cases[] = {
        {"a + b", "Vec(8.000000, -4.000000, 0.000000, 0.750000)"},
        {"a - b", "Vec(4.000000, -12.000000, 2.000000, 0.250000)"},
        {"a * b", "Vec(12.000000, -32.000000, -1.000000, 0.125000)"},
        {"a / b", "Vec(3.000000, -2.000000, -1.000000, 2.000000)"},
        {"a * 3", "Vec(18.000000, -24.000000, 3.000000, 1.500000)"},
        {"0.5 * a", "Vec(3.000000, -4.000000, 0.500000, 0.250000)"},
        {"a / 4", "Vec(1.500000, -2.000000, 0.250000, 0.125000)"},
        {"a == b", "false"},
        {"a == b + ovMaths.Vector(4, -12, 2, 0.25)", "true"},
        {"a ~= ovMaths.Vector(6, -8, 1, 0.5)", "false"},
        {"a == ovMaths.Matrix()", "false"},
        {"a == 6", "false"},
        {"a * 'b'", "error: test:1: ovMaths.Vector.mul: expected two ovMaths.Vector, or one and a number"},
        {"a / ovMaths.Matrix()",
         "error: test:1: ovMaths.Vector.div: expected an ovMaths.Vector or a number behind the /"},
        {"1 / a", "error: test:1: ovMaths.Vector.div: argument 1 expected ovMaths.Vector, got number"},
        {"a + 1", "error: test:1: ovMaths.Vector.add: argument 2 expected ovMaths.Vector, got number"},
    };
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    for (const auto& row : cases)
        EXPECT_EQ(luaTest::evaluate(*engine.getEnvironment(), values + "return " + row.operation),
                  row.expected)
            << row.operation;
}

// 2, 3, 6 and 2, 3, 6, 24 have whole lengths: 7 and 25; 3, 4 has 5.
TEST(VectorWrapperTest, lengthsAndDistancesUseTheirComponents) {
    const ovMemory::String values = "local a, b = ovMaths.Vector(2, 3, 6, 24), ovMaths.Vector(5, 7, 18, 108) "
                                    "local V = ovMaths.Vector ";
    const struct {
        const char *operation, *expected;
    } cases[] = {
        {"V(3, 4, 9, 9):getLengthVec2()", "5.0"},
        {"a:getLengthVec3()", "7.0"},
        {"a:getLengthVec4()", "25.0"},
        {"a:getLengthSquaredVec2()", "13.0"},
        {"a:getLengthSquaredVec3()", "49.0"},
        {"a:getLengthSquaredVec4()", "625.0"},
        // b - a = (3, 4, 12, 84), with the lengths 5, 13 and 85
        {"a:getDistanceVec2(b)", "5.0"},
        {"a:getDistanceVec3(b)", "13.0"},
        {"b:getDistanceVec4(a)", "85.0"},
        {"a:getDistanceSquaredVec2(b)", "25.0"},
        {"a:getDistanceSquaredVec3(b)", "169.0"},
        {"a:getDistanceSquaredVec4(b)", "7225.0"},
        {"V.distanceVec2(a, b)", "5.0"},
        {"V.distanceVec3(a, b)", "13.0"},
        {"V.distanceVec4(a, b)", "85.0"},
        {"V.distanceSquaredVec2(a, b)", "25.0"},
        {"V.distanceSquaredVec3(a, b)", "169.0"},
        {"V.distanceSquaredVec4(a, b)", "7225.0"},
        // 10 + 21 = 31, + 108 = 139, + 2592 = 2731
        {"a:dotProductVec2(b)", "31.0"},
        {"a:dotProductVec3(b)", "139.0"},
        {"a:dotProductVec4(b)", "2731.0"},
        {"V.dotVec2(a, b)", "31.0"},
        {"V.dotVec3(a, b)", "139.0"},
        {"V.dotVec4(a, b)", "2731.0"},
        {"a:getDistanceVec3()",
         "error: test:1: ovMaths.Vector.getDistanceVec3: argument 2 (other) expected ovMaths.Vector, got "
         "nothing"},
        {"a.getLengthVec3(7)",
         "error: test:1: ovMaths.Vector.getLengthVec3: argument 1 expected ovMaths.Vector, got number"},
    };
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    for (const auto& row : cases)
        EXPECT_EQ(luaTest::evaluate(*engine.getEnvironment(), values + "return " + row.operation),
                  row.expected)
            << row.operation;
}

TEST(VectorWrapperTest, directionsHaveLengthOne) {
    expectCases({
        {"local v = ovMaths.Vector(3, 4, 5, 6) v:normalizeVec2() return v",
         "Vec(0.600000, 0.800000, 5.000000, 6.000000)"},
        {"local v = ovMaths.Vector(2, 3, 6, 5) v:normalizeVec3() return v",
         "Vec(0.285714, 0.428571, 0.857143, 5.000000)"},
        {"local v = ovMaths.Vector(2, 3, 6, 24) v:normalizeVec4() return v",
         "Vec(0.080000, 0.120000, 0.240000, 0.960000)"},
        {"return ovMaths.Vector(3, 4, 5, 6):getNormalizedVec2()",
         "Vec(0.600000, 0.800000, 5.000000, 6.000000)"},
        {"return ovMaths.Vector(2, 3, 6, 5):getNormalizedVec3()",
         "Vec(0.285714, 0.428571, 0.857143, 5.000000)"},
        {"return ovMaths.Vector(2, 3, 6, 24):getNormalizedVec4()",
         "Vec(0.080000, 0.120000, 0.240000, 0.960000)"},
        {"local v = ovMaths.Vector(0, 0, 0, 7) v:normalizeVec3() return v",
         "Vec(0.000000, 0.000000, 0.000000, 7.000000)"},
        {"local v = ovMaths.Vector(3, 4) local n = v:getNormalizedVec2() return v",
         "Vec(3.000000, 4.000000, 0.000000, 0.000000)"},
    });
}

// (1, 2, 3) x (4, 5, 7) = (2*7 - 3*5, 3*4 - 1*7, 1*5 - 2*4) = (-1, 5, -3)
TEST(VectorWrapperTest, crossProductsKeepTheirOrder) {
    expectCases({
        {"return ovMaths.Vector(1, 2, 3, 9):getCrossVec3(ovMaths.Vector(4, 5, 7, 9))",
         "Vec(-1.000000, 5.000000, -3.000000, 0.000000)"},
        {"return ovMaths.Vector.crossVec3(ovMaths.Vector(1, 2, 3), ovMaths.Vector(4, 5, 7))",
         "Vec(-1.000000, 5.000000, -3.000000, 0.000000)"},
        {"local v = ovMaths.Vector(0, 0, 0, 6) v:setAsCrossVec3(ovMaths.Vector(1, 2, 3), ovMaths.Vector(4, "
         "5, 7)) "
         "return v",
         "Vec(-1.000000, 5.000000, -3.000000, 6.000000)"},
    });
}

TEST(VectorWrapperTest, vectorsAreCollected) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    ovScripts::Environment& environment = *engine.getEnvironment();
    const auto use = [&] {
        luaTest::evaluate(environment,
                          "local v = ovMaths.Vector(1, 2, 3) for i = 1, 10000 do v:getCrossVec3(v) end");
        environment.collectGarbage();
        return environment.getUsedMemory();
    };
    const std::size_t before = use();
    for (int i = 0; i < 3; ++i)
        EXPECT_LE(use(), before + 1024);
}

#include <ovVeldris/scripts/mathsWrap/QuaternionWrapper.h>

#include "../support/Cases.h"

using luaTest::expectCases;

TEST(QuaternionWrapperTest, holdsFourNumbers) {
    expectCases({
        {"return ovMaths.Quaternion()", "Quat(0.000000, 0.000000, 0.000000, 1.000000)"},
        {"return ovMaths.Quaternion.newQuat4(1, -2, 3, 0.5)",
         "Quat(1.000000, -2.000000, 3.000000, 0.500000)"},
        {"local q = ovMaths.Quaternion() q._x = 1 q._y = 2 q._z = 3 q._w = 4 return q._x .. q._y .. q._z .. "
         "q._w",
         "1.02.03.04.0"},
        {"return ovMaths.Quaternion.newQuat4(1, 2, 3)",
         "error: test:1: ovMaths.Quaternion.newQuat4: argument 4 (w) expected number, got nothing"},
    });
}

// Half angles: sin 30 degrees = 0.5, cos 30 = 0.866025; sin 45 = cos 45 = 0.707107.
TEST(QuaternionWrapperTest, rotationsAreMadeOfAnglesAndDirections) {
    expectCases({
        {"local q = ovMaths.Quaternion() q:setFromAxisAngle(ovMaths.Vector(0, 2, 0), math.pi / 3) return q",
         "Quat(0.000000, 0.500000, 0.000000, 0.866025)"},
        {"local q = ovMaths.Quaternion() q:setFromEuler(math.pi / 2, 0, 0) return q",
         "Quat(0.707107, 0.000000, 0.000000, 0.707107)"},
        {"local q = ovMaths.Quaternion() q:setFromEuler(0, math.pi / 3, 0) return q",
         "Quat(0.000000, 0.500000, 0.000000, 0.866025)"},
        {"local q = ovMaths.Quaternion() q:setFromEuler(0, 0, math.pi / 3) return q",
         "Quat(0.000000, 0.000000, 0.500000, 0.866025)"},
        {"local q = ovMaths.Quaternion() "
         "q:setFromRotationBetween(ovMaths.Vector(3, 0, 0), ovMaths.Vector(0, 5, 0)) return q",
         "Quat(0.000000, 0.000000, 0.707107, 0.707107)"},
        // A quarter turn about z as a matrix, and the same with a scale and a translation.
        {"local q = ovMaths.Quaternion() "
         "q:setFromOrientationMatrix(ovMaths.Matrix.newMat3(0, -1, 0, 1, 0, 0, 0, 0, 1)) return q",
         "Quat(0.000000, 0.000000, 0.707107, 0.707107)"},
        {"local q = ovMaths.Quaternion() q:setFromTransformationMatrix("
         "ovMaths.Matrix.newMat4(0, -3, 0, 8, 2, 0, 0, 9, 0, 0, 4, 7, 0, 0, 0, 1)) return q",
         "Quat(0.000000, 0.000000, 0.707107, 0.707107)"},
    });
}

TEST(QuaternionWrapperTest, turnsVectorsAndAppendsRotations) {
    expectCases({
        // A quarter turn about z turns +x to +y, +y to -x; w is kept.
        {"local q = ovMaths.Quaternion.newQuat4(0, 0, math.sqrt(0.5), math.sqrt(0.5)) "
         "local v = q:transform(ovMaths.Vector(1, 2, 3, 4)) "
         "return ('%.4f %.4f %.4f %.4f'):format(v._x, v._y, v._z, v._w)",
         "-2.0000 1.0000 3.0000 4.0000"},
        // About z and then about x: +x to +y to +z. The other order would leave +x at +y.
        {"local q, next = ovMaths.Quaternion(), ovMaths.Quaternion() "
         "q:setFromAxisAngle(ovMaths.Vector(0, 0, 1), math.pi / 2) "
         "next:setFromAxisAngle(ovMaths.Vector(1, 0, 0), math.pi / 2) q:apply(next) "
         "local v = q:transform(ovMaths.Vector(1, 0, 0)) "
         "return ('%.4f %.4f %.4f'):format(math.abs(v._x), math.abs(v._y), v._z)",
         "0.0000 0.0000 1.0000"},
        {"local q = ovMaths.Quaternion() q:setFromEuler(0.25, -0.5, 1) local e = q:getAsEulerAngles() "
         "return ('%.5f %.5f %.5f'):format(e._x, e._y, e._z)",
         "0.25000 -0.50000 1.00000"},
    });
}

#include <ovVeldris/scripts/graphicsWrap/VolumeWrappers.h>

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Viewport.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>

namespace {

/// Beside a camera at (10, 0, 0) that looks along +x at a view of 4 x 2 metres.
class VolumeWrappersTest : public GraphicsScripts {
protected:
    VolumeWrappersTest() {
        evaluate("V = ovMaths.Vector.newVec3 "
                 "function show(v) return string.format('%.3f %.3f %.3f %.3f', v._x, v._y, v._z, v._w) end "
                 "eye = ovGraphics.CameraManager.getInstance():createOrRetrieve('eye') "
                 "eye:setPosition(V(10, 0, 0)) eye:lookAt(V(1, 0, 0), V(0, 1, 0)) "
                 "eye:setOrthographic(4, 2, 1, 11)");
    }
    ~VolumeWrappersTest() override { getGraphics().getCameraManager()->erase("eye"); }
};

} // namespace

TEST_F(VolumeWrappersTest, boxesStandAroundTheirCentre) {
    EXPECT_EQ(evaluate("return show(ovGraphics.BoundingBox.newCube(V(1, 2, 3), 4):getCenter())"),
              "1.000 2.000 3.000 0.000");
    EXPECT_EQ(evaluate("return show(ovGraphics.BoundingBox.newCube(V(1, 2, 3), 4):getMinimum())"),
              "-1.000 0.000 1.000 0.000");
    EXPECT_EQ(evaluate("return show(ovGraphics.BoundingBox.newBox(V(1, 2, 3), V(2, 4, 6)):getMaximum())"),
              "2.000 4.000 6.000 0.000");
    EXPECT_EQ(evaluate("return show(ovGraphics.BoundingBox.newBox(V(1, 2, 3), V(2, 4, 6)):getSize())"),
              "2.000 4.000 6.000 0.000");
}

TEST_F(VolumeWrappersTest, frustumsTellWhatACameraSees) {
    EXPECT_EQ(evaluate("return show(eye:getFrustum():getPlane(4))"), "1.000 0.000 0.000 -11.000") << "near";
    EXPECT_EQ(evaluate("return show(eye:getFrustum():copy():getPlane(5))"), "-1.000 0.000 0.000 21.000");
    EXPECT_EQ(evaluate("return show(eye:getFrustum():getPlane(6))"), "0.000 0.000 0.000 0.000");
    EXPECT_EQ(
        evaluate("return ovGraphics.BoundingBox.newCube(V(15, 0, 0), 1):checkAgainst(eye:getFrustum())"),
        "true");
    EXPECT_EQ(evaluate("return ovGraphics.BoundingBox.newCube(V(5, 0, 0), 1):checkAgainst(eye:getFrustum())"),
              "false")
        << "behind the camera";
}

TEST_F(VolumeWrappersTest, camerasTellHowTheyLook) {
    EXPECT_EQ(evaluate("return eye:getNear() .. ' ' .. eye:getFar() .. ' ' .. eye:getOrthographicHeight()"),
              "1.0 11.0 2.0");
    EXPECT_EQ(evaluate("return show(eye:getDirectionAtPixelView(0, 0))"), "0.000 0.000 1.000 0.000");
    EXPECT_EQ(evaluate("return show(eye:getDirectionAtPixelWorld(0, 0))"), "1.000 0.000 0.000 0.000");
    EXPECT_EQ(evaluate("return eye:setPerspective(1.5, 1, 0.5, 100)"), "true");
    EXPECT_EQ(evaluate("return eye:getPerspectiveFov() .. ' ' .. eye:getNear()"), "1.5 0.5");
    // The right edge of a square view of a right angle is at 45 degrees.
    EXPECT_EQ(evaluate("eye:setPerspective(math.pi / 2, 1, 0.5, 100) return "
                       "show(eye:getDirectionAtPixelView(1, 0.5))"),
              "0.707 0.000 0.707 0.000");
    EXPECT_EQ(evaluate("return show(eye:getDirectionAtPixelWorld(1, 0.5))"), "0.707 0.000 -0.707 0.000")
        << "looking along +x with +y up, -z is to the right";
    EXPECT_EQ(evaluate("return eye:setPerspective(-1, 1, 0.5, 100)"), "false");
}

TEST_F(VolumeWrappersTest, wrongArgumentsAreNamed) {
    EXPECT_EQ(evaluate("return eye:getFrustum():getPlane(-1)"),
              "error: test:1: ovGraphics.Frustum.getPlane: argument 2 expected an integer from 0 to "
              "4294967295, got -1");
    EXPECT_EQ(evaluate("return ovGraphics.BoundingBox.newCube(V(1, 2, 3), 'x')"),
              "error: test:1: ovGraphics.BoundingBox.newCube: argument 2 (side) expected number, got string");
    EXPECT_EQ(evaluate("return ovGraphics.BoundingBox.newCube(eye, 1)"),
              "error: test:1: ovGraphics.BoundingBox.newCube: argument 1 (center) expected ovMaths.Vector, "
              "got ovGraphics.Camera");
}

TEST_F(VolumeWrappersTest, boxesWorkOnWorkers) {
    EXPECT_EQ(
        evaluateOnWorker("local box = ovGraphics.BoundingBox.newCube(ovMaths.Vector.newVec3(1, 2, 3), 4) "
                         "return box:getCenter()._y"),
        "2.0");
}

TEST_F(VolumeWrappersTest, viewportsTellTheirHeight) {
    evaluate("part = ovGraphics.ViewportManager.getInstance():createOrRetrieve('part')");
    getGraphics().getViewportManager()->createOrRetrieve("part")->setSize(3, 5);
    EXPECT_EQ(evaluate("return part:getHeight()"), "5");
    getGraphics().getViewportManager()->erase("part");
}

// A cube of 2 m seen head-on through a right angle: its near face needs 1 / 0.94 m and stands 1 m before the
// middle.
TEST_F(VolumeWrappersTest, camerasSeeWholeBoxes) {
    evaluate("cube = ovGraphics.BoundingBox.newCube(V(5, 0, 0), 2)");
    EXPECT_EQ(evaluate("eye:frame(cube, V(0, 0, 3), 1, math.pi / 2) return show(eye:getPosition())"),
              "5.000 0.000 -2.064 0.000");
    EXPECT_EQ(evaluate("eye:frame(cube, V(0, 0, 3), 0.5, math.pi / 2) return show(eye:getPosition())"),
              "5.000 0.000 -3.128 0.000");
    EXPECT_EQ(evaluate("eye:frame(cube, V(0, 0, -1)) return eye:getPerspectiveFov()"), "0.60000002384186");
    EXPECT_EQ(evaluate("return cube:checkAgainst(eye:getFrustum())"), "true");
    EXPECT_EQ(
        evaluate("eye:frame(cube, V(0, 0, 0))"),
        "error: test:1: ovGraphics.Camera.frame: the camera 'eye' cannot show the box: the direction to "
        "look along is zero or not finite");
    EXPECT_EQ(
        evaluate("eye:frame(cube, V(0, 0, 1), 0)"),
        "error: test:1: ovGraphics.Camera.frame: the camera 'eye' cannot show the box: the aspect is not "
        "above 0");
    EXPECT_EQ(evaluate("eye:frame(eye, V(0, 0, 1))"),
              "error: test:1: ovGraphics.Camera.frame: argument 2 (box) expected ovGraphics.BoundingBox, got "
              "ovGraphics.Camera");
    EXPECT_EQ(evaluate("ovGraphics.CameraManager.getInstance():erase('eye') eye:frame(cube, V(0, 0, 1))"),
              "error: test:1: ovGraphics.Camera.frame: argument 1 expected ovGraphics.Camera, got "
              "ovGraphics.Camera 'eye' is gone: it was destroyed");
}

#include <ovGraphics/scene/CameraFraming.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>

using namespace ovGraphics;
using ovMaths::Vector;

namespace {

struct Framed {
    double furthestAcross = 0.0; ///< of the corners from the middle, 1 at the left and right edge
    double furthestUp = 0.0;
    double nearest = INFINITY; ///< depth of a corner
    bool isBetweenPlanes = true;
};

double dot(const Vector& a, const double (&b)[3]) {
    return a.x * b[0] + a.y * b[1] + a.z * b[2];
}

/// Where the corners of a box stand, in double precision, from what the camera tells of itself.
Framed project(const Camera& camera, const BoundingBox& box) {
    const Vector forward = camera.getDirection();
    const Vector right =
        camera.getDirectionAtPixelWorld(1.0f, 0.5f) - camera.getDirectionAtPixelWorld(0.0f, 0.5f);
    const Vector up =
        camera.getDirectionAtPixelWorld(0.5f, 0.0f) - camera.getDirectionAtPixelWorld(0.5f, 1.0f);
    const double tangent = std::tan(0.5 * camera.getPerspectiveFov());
    const Vector corners[] = {box.getMinimum(), box.getMaximum()};
    Framed framed;
    for (unsigned int i = 0; i < 8; ++i) {
        const double offset[3] = {double(corners[i & 1].x) - camera.getPosition().x,
                                  double(corners[i >> 1 & 1].y) - camera.getPosition().y,
                                  double(corners[i >> 2 & 1].z) - camera.getPosition().z};
        const double depth = dot(forward, offset);
        const double across = dot(right, offset) / std::hypot(right.x, right.y, right.z);
        const double above = dot(up, offset) / std::hypot(up.x, up.y, up.z);
        framed.furthestAcross =
            std::max(framed.furthestAcross, std::abs(across) / (depth * tangent * camera.getAspect()));
        framed.furthestUp = std::max(framed.furthestUp, std::abs(above) / (depth * tangent));
        framed.isBetweenPlanes =
            framed.isBetweenPlanes && depth > camera.getNear() * (1.0 - 1e-5) && depth < camera.getFar();
        framed.nearest = std::min(framed.nearest, depth);
    }
    return framed;
}

class CameraFramingTest : public testing::Test {
protected:
    CameraFramingTest() {
        _camera->setName("eye");
        // What it looked at before must not matter.
        _camera->setPosition({100.0f, -200.0f, 3.0f});
        _camera->lookAt({0.3f, 1.0f, -2.0f}, {1.0f, 0.0f, 0.0f});
    }

    System _system;
    ovMemory::UniquePtr<Camera> _camera = Camera::create(&_system);
};

const BoundingBox BOXES[] = {
    BoundingBox::newCube({}, 2.0f), BoundingBox::newBox({5.0f, -3.0f, 2.0f}, {9.0f, 0.1f, 1.0f}),
    BoundingBox::newBox({}, {0.001f, 0.02f, 0.001f}), BoundingBox::newCube({1e5f, 0.0f, 0.0f}, 4000.0f),
    BoundingBox::newBox({0.0f, 7.0f, 0.0f}, {0.0f, 0.0f, 3.0f})};
const Vector DIRECTIONS[] = {{0, 0, 1},  {0, 0, -5},   {-0.4f, 0.3f, 1}, {1e-3f, 0, 0},
                             {0, -1, 0}, {0, 1e6f, 0}, {7, -8, 9},       {-1, -1, -1}};

TEST_F(CameraFramingTest, allOfTheBoxIsInViewAndFillsThePicture) {
    for (const BoundingBox& box : BOXES)
        for (const Vector& direction : DIRECTIONS)
            for (const float aspect : {0.3f, 1.0f, 2.4f})
                for (const float fov : {0.1f, 0.6f, 2.0f}) {
                    const BoxFraming framing = {.aspect = aspect, .verticalFov = fov};
                    const ovMemory::Result result = frameBox(*_camera, box, direction, framing);
                    ASSERT_TRUE(result) << result.error;
                    const Framed framed = project(*_camera, box);
                    const auto where = testing::Message() << direction.x << ',' << direction.y << ','
                                                          << direction.z << ' ' << aspect << ' ' << fov;
                    EXPECT_TRUE(framed.isBetweenPlanes) << where;
                    EXPECT_LE(framed.furthestAcross, 0.942) << where;
                    EXPECT_LE(framed.furthestUp, 0.942) << where;
                    // A corner in the middle of a wide view keeps the eye away, too.
                    const double radius = 0.5 * box.getSize().getLengthVec3();
                    EXPECT_TRUE(std::max(framed.furthestAcross, framed.furthestUp) > 0.938 ||
                                std::abs(framed.nearest - 0.03 * radius) < 1e-3 * radius)
                        << where;
                    EXPECT_EQ(_camera->getAspect(), aspect);
                    EXPECT_EQ(_camera->getPerspectiveFov(), fov);
                }
}

TEST_F(CameraFramingTest, itLooksAlongTheDirectionAtTheMiddle) {
    ASSERT_TRUE(frameBox(*_camera, BoundingBox::newCube({1, 2, 3}, 2.0f), {3.0f, 0.0f, 4.0f}));
    EXPECT_LT(Vector::distanceVec3(_camera->getDirection(), {0.6f, 0.0f, 0.8f}), 1e-6f);
    const Vector offset = Vector(1, 2, 3) - _camera->getPosition();
    EXPECT_LT(Vector::distanceVec3(offset.getNormalizedVec3(), {0.6f, 0.0f, 0.8f}), 1e-6f);
    EXPECT_NEAR(_camera->getDirectionAtPixelWorld(0.5f, 0.0f).y, std::sin(0.3), 1e-6) << "up is up";
}

TEST_F(CameraFramingTest, shareAndZoomChangeTheDistance) {
    // A cube of side 2 seen head-on: its near face, 1 m before the middle, spans 2 m.
    const auto distance = [&](const BoxFraming& framing) {
        EXPECT_TRUE(frameBox(*_camera, BoundingBox::newCube({}, 2.0f), {0, 0, 1}, framing));
        return -_camera->getPosition().z;
    };
    const float rightAngle = std::numbers::pi_v<float> / 2.0f;
    EXPECT_NEAR(distance({.verticalFov = rightAngle, .filled = 1.0f}), 2.0, 1e-5);
    EXPECT_NEAR(distance({.verticalFov = rightAngle, .filled = 0.5f}), 3.0, 1e-5);
    EXPECT_NEAR(distance({.verticalFov = rightAngle, .filled = 1.0f, .zoom = 2.0f}), 1.0, 1e-5);
    EXPECT_NEAR(distance({.aspect = 0.5f, .verticalFov = rightAngle, .filled = 1.0f}), 3.0, 1e-5);
    EXPECT_NEAR(distance({.aspect = 2.0f, .verticalFov = rightAngle, .filled = 1.0f}), 2.0, 1e-5);
}

TEST_F(CameraFramingTest, planesFollowTheBox) {
    const BoundingBox box = BoundingBox::newBox({0, 0, 10}, {2, 2, 1}); // a radius of 1.5
    _camera->setPosition({});
    EXPECT_TRUE(fitPlanes(*_camera, box));
    EXPECT_NEAR(_camera->getNear(), 8.5, 1e-5);
    EXPECT_NEAR(_camera->getFar(), 13.0, 1e-5);
    _camera->setPosition({0, 0, 9});
    EXPECT_TRUE(fitPlanes(*_camera, box));
    EXPECT_NEAR(_camera->getNear(), 0.025, 1e-6) << "inside: a hundredth";
    EXPECT_NEAR(_camera->getFar(), 4.0, 1e-5);
}

TEST_F(CameraFramingTest, pointsAndNothingAreSeenFromAMillimetre) {
    const BoundingBox point = BoundingBox::newCube({3, 0, 0}, 0.0f);
    ASSERT_TRUE(frameBox(*_camera, point, {0, 0, 1}));
    EXPECT_NEAR(_camera->getPosition().z, -1e-3, 1e-8);
    EXPECT_TRUE(project(*_camera, point).isBetweenPlanes);
    ASSERT_TRUE(frameBox(*_camera, BoundingBox(), {0, 0, 1}));
    EXPECT_EQ(_camera->getPosition().x, 0.0f);
}

TEST_F(CameraFramingTest, reasonsAreTold) {
    const float nan = std::nanf("");
    const float infinite = std::numeric_limits<float>::infinity();
    const BoundingBox cube = BoundingBox::newCube({}, 2.0f);
    const auto error = [&](const BoundingBox& box, const Vector& direction, const BoxFraming& framing = {}) {
        const ovMemory::Result result = frameBox(*_camera, box, direction, framing);
        const ovMemory::String start = "the camera 'eye' cannot show the box: ";
        EXPECT_TRUE(result.error.starts_with(start)) << result.error;
        return result.error.substr(std::min(start.size(), result.error.size()));
    };
    const ovMemory::String noDirection = "the direction to look along is zero or not finite";
    EXPECT_EQ(error(cube, {}), noDirection);
    EXPECT_EQ(error(cube, {0, nan, 1}), noDirection);
    EXPECT_EQ(error(cube, {infinite, 0, 0}), noDirection);
    EXPECT_EQ(error(BoundingBox::newCube({}, 3e38f), {0, 0, 1}), "it is too large");
    EXPECT_TRUE(frameBox(*_camera, BoundingBox::newCube({}, 1e20f), {0, 0, 1}));
    for (const float aspect : {0.0f, -1.0f, nan, infinite})
        EXPECT_EQ(error(cube, {0, 0, 1}, {.aspect = aspect}), "the aspect is not above 0");
    for (const float fov : {0.0f, -1.0f, 3.2f, nan, infinite})
        EXPECT_EQ(error(cube, {0, 0, 1}, {.verticalFov = fov}), "the vertical angle is not between 0 and pi");
    EXPECT_EQ(error(cube, {0, 0, 1}, {.filled = 0.0f}), "the share to fill or the zoom is not above 0");
    EXPECT_EQ(error(cube, {0, 0, 1}, {.zoom = nan}), "the share to fill or the zoom is not above 0");
    EXPECT_EQ(error(cube, {0, 0, 1}, {.verticalFov = 1e-38f}),
              "it is too far away for the planes of a camera");
}

} // namespace

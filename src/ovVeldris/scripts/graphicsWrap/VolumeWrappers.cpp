#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Frustum.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovGraphics/scene/CameraFraming.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/graphicsWrap/VolumeWrappers.h>

namespace ovGraphicsWrap {

using ovGraphics::BoundingBox;
using ovGraphics::Camera;
using ovGraphics::Frustum;
using ovGraphics::Viewport;

namespace {

void frameCamera(Camera& self, const BoundingBox& box, const ovMaths::Vector& direction,
                 std::optional<float> aspect, std::optional<float> verticalFov) {
    ovGraphics::BoxFraming framing;
    framing.aspect = aspect.value_or(framing.aspect);
    framing.verticalFov = verticalFov.value_or(framing.verticalFov);
    if (const ovMemory::Result result = ovGraphics::frameBox(self, box, direction, framing); !result)
        throw ovCommonWrap::ArgumentError(result.error);
}

} // namespace

void BoundingBoxWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<BoundingBox>(environment);
    type.setValueType<BoundingBox>();
    method(type, "getCenter", &BoundingBox::getCenter, {}, "Zero for an empty box.");
    method(type, "getSize", &BoundingBox::getSize, {}, "Along each axis, metres; zero for an empty box.");
    method(type, "getMinimum", &BoundingBox::getMinimum, {}, "The corner with the smallest coordinates.");
    method(type, "getMaximum", &BoundingBox::getMaximum, {}, "The corner with the largest coordinates.");
    method(type, "checkAgainst", &BoundingBox::checkAgainst, {"frustum"},
           "False only when the whole box lies outside one plane of the frustum.");
    staticFunction(type, "newCube", &BoundingBox::newCube, {"center", "side"}, "A cube; its side in metres.");
    staticFunction(type, "newBox", &BoundingBox::newBox, {"center", "size"},
                   "A box; its size along each axis in metres.");
}

void CameraWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Camera>(environment);
    addName<Camera>(type);
    method(type, "getNear", &Camera::getNear, {}, "Distance of the near plane, metres.");
    method(type, "getFar", &Camera::getFar, {}, "Distance of the far plane, metres.");
    method(type, "getFrustum", &Camera::getFrustum, {}, "What the camera sees, in world space.");
    method(type, "getPerspectiveFov", &Camera::getPerspectiveFov, {}, "Vertical angle, radians.");
    method(type, "getOrthographicHeight", &Camera::getOrthographicHeight, {}, "Metres.");
    method(type, "getDirectionAtPixelView", &Camera::getDirectionAtPixelView, {"u", "v"},
           "Unit direction in view space through a point, (0, 0) top left to (1, 1) bottom right.");
    method(type, "getDirectionAtPixelWorld", &Camera::getDirectionAtPixelWorld, {"u", "v"},
           "The same in world space.");
    method(type, "getPosition", &Camera::getPosition, {}, "In world space, metres.");
    method(type, "setPosition", &Camera::setPosition, {"position"}, "In world space, metres.");
    method(type, "getDirection", &Camera::getDirection, {}, "The unit direction looked along.");
    method(type, "lookAt", &Camera::lookAt, {"direction", "up"}, "Turns the camera to a direction.");
    method(type, "setPerspective", &Camera::setPerspective,
           {"verticalFov", "aspect", "nearPlane", "farPlane"},
           "Angle in radians, width over height, distances in metres; false when one is out of range.");
    method(type, "setOrthographic", &Camera::setOrthographic, {"width", "height", "nearPlane", "farPlane"},
           "The view's sides and distances in metres; false when one is out of range.");
    method(
        type, "frame", &frameCamera, {"box", "direction", "aspect", "verticalFov"},
        "Looks along a direction at a box from where all of it is in view. The aspect is width over height, "
        "1 if left out, and the angle in radians, 0.6 if left out. An error when it cannot.");
}

void FrustumWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<Frustum>(environment);
    type.setValueType<Frustum>();
    method(type, "getPlane", &Frustum::getPlane, {"index"},
           "Left, right, bottom, top, near or far from 0; zero beyond. Inside is where it is at least 0.");
    method(type, "copy", &Frustum::copy, {}, "Another frustum of the same planes.");
}

void ViewportWrapper::updateEnvironment(ovScripts::Environment* environment) {
    method(deviceTypeOf<Viewport>(environment), "getHeight", &Viewport::getHeight, {}, "Texels.");
}

} // namespace ovGraphicsWrap

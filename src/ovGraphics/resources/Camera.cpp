#include <ovGraphics/resources/Camera.h>

#include <cmath>
#include <numbers>
#include <ovGraphics/resources/Frustum.h>

namespace ovGraphics {

namespace {

using ovMaths::Vector;

/// Corners of a view rectangle of half size (x, y) at depth z, in the quad's vertex order.
// The order is that of the quad's vertices, so that a vertex text can index the corners by its vertex number.
Camera::Corners cornersOf(float x, float y, float z) {
    return {Vector(-x, y, z), Vector(x, y, z), Vector(-x, -y, z), Vector(x, -y, z)};
}

bool isPositive(float value) {
    return value > 0.0f && std::isfinite(value);
}

bool areValidPlanes(float nearPlane, float farPlane) {
    return isPositive(nearPlane) && isPositive(farPlane) && farPlane > nearPlane;
}

constexpr const char* PLANES_RULE = ", near above 0 and far beyond near, all of them finite.";

ovMemory::String planesText(float nearPlane, float farPlane) {
    return ", near " + std::to_string(nearPlane) + ", far " + std::to_string(farPlane);
}

/// False for zero and for what is not finite.
bool isDirection(const Vector& normalized) {
    // Normalising gives length 1 or, where there is no direction, 0; any number in between tells them apart.
    return normalized.getLengthSquaredVec3() > 0.5f;
}

/// An axis that is surely not along the direction.
Vector axisAcross(const Vector& direction) {
    return std::abs(direction.y) < 0.9f ? Vector(0.0f, 1.0f, 0.0f) : Vector(0.0f, 0.0f, 1.0f);
}

} // namespace

ovMemory::UniquePtr<Camera> Camera::create(System* system) {
    return std::make_unique<Camera>(system);
}

Camera::Camera(System* system)
    : Resource(system, "camera")
    , _revision(noteBindingChange()) {}

template <typename T>
void Camera::_set(T& setting, const T& value) {
    if (setting == value)
        return;
    setting = value;
    _revision = noteBindingChange();
}

void Camera::setPosition(const Vector& position) {
    _set(_position, position);
}

void Camera::lookAt(const Vector& direction, const Vector& up) {
    const Vector forward = direction.getNormalizedVec3();
    if (!isDirection(forward))
        return;
    const Vector unitUp = up.getNormalizedVec3();
    const Vector wantedUp = isDirection(unitUp) ? unitUp : Vector(0.0f, 1.0f, 0.0f);
    Vector right = wantedUp.getCrossVec3(forward);
    constexpr float PARALLEL_SINE_SQUARED = 1e-10f;
    if (right.getLengthSquaredVec3() < PARALLEL_SINE_SQUARED)
        right = axisAcross(forward).getCrossVec3(forward);
    _set(_forward, forward);
    _set(_right, right.getNormalizedVec3());
    // Not the vector that was given, which need not be at a right angle to the direction.
    _set(_up, _forward.getCrossVec3(_right));
}

Vector Camera::getDirection() const {
    return _forward;
}

bool Camera::setPerspective(float verticalFov, float aspect, float nearPlane, float farPlane) {
    const bool fovIsValid = verticalFov > 0.0f && verticalFov < std::numbers::pi_v<float>;
    if (!fovIsValid || !isPositive(aspect) || !areValidPlanes(nearPlane, farPlane)) {
        // Nothing changes after a refusal: the camera keeps drawing its last valid view.
        _logFailure("set the perspective of",
                    "vertical angle " + std::to_string(verticalFov) + " rad, aspect " +
                        std::to_string(aspect) + planesText(nearPlane, farPlane) +
                        " were given; the angle must lie between 0 and pi, the aspect above 0" + PLANES_RULE);
        return false;
    }
    _set(_orthographic, false);
    _set(_verticalFov, verticalFov);
    _set(_aspect, aspect);
    _set(_near, nearPlane);
    _set(_far, farPlane);
    return true;
}

bool Camera::setOrthographic(float width, float height, float nearPlane, float farPlane) {
    if (!isPositive(width) || !isPositive(height) || !areValidPlanes(nearPlane, farPlane)) {
        _logFailure("set the orthographic view of",
                    "width " + std::to_string(width) + " m, height " + std::to_string(height) + " m" +
                        planesText(nearPlane, farPlane) + " were given; width and height must lie above 0" +
                        PLANES_RULE);
        return false;
    }
    _set(_orthographic, true);
    // Height and aspect are kept, and not the width: setAspect then serves both projections.
    _set(_viewHeight, height);
    _set(_aspect, width / height);
    _set(_near, nearPlane);
    _set(_far, farPlane);
    return true;
}

void Camera::setAspect(float aspect) {
    if (isPositive(aspect))
        _set(_aspect, aspect);
}

ovMaths::Matrix Camera::getViewMatrix() const {
    // The axes are unit vectors at right angles, so that the inverse of the rotation is its transpose.
    const auto row = [this](const Vector& axis) {
        return Vector(axis.x, axis.y, axis.z, -axis.dotProductVec3(_position));
    };
    const Vector x = row(_right);
    const Vector y = row(_up);
    const Vector z = row(_forward);
    return ovMaths::Matrix::newMat4(x.x, x.y, x.z, x.w, y.x, y.y, y.z, y.w, z.x, z.y, z.z, z.w, 0.0f, 0.0f,
                                    0.0f, 1.0f);
}

ovMaths::Matrix Camera::getProjectionMatrix() const {
    ovMaths::Matrix projection;
    if (_orthographic)
        projection.setToOrthographicMatrix(_viewHeight * _aspect, _viewHeight, _near, _far);
    else
        projection.setToPerspectiveMatrix(_verticalFov, _aspect, _near, _far);
    return projection;
}

ovMaths::Matrix Camera::getProjectionMatrix(SHADER_LANGUAGE language) const {
    ovMaths::Matrix projection = getProjectionMatrix();
    if (language == SHADER_LANGUAGE::HLSL)
        return projection;
    for (int column = 0; column < 4; ++column) {
        // GLSL programs run under OpenGL's clip rules, where row 0 of a target lies at y = -1 and depth runs
        // from -1 to 1.
        projection.m[1][column] = -projection.m[1][column];
        projection.m[2][column] = 2.0f * projection.m[2][column] - projection.m[3][column];
    }
    return projection;
}

Frustum Camera::getFrustum() const {
    return Frustum(getProjectionMatrix() * getViewMatrix());
}

Vector Camera::getProjectionParameters() const {
    const float range = _far - _near;
    return {_far / range, -_near / range, _near, _far};
}

Camera::Corners Camera::getCornersView() const {
    const float halfHeight = _orthographic ? 0.5f * _viewHeight : std::tan(0.5f * _verticalFov);
    return cornersOf(halfHeight * _aspect, halfHeight, 1.0f);
}

Camera::Corners Camera::getCornersWorld() const {
    Corners corners = getCornersView();
    for (Vector& corner : corners)
        corner = _toWorld(corner);
    return corners;
}

Vector Camera::getDirectionAtPixelView(float u, float v) const {
    if (_orthographic)
        return {0.0f, 0.0f, 1.0f};
    const Vector topRight = getCornersView()[1];
    return Vector(topRight.x * (2.0f * u - 1.0f), topRight.y * (1.0f - 2.0f * v), 1.0f).getNormalizedVec3();
}

Vector Camera::getDirectionAtPixelWorld(float u, float v) const {
    return _toWorld(getDirectionAtPixelView(u, v));
}

void Camera::reset() {
    Resource::reset();
    setPosition(Vector());
    lookAt(Vector(0.0f, 0.0f, 1.0f), Vector());
    setPerspective(1.0471976f, 1.0f, 0.1f, 1000.0f);
}

Vector Camera::_toWorld(const Vector& viewDirection) const {
    return {_right.x * viewDirection.x + _up.x * viewDirection.y + _forward.x * viewDirection.z,
            _right.y * viewDirection.x + _up.y * viewDirection.y + _forward.y * viewDirection.z,
            _right.z * viewDirection.x + _up.z * viewDirection.y + _forward.z * viewDirection.z};
}

} // namespace ovGraphics

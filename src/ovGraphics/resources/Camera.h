// Cameras: where the scene is seen from, and how it is projected.
#pragma once

#include <array>
#include <ovGraphics/resources/Resource.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {

class Frustum;

/// A camera. Left-handed: +x right, +y up, it looks along +z of its own space; angles in radians, distances
/// in metres. New: at the origin, looking along +z, perspective of pi/3 vertically, aspect 1, near 0.1, far
/// 1000.
class OV_API Camera : public Resource {
public:
    /// Corners of the view in the vertex order of the full-screen quad: texture coordinates (0, 0), (1, 0),
    /// (0, 1), (1, 1), so top left, top right, bottom left, bottom right.
    using Corners = std::array<ovMaths::Vector, 4>;

    /// A new camera; a null system means the singleton.
    static ovMemory::UniquePtr<Camera> create(System* system);
    explicit Camera(System* system);

    /// Another number after every change, and never one that another camera has or had.
    uint64_t getRevision() const { return _revision; }

    void setPosition(const ovMaths::Vector& position);
    const ovMaths::Vector& getPosition() const { return _position; }

    /// Turns the camera to a direction (any length but zero). A zero or not finite up vector means (0, 1, 0);
    /// an up vector along the direction is replaced by an axis across it. A zero or not finite direction
    /// changes nothing.
    void lookAt(const ovMaths::Vector& direction, const ovMaths::Vector& up);
    /// The direction looked along, unit length.
    ovMaths::Vector getDirection() const;

    /// @param verticalFov full angle in radians, in (0, pi) @param aspect width over height, above 0
    /// @param nearPlane above 0 @param farPlane above nearPlane
    /// @return false and nothing changed, after one log line, when a value is out of range
    bool setPerspective(float verticalFov, float aspect, float nearPlane, float farPlane);
    /// @param width, height of the view in metres, above 0 @return as for setPerspective
    bool setOrthographic(float width, float height, float nearPlane, float farPlane);
    /// Changes the aspect of a perspective, or the width of an orthographic view; ignored unless finite and
    /// above 0.
    void setAspect(float aspect);

    bool isOrthographic() const { return _orthographic; }
    float getNear() const { return _near; }
    float getFar() const { return _far; }
    float getAspect() const { return _aspect; }
    float getPerspectiveFov() const { return _verticalFov; }    ///< radians, vertical
    float getOrthographicHeight() const { return _viewHeight; } ///< metres

    /// World to view.
    ovMaths::Matrix getViewMatrix() const;
    /// View to clip, y up, depth 0 at the near plane and 1 at the far plane.
    ovMaths::Matrix getProjectionMatrix() const;
    /// View to clip as shaders of a language want it. GLSL: y flipped, depth -1 to 1. HLSL: as
    /// getProjectionMatrix().
    ovMaths::Matrix getProjectionMatrix(SHADER_LANGUAGE language) const;
    /// The volume that the camera sees, in world space.
    Frustum getFrustum() const;
    /// (A, B, near, far) with A = far / (far - near), B = -near / (far - near): for a depth d of a
    /// perspective, B / (d - A) = view z / far.
    ovMaths::Vector getProjectionParameters() const;

    /// View-space corners with z = 1: corner * view depth = view position (perspective only; an orthographic
    /// view gives the corners of its rectangle).
    Corners getCornersView() const;
    /// The same rotated to the world, not moved by the position.
    Corners getCornersWorld() const;

    /// Unit direction through a point of the view, (0, 0) top left to (1, 1) bottom right, in view space.
    ovMaths::Vector getDirectionAtPixelView(float u, float v) const;
    /// The same in world space.
    ovMaths::Vector getDirectionAtPixelWorld(float u, float v) const;

    void reset() override;

private:
    template <typename T>
    void _set(T& setting, const T& value);
    ovMaths::Vector _toWorld(const ovMaths::Vector& viewDirection) const;

    uint64_t _revision;
    ovMaths::Vector _position;
    ovMaths::Vector _right{1.0f, 0.0f, 0.0f};
    ovMaths::Vector _up{0.0f, 1.0f, 0.0f};
    ovMaths::Vector _forward{0.0f, 0.0f, 1.0f};
    bool _orthographic = false;
    float _verticalFov = 1.0471976f;
    float _viewHeight = 1.0f;
    float _aspect = 1.0f;
    float _near = 0.1f;
    float _far = 1000.0f;
};

} // namespace ovGraphics

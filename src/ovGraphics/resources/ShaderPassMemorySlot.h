// What a piece of a constant buffer holds, evaluated when a pass runs.
#pragma once

#include <array>
#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Borrowed.h>

namespace ovGraphics {

class Camera;
class System;
class Texture;

/// What the slots of a pass are evaluated with.
struct PassEnvironment {
    const System* system = nullptr;
    Camera* camera = nullptr; ///< the camera that renders; null when the pass has none
};

/// One slot of a constant buffer: it says what it holds, and the value is taken when a pass runs. Every slot
/// fills whole registers of four 32-bit values. A new slot holds the zero vector.
class OV_API ShaderPassMemorySlot : public ovMemory::Borrowable {
public:
    /// A fixed vector: one register.
    void setFromVector(const ovMaths::Vector& vector);
    /// A fixed matrix: its four rows, one register each.
    void setFromMatrix(const ovMaths::Matrix& matrix);
    /// Four integers: width, height, slices and mips of a texture, taken anew at each pass; zeros without
    /// one.
    void setAsTextureSize(Texture* texture);
    /// Modulo in seconds, running time modulo that, seconds of the last frame, 0.
    void setAsTime(float modulo);

    // Without a camera these mean the camera that renders; without that either, they hold zeros.

    /// World-space directions of the four corners of the view in the quad's vertex order: four registers. The
    /// view corner rotated to the world: camera position + corner * view depth = world position.
    void setAsCamCornersWorld(Camera* camera = nullptr);
    /// The same in view space, z = 1.
    void setAsCamCornersView(Camera* camera = nullptr);
    /// World to view, four registers.
    void setAsViewMatrix(Camera* camera = nullptr);
    /// View to clip in the system's shader language (GLSL: y flipped, z in -1..1), four registers.
    void setAsProjectionMatrix(Camera* camera = nullptr);
    /// World position, w = 1.
    void setAsCameraPosition(Camera* camera = nullptr);
    /// (A, B, near, far): B / (depth - A) = view z / far.
    void setAsProjectionParameters(Camera* camera = nullptr);

    /// Registers of four 32-bit values that the slot fills: 1 or 4.
    unsigned int getRegisterCount() const;

    /// A number that stands for what the value comes from: equal numbers of one slot mean equal values. 0
    /// means that only evaluating tells.
    uint64_t getSource(const PassEnvironment& environment) const;
    /// Writes the present value, getRegisterCount() * 16 bytes, to out.
    void evaluate(const PassEnvironment& environment, unsigned char* out) const;

private:
    enum class CONTENT {
        VECTOR,
        MATRIX,
        TEXTURE_SIZE,
        TIME,
        CAM_CORNERS_WORLD,
        CAM_CORNERS_VIEW,
        VIEW_MATRIX,
        PROJECTION_MATRIX,
        CAMERA_POSITION,
        PROJECTION_PARAMETERS
    };

    void _setContent(CONTENT content);
    void _setAsCamera(CONTENT content, Camera* camera);
    const Camera* _cameraOf(const PassEnvironment& environment) const;
    void _evaluateCamera(const Camera& camera, const System& system, unsigned char* out) const;

    CONTENT _content = CONTENT::VECTOR;
    uint32_t _setCount = 1;         ///< calls of setters
    std::array<float, 16> _value{}; ///< four rows; a vector is the first
    ovMemory::Borrowed<Camera> _camera;
    ovMemory::Borrowed<Texture> _texture;
    bool _ownCamera = false; ///< false: the camera that renders
};

} // namespace ovGraphics

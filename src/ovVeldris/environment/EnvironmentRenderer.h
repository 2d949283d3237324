// The renderer of environment maps.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/formats/Format.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Shader;
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

class System;

/// The tool of one System that renders environment maps. Each call draws one frame and returns when it has
/// been handed to the device; nothing of it stays but the output. Belongs to the thread that drives
/// rendering.
///
/// When something is missing or cannot be done, one line is logged with the sender "EnvironmentRenderer", and
/// the output is as it was; only when the device refuses it, it is unloaded with its new settings.
class OV_API EnvironmentRenderer {
public:
    /// @param system not owned; without it nothing is drawn
    explicit EnvironmentRenderer(System* system);
    EnvironmentRenderer(const EnvironmentRenderer&) = delete;
    EnvironmentRenderer& operator=(const EnvironmentRenderer&) = delete;
    ~EnvironmentRenderer();

    /// Null when the system is gone.
    System* getSystem() const;

    /// Draws a shader over each face of a cube and fills the cube's mips from that.
    ///
    /// @param output becomes a cube texture and render target with a full chain of mips, gamma-corrected if
    ///        the format has an sRGB sibling; what was in it is lost; not owned
    /// @param shader loaded; a camera at the origin that sees the face is the camera that renders, so that
    ///        slots like setAsCamCornersWorld() without a camera give the directions of the face. Not owned
    /// @param resolution texels a side of a face, 1 or more, at most what the device allows for cubes
    /// @param format that the device can draw to
    void renderCubemap(ovGraphics::Texture* output, ovGraphics::Shader* shader, unsigned int resolution,
                       ovGraphics::FORMAT format);

    /// Unwraps a cube texture into a map by longitude and latitude: v = 0 at +y, the middle at +x, +z to its
    /// right; and fills the map's mips from that. Alpha becomes 1.
    ///
    /// @param output becomes a 2D texture and render target with a full chain of mips, of the input's format
    ///        (R8G8B8A8_UNORM if that is compressed) and gamma correction; what was in it is lost; not owned
    /// @param input loaded cube texture, not of whole numbers; not owned
    /// @param width, height texels of the map, 1 or more; twice as wide as high has square texels
    void cubemapToSphericalMap(ovGraphics::Texture* output, ovGraphics::Texture* input, unsigned int width,
                               unsigned int height);

private:
    struct SphericalData;

    ovGraphics::System* _getGraphicsSystem() const;
    bool _checkCubemapRequest(const ovGraphics::Texture* output, const ovGraphics::Shader* shader) const;
    bool _checkSphericalRequest(const ovGraphics::Texture* output, const ovGraphics::Texture* input) const;
    bool _setupData();
    void _log(ovMemory::StringView message) const;

    ovMemory::Borrowed<System> _system;
    ovMemory::UniquePtr<SphericalData> _sphericalData; ///< made by the first cubemapToSphericalMap()
};

} // namespace ovVeldris

// Draws a sky into pictures and panoramas.
#pragma once

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Image.h>
#include <ovVeldris/core/settings/SettingText.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>

namespace veldris {

class PictureShader;
class Session;

/// What is drawn of a view.
struct SkyView {
    ovMaths::Vector direction{1.0f, 0.0f, 0.0f}; ///< looked along, of any length but 0
    float fieldOfView = 60.0f;                   ///< vertical, degrees
    unsigned int width = 1280;                   ///< pixels
    unsigned int height = 720;                   ///< pixels
    unsigned int samples = 1;                    ///< of a pixel, the square of a whole number
    /// Samples that are drawn at once, in whole rows: 16 bytes each.
    unsigned int stripSamples = 1u << 21;
};

/// The air of a planet over a dull ground in the colour of its albedo, which the sun and the sky light. The
/// tables of the air are drawn once, whatever the sun does.
///
/// Samples are drawn and averaged strip by strip, since those of a large picture take several times its
/// memory.
class SkyPicture {
public:
    /// @param air settings of AtmosphereEffect @param eyeHeight metres above the ground
    /// @return null with one line in error when something cannot be loaded
    static ovMemory::UniquePtr<SkyPicture>
    create(Session& session, ovMemory::BufferView<const ovVeldris::SettingAssignment> air, float eyeHeight,
           ovMemory::String& error);
    ~SkyPicture();

    /// Moves the sun, which is overhead at first, and lights the ground anew.
    /// @param towardsSun of any length but 0 @return false with one line in error
    bool setSun(const ovMaths::Vector& towardsSun, ovMemory::String& error);

    /// Draws a view. @return four scene-linear floats a pixel; null with one line in error
    ovMemory::UniquePtr<ovGraphics::Texture> drawView(const SkyView& view, ovMemory::String& error);
    /// What of the sun is in a panorama.
    enum class SUN { AS_SET, WITHOUT_DISC };
    /// Draws all around as a panorama twice as wide as high, with the library's longitudes: the middle column
    /// looks along +x, and +z lies a quarter to its right. Each texel is the mean of what it covers.
    /// @param height rows, from 1 @return four scene-linear floats a pixel; empty with one line in error
    ovImages::Image drawPanorama(unsigned int height, unsigned int samples, SUN sun, ovMemory::String& error);

    /// The effect, with the settings and the sun as given. Loaded.
    const ovVeldris::AtmosphereEffect& getAir() const { return *_air; }
    /// The ground alone without air, as drawGroundPanorama() tells.
    ovGraphics::Texture* getGround() const { return _ground.get(); }

    /// The passes of all that was drawn since the last call, when the session measures: each name once.
    ovMemory::Buffer<ovGraphics::PassTiming> takeTimings();

private:
    SkyPicture(Session& session, float eyeHeight);
    bool _load(ovMemory::BufferView<const ovVeldris::SettingAssignment> air);
    bool _loadAir(ovVeldris::AtmosphereEffect& effect);
    bool _setGround(const ovMaths::Vector& radiance, float eyeHeight);
    ovMemory::UniquePtr<ovGraphics::Texture> _draw(ovVeldris::AtmosphereEffect& air, const SkyView& view);
    ovImages::Image _drawFaces(ovVeldris::AtmosphereEffect& air, unsigned int side, unsigned int samples);
    bool _drawSamples(const ovVeldris::AtmosphereEffect& air, const SkyView& view,
                      ovGraphics::Texture& picture);
    void _addTimings();

    Session& _session;
    float _eyeHeight;
    ovMemory::UniquePtr<ovVeldris::AtmosphereEffect> _air;
    ovMemory::UniquePtr<ovVeldris::AtmosphereEffect> _skylight; ///< the same without the disc
    ovMemory::UniquePtr<ovVeldris::ImageEnvironmentEffect> _groundEffect;
    ovMemory::UniquePtr<PictureShader> _average;
    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
    ovMemory::UniquePtr<ovGraphics::Texture> _ground;
    ovMemory::Buffer<ovGraphics::PassTiming> _timings;
};

} // namespace veldris

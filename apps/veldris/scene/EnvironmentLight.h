// Light from all around, ready for physically based materials.
#pragma once

#include <ovImages/Image.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class Texture;
}
namespace ovVeldris {
class PbsMaterial;
}

namespace veldris {

class Session;

/// An environment as a panorama, a cube blurred for every roughness, and a cube of irradiance.
class EnvironmentLight {
public:
    /// @param panorama by longitude and latitude, scene-linear: the top row looks up, the middle along +x.
    /// Texels that are NaN become black, and texels beyond the range of half floats become its largest
    /// number, because one such texel would spoil whole mips. What is filtered is kept in the session's
    /// cache folder (EnvironmentCache).
    /// @param warning gets one line when there were such texels
    /// @return null with one line in error when the device cannot hold it
    static ovMemory::UniquePtr<EnvironmentLight> create(Session& session, const ovImages::ImageView& panorama,
                                                        ovMemory::String& warning, ovMemory::String& error);
    ~EnvironmentLight();

    ovGraphics::Texture* getPanorama() const { return _panorama.get(); }
    ovGraphics::Texture* getPrefiltered() const { return _prefiltered.get(); }
    ovGraphics::Texture* getIrradiance() const { return _irradiance.get(); }

    /// Lights a material, which must be loaded afterwards.
    void light(ovVeldris::PbsMaterial& material) const;

private:
    EnvironmentLight();
    bool _makePanorama(Session& session, const ovImages::Image& panorama, unsigned int mips,
                       ovMemory::String& error);
    bool _filter(Session& session, ovMemory::String& error);

    ovMemory::UniquePtr<ovGraphics::Texture> _panorama;
    ovMemory::UniquePtr<ovGraphics::Texture> _prefiltered;
    ovMemory::UniquePtr<ovGraphics::Texture> _irradiance;
};

/// A copy as four floats a pixel without texels that spoil filtering, as EnvironmentLight::create tells.
ovImages::Image clampedPanorama(const ovImages::ImageView& panorama, ovMemory::String& warning);

} // namespace veldris

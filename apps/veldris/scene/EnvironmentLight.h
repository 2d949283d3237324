// Light from all around, ready for physically based materials.
#pragma once

#include <ovCommon/WorkProgress.h>
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
    /// @param panorama by longitude and latitude, scene-linear: the top row looks up, the middle along +x. It
    /// is cleaned as cleanEnvironment() tells. What is filtered is kept in the session's cache folder
    /// (EnvironmentCache).
    /// @param warning gets one line when something was cleaned
    /// @param progress of the filtering
    /// @return null with one line in error when the device cannot hold it
    static ovMemory::UniquePtr<EnvironmentLight> create(Session& session, const ovImages::ImageView& panorama,
                                                        ovMemory::String& warning, ovMemory::String& error,
                                                        const ovCommon::WorkProgress& progress = {});
    ~EnvironmentLight();

    ovGraphics::Texture* getPanorama() const { return _panorama.get(); }
    ovGraphics::Texture* getPrefiltered() const { return _prefiltered.get(); }
    ovGraphics::Texture* getIrradiance() const { return _irradiance.get(); }

    /// Lights a material, which must be loaded afterwards.
    void light(ovVeldris::PbsMaterial& material) const;

private:
    EnvironmentLight();
    bool _makePanorama(Session& session, const ovImages::Image& panorama, ovMemory::String& error);
    bool _filter(Session& session, const ovImages::Image& panorama, const ovCommon::WorkProgress& progress,
                 ovMemory::String& error);

    ovMemory::UniquePtr<ovGraphics::Texture> _panorama;
    ovMemory::UniquePtr<ovGraphics::Texture> _prefiltered;
    ovMemory::UniquePtr<ovGraphics::Texture> _irradiance;
};

/// Replaces what would spoil filtering, because one such texel spreads over whole mips: NaN and negative
/// numbers become 0, infinite ones the largest half float, which is what files of half floats mean by them.
/// Suns of any finite brightness stay, up to 1e30.
/// @param environment floats
/// @param warning gets one line when something was replaced; not for numbers a little below 0, which lossy
///        compression leaves everywhere
void cleanEnvironment(ovImages::Image& environment, ovMemory::String& warning);

} // namespace veldris

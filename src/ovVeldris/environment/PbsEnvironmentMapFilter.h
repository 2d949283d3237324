// The filter of environment maps.
#pragma once

#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

class System;

/// The tool of one System that filters environment maps for physically based materials. Belongs to the thread
/// that drives rendering.
class OV_API PbsEnvironmentMapFilter {
public:
    /// @param system not owned; without it nothing is drawn
    explicit PbsEnvironmentMapFilter(System* system);
    PbsEnvironmentMapFilter(const PbsEnvironmentMapFilter&) = delete;
    PbsEnvironmentMapFilter& operator=(const PbsEnvironmentMapFilter&) = delete;
    ~PbsEnvironmentMapFilter();

    /// Null when the system is gone.
    System* getSystem() const;

    /// Makes a cube texture whose mips hold the environment as surfaces of rising roughness mirror it: mip i
    /// of M is convolved with the GGX lobe of roughness i / (M - 1), so that a material reads mip
    /// (M - 1) * roughness; mip 0 is the environment itself. Draws one frame and returns when it has been
    /// handed to the device: a software rasteriser needs a second or two for 256 texels, a GPU milliseconds.
    ///
    /// The output's mips end at 4 x 4: 256 texels have 7. It becomes a render target of the input's format,
    /// with four channels and uncompressed, and gamma-corrected if the input is and that format can be. What
    /// was in it is lost. Alpha is 1. Each mip takes up to 1024 samples a texel, from mips of the input that
    /// fit the samples' distance: give the input a full chain, or small bright lights will speckle.
    ///
    /// @param input loaded cube texture, or 2D texture by longitude and latitude, v = 0 at +y and the middle
    ///        at +x, of any size, not of whole numbers. NaN spreads as far as the lobes reach.
    /// @param output another texture of the same graphics system; not owned
    /// @param resolution texels a side of the largest mip, 4 or more, at most what the device allows for
    /// cubes
    ///
    /// When something is missing or cannot be done, one line is logged with the sender
    /// "PbsEnvironmentMapFilter". The output is then as it was; only when the device refuses it, it is
    /// unloaded with its new settings.
    void requestEnvironmentMapFiltering(ovGraphics::Texture* input, ovGraphics::Texture* output,
                                        unsigned int resolution);

    /// Makes a texture that holds, in each direction of its shape, the light that a diffuse surface facing
    /// there receives, over pi: the input's light by spherical harmonics of bands 0 to 2 (R. Ramamoorthi, P.
    /// Hanrahan: An Efficient Representation for Irradiance Environment Maps, 2001). IrradianceTransform
    /// tells how texels are weighed, read and written, and computes without textures. Computed on
    /// the CPU, about as fast as the texels are read back and uploaded.
    ///
    /// The output has the input's shape, size, slices and format, and all its mips; it is gamma-corrected if
    /// the input is and the format has an sRGB sibling. What was in it is lost. A fourth channel is 1.
    ///
    /// @param input loaded cube texture, or 2D texture by longitude and latitude, of any format that is not
    ///        compressed. A format that is neither R32G32B32(A32) nor R8G8B8A8 is read and written as bytes,
    ///        after one logged line.
    /// @param output another texture; not owned
    ///
    /// When something is missing or cannot be done, one line is logged with the sender
    /// "PbsEnvironmentMapFilter". The output is then as it was; only when the device does not hand out the
    /// input's texels (the sender is "TextureUtils" then), or refuses the output, it is unloaded and changed.
    void requestIrradianceComputing(ovGraphics::Texture* input, ovGraphics::Texture* output);

private:
    struct FilterData;

    ovGraphics::System* _getGraphicsSystem() const;
    bool _checkTextures(const ovGraphics::Texture* input, const ovGraphics::Texture* output) const;
    bool _setupData();
    void _draw(ovGraphics::Texture& input, ovGraphics::Texture& output) const;
    void _log(ovMemory::StringView message) const;

    ovMemory::Borrowed<System> _system;
    ovMemory::UniquePtr<FilterData> _filterData; ///< made by the first filtering
};

} // namespace ovVeldris

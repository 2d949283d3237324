// The light of a sky, for the materials of a scene.
#pragma once

#include <ovCommon/Api.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>
#include <ovMemory/Result.h>

namespace ovGraphics {
class Texture;
}

namespace ovVeldris {

class AtmosphereEffect;
class Model;
class PbsMaterial;
class System;

/// What an atmosphere gives a scene: its sky all around, that as rough surfaces mirror it and as dull ones
/// receive it, and the sun behind the air. One instance serves any number of models, and draw() may be called
/// again when the sun has moved.
///
/// The three cubes are in the texture manager of the system: "<name>" is the sky, "<name> prefiltered" and
/// "<name> irradiance" are made of it by PbsEnvironmentMapFilter. They stay there when this goes, so that a
/// project saves them and what they light stays lit.
class OV_API SkyLight final : public ovMemory::Borrowable {
public:
    /// @param system not owned; without it nothing is drawn
    SkyLight(System* system, ovMemory::StringView name);
    ~SkyLight();
    SkyLight(const SkyLight&) = delete;
    SkyLight& operator=(const SkyLight&) = delete;

    const ovMemory::String& getName() const { return _name; }

    /// Draws the sky and makes the rest of it. Textures of the three names are overwritten, whatever they
    /// were; what reads them sees the new light at once.
    ///
    /// @param air its settings are read; it need not be loaded and is left as it is. The disc of the sun is
    ///        left out of the cubes, since its light is added by itself, and so are the scene and the shadows
    ///        that the effect may read. Below the horizon the sky is black, as the effect draws no ground
    /// @param side of the cubes, texels, 4 or more, at most what the device allows: a sky without a disc
    ///        varies slowly
    /// @return a failure with its reason, or after log lines that tell it; the light is then what it was, the
    ///         textures may be new
    ovMemory::Result draw(const AtmosphereEffect& air, unsigned int side = 64);

    // Of the texture manager; null before draw(), and when they were destroyed.

    ovGraphics::Texture* getSky() const { return _sky.get(); }
    ovGraphics::Texture* getPrefiltered() const { return _prefiltered.get(); }
    ovGraphics::Texture* getIrradiance() const { return _irradiance.get(); }
    /// Where the sun's light shines to.
    const ovMaths::Vector& getSunDirection() const { return _sunDirection; }
    /// The sun seen through the air from the ground, as materials take light: the radiance of a matte white
    /// that faces it, irradiance / pi (sunIrradiance()). Black under the horizon, and before draw().
    const ovMaths::Vector& getSunColor() const { return _sunColor; }

    /// Gives a material the sky and the sun. Waits for its load().
    void lightMaterial(PbsMaterial& material) const;
    /// The same for all materials of a model (Model::loadMaterials()).
    void lightModel(const Model& model) const;

private:
    ovMemory::Result _drawCubes(const AtmosphereEffect& air, unsigned int side);

    ovMemory::Borrowed<System> _system;
    ovMemory::String _name;
    ovMemory::Borrowed<ovGraphics::Texture> _sky;
    ovMemory::Borrowed<ovGraphics::Texture> _prefiltered;
    ovMemory::Borrowed<ovGraphics::Texture> _irradiance;
    ovMaths::Vector _sunDirection{0.0f, -1.0f, 0.0f};
    ovMaths::Vector _sunColor;
};

} // namespace ovVeldris

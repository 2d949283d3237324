// Draws the two tables of an atmosphere.
#pragma once

#include <ovVeldris/effects/ScreenEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereInfo.h>

namespace ovVeldris {

/// The tables of an AtmosphereEffect and what draws them. Both are read by the cosine of the sun's zenith
/// angle (u = 0.5 + 0.5 cosine) and by the height (v from 0 to 1 for 0 to 100 km).
class OV_API AtmosphereLuts final : public ScreenEffect<AtmosphereEffectInfo, AtmosphereLutProgramTracker> {
public:
    /// @param ownerName names the textures, which exist as soon as there is a graphics system
    AtmosphereLuts(System* system, ovMemory::StringView ownerName);
    ~AtmosphereLuts() override;

    /// The settings of the next load() and refresh(). @param sampler reads the first table for the second
    void setInfo(const AtmosphereEffectInfo& info, ovGraphics::Sampler* sampler);

    /// Makes the textures where they are missing or of another graphics system. @return false without one
    bool prepareTextures();

    /// Draws both tables anew, if loaded, at the sizes and the format of the settings. What cannot be drawn
    /// is told in the log, and the other table is drawn all the same.
    void refresh();

    /// The share of the sun's light that reaches a height; null before there is a graphics system.
    ovGraphics::Texture* getSunTransmittance() const { return _sunTransmittance.get(); }
    /// Light that the air scatters more than once; null before there is a graphics system.
    ovGraphics::Texture* getMultiScattering() const { return _multiScattering.get(); }

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
    bool _generate(ovGraphics::Texture& table, unsigned int width, unsigned int height,
                   const ovMaths::Vector& selector);
    bool _shapeTable(ovGraphics::Texture& table, unsigned int width, unsigned int height) const;

    ovMemory::String _ownerName;
    ovMemory::Borrowed<ovGraphics::Sampler> _sampler;
    ovMemory::UniquePtr<ovGraphics::Texture> _sunTransmittance;
    ovMemory::UniquePtr<ovGraphics::Texture> _multiScattering;
};

} // namespace ovVeldris

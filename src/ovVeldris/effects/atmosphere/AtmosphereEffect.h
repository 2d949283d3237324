// The effect that draws the sky, and the air between the eye and a scene.
#pragma once

#include <ovVeldris/effects/atmosphere/AtmosphereLuts.h>

namespace ovVeldris {

/// Draws light that the air of a planet like the Earth scatters: a sky without a source, or the air over a
/// picture with its depth, with or without the shadows of the scene in the air. The camera that renders looks
/// into it: y is up, a unit is a metre, 0 is the ground, and only its height counts.
///
/// Two tables (AtmosphereLuts) are drawn by load(); after a change of the air call refreshLuts(). Hillaire:
/// "A Scalable and Production Ready Sky and Atmosphere Rendering Technique", EGSR 2020.
class OV_API AtmosphereEffect final : public ScreenEffect<AtmosphereEffectInfo, AtmosphereProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<AtmosphereEffect> create(System* system);
    explicit AtmosphereEffect(System* system);
    ~AtmosphereEffect() override;

    /// The settings of every atmosphere.
    static const SettingTable& settings();

    bool load() override;
    /// Also forgets with which settings the effect was loaded.
    void unload() override;
    /// Draws both tables anew with the present settings, sizes and format included, when the effect is
    /// loaded. A table that cannot be made is told in the log. @return true in any case (kept: hosts rely on
    /// it)
    bool refreshLuts();

    /// The picture that the air dims and lights, scene-linear, not owned; null (the default): the sky alone.
    /// Reaches an effect that was loaded with one at once; otherwise waits for load().
    void setSourceColorTexture(ovGraphics::Texture* texture);
    /// The depth of the picture as the camera that renders wrote it, not owned; null (the default): rays end
    /// at the ground or leave the air. Reaches an effect that was loaded with one at once; otherwise waits
    /// for load(). View depth stands for the distance along a ray.
    void setSourceDepthTexture(ovGraphics::Texture* texture);
    /// The shadow map of the sun and the camera that drew it, not owned; null (the default) for either: no
    /// shadows. Reaches an effect that was loaded with both at once; otherwise waits for load().
    void setShadowSource(ovGraphics::Texture* texture, ovGraphics::Camera* camera);
    /// The direction towards the sun, of any length but 0. Default (0, 1, 0), overhead. Reaches a loaded
    /// effect at once; the tables do not depend on it.
    void setSunPosition(const ovMaths::Vector& direction);

    // The air. These reach a loaded effect at once, but for its tables: call refreshLuts().

    /// The share of light that the ground gives back to the air. Default 0.1.
    void setPlanetAlbedo(const ovMaths::Vector& value) { _setAir(_currentInfo.planetAlbedo, value); }
    /// What air scatters, per megametre.
    void setRayleighScattering(const ovMaths::Vector& value) {
        _setAir(_currentInfo.rayleigh.scattering, value);
    }
    /// What air takes away in all, for the tables, per megametre.
    void setRayleighExtinction(const ovMaths::Vector& value) {
        _setAir(_currentInfo.rayleigh.extinction, value);
    }
    /// What air absorbs, per megametre.
    void setRayleighAbsorb(const ovMaths::Vector& value) { _setAir(_currentInfo.rayleigh.absorb, value); }
    /// What haze scatters, per megametre.
    void setMieScattering(const ovMaths::Vector& value) { _setAir(_currentInfo.mie.scattering, value); }
    /// What haze takes away in all, for the tables, per megametre.
    void setMieExtinction(const ovMaths::Vector& value) { _setAir(_currentInfo.mie.extinction, value); }
    /// What haze absorbs, per megametre.
    void setMieAbsorb(const ovMaths::Vector& value) { _setAir(_currentInfo.mie.absorb, value); }
    /// What ozone scatters, per megametre.
    void setOzoneScattering(const ovMaths::Vector& value) { _setAir(_currentInfo.ozone.scattering, value); }
    /// What ozone takes away in all, for the tables, per megametre.
    void setOzoneExtinction(const ovMaths::Vector& value) { _setAir(_currentInfo.ozone.extinction, value); }
    /// What ozone absorbs, per megametre.
    void setOzoneAbsorb(const ovMaths::Vector& value) { _setAir(_currentInfo.ozone.absorb, value); }
    /// How much haze scatters forwards, -0.93 to 0.93. Default 0.8.
    void setMieG(float value) { _setAir(_currentInfo.mieG, value); }
    /// How much faster air thins with the height than by e in 8 km. Default 1.
    void setRayleighHeightDensityFactor(float value) {
        _setAir(_currentInfo.rayleigh.heightDensityFactor, value);
    }
    /// How much faster haze thins with the height than by e in 1.2 km. Default 1.
    void setMieHeightDensityFactor(float value) { _setAir(_currentInfo.mie.heightDensityFactor, value); }
    /// How much thinner the layer of ozone is than 30 km. Default 1.
    void setOzoneHeightDensityFactor(float value) { _setAir(_currentInfo.ozone.heightDensityFactor, value); }
    /// How much farther away the air takes the scene to be. Default 1.
    void setDistanceFactor(float value) { _setAir(_currentInfo.distanceFactor, value); }
    /// What light of the air and of the disc is multiplied by. Default 5.
    void setSunIlluminanceFactor(float value) { _setAir(_currentInfo.sunIlluminanceFactor, value); }
    /// Half the angle that the disc is wide, in degrees. Default 0.545 (kept: the sun is half as wide).
    void setSunAngularRadius(float value) { _setAir(_currentInfo.sunAngularRadius, value); }

    // What follows waits for load().

    /// Steps of the table of the sun, as getSunLutSampleCount() says (kept: the march has no setter).
    void setRaymarchSampleCount(unsigned int count) { _currentInfo.sunLutSampleCount = count; }
    /// The table of many scatterings looks into the square of so many directions. Default 8; with 0 it is
    /// black.
    void setMultiScatteringLutSphereSampleCount(unsigned int value) {
        _currentInfo.multiScatteringLutSphereSampleCount = value;
    }
    /// Steps in each of these directions. Default 20.
    void setMultiScatteringLutMarchSampleCount(unsigned int value) {
        _currentInfo.multiScatteringLutMarchSampleCount = value;
    }
    /// Texels of the table of the sun by its angle. Default 256.
    void setSunTransmittanceLutWidth(unsigned int value) { _currentInfo.sunTransmittanceLutWidth = value; }
    /// Texels of the same by the height. Default 64.
    void setSunTransmittanceLutHeight(unsigned int value) { _currentInfo.sunTransmittanceLutHeight = value; }
    /// Texels of the table of many scatterings by the sun's angle. Default 64.
    void setMultiScatteringLutWidth(unsigned int value) { _currentInfo.multiScatteringLutWidth = value; }
    /// Texels of the same by the height. Default 64.
    void setMultiScatteringLutHeight(unsigned int value) { _currentInfo.multiScatteringLutHeight = value; }
    /// How the shadow map is smoothed. Default PCF_9_TAP.
    void setShadowSamplingMethod(SHADOW_MAP_PCF value) { _currentInfo.shadow.pcfMethod = value; }
    /// Depth by which shadows begin behind what casts them; below 0 (the default, -1) the library's.
    void setShadowDepthBias(float value) { _currentInfo.shadow.bias = value; }
    /// Shadow what lies outside the shadow map. Default false.
    void setShadowDebug(bool value) { _currentInfo.shadow.debugOutOfBounds = value; }
    /// Tables of 16 bits a channel and not 32. Default false. Also followed by refreshLuts().
    void setUseHalfFloatForLuts(bool value) { _currentInfo.useHalfFloatForLuts = value; }
    /// Leave pixels of depth 1 as they are. Default false.
    void setOnlyScatterOnObjects(bool value) { _currentInfo.onlyScatterOnObjects = value; }
    /// Draw the disc. Default true.
    void setDisplaySun(bool value) { _currentInfo.displaySun = value; }
    /// Paint red what is not a number. Default false.
    void setDebugNumericalInstability(bool value) { _currentInfo.debugNumericalInstability = value; }

    ovGraphics::Texture* getSourceColorTexture() const;
    ovGraphics::Texture* getSourceDepthTexture() const;
    ovGraphics::Texture* getShadowTexture() const;
    ovGraphics::Camera* getShadowCamera() const;
    ovMaths::Vector getSunPosition() const { return _currentInfo.sunPosition; }
    ovMaths::Vector getPlanetAlbedo() const { return _currentInfo.planetAlbedo; }
    ovMaths::Vector getRayleighScattering() const { return _currentInfo.rayleigh.scattering; }
    ovMaths::Vector getRayleighExtinction() const { return _currentInfo.rayleigh.extinction; }
    ovMaths::Vector getRayleighAbsorb() const { return _currentInfo.rayleigh.absorb; }
    ovMaths::Vector getMieScattering() const { return _currentInfo.mie.scattering; }
    ovMaths::Vector getMieExtinction() const { return _currentInfo.mie.extinction; }
    ovMaths::Vector getMieAbsorb() const { return _currentInfo.mie.absorb; }
    ovMaths::Vector getOzoneScattering() const { return _currentInfo.ozone.scattering; }
    ovMaths::Vector getOzoneExtinction() const { return _currentInfo.ozone.extinction; }
    ovMaths::Vector getOzoneAbsorb() const { return _currentInfo.ozone.absorb; }
    float getMieG() const { return _currentInfo.mieG; }
    float getRayleighHeightDensityFactor() const { return _currentInfo.rayleigh.heightDensityFactor; }
    float getMieHeightDensityFactor() const { return _currentInfo.mie.heightDensityFactor; }
    float getOzoneHeightDensityFactor() const { return _currentInfo.ozone.heightDensityFactor; }
    float getDistanceFactor() const { return _currentInfo.distanceFactor; }
    float getSunIlluminanceFactor() const { return _currentInfo.sunIlluminanceFactor; }
    float getSunAngularRadius() const { return _currentInfo.sunAngularRadius; }
    unsigned int getSunLutSampleCount() const { return _currentInfo.sunLutSampleCount; }
    /// Steps of the march, always 32.
    unsigned int getRaymarchSampleCount() const { return _currentInfo.raymarchSampleCount; }
    unsigned int getMultiScatteringLutSphereSampleCount() const {
        return _currentInfo.multiScatteringLutSphereSampleCount;
    }
    unsigned int getMultiScatteringLutMarchSampleCount() const {
        return _currentInfo.multiScatteringLutMarchSampleCount;
    }
    unsigned int getSunTransmittanceLutWidth() const { return _currentInfo.sunTransmittanceLutWidth; }
    unsigned int getSunTransmittanceLutHeight() const { return _currentInfo.sunTransmittanceLutHeight; }
    unsigned int getMultiScatteringLutWidth() const { return _currentInfo.multiScatteringLutWidth; }
    unsigned int getMultiScatteringLutHeight() const { return _currentInfo.multiScatteringLutHeight; }
    SHADOW_MAP_PCF getShadowSamplingMethod() const { return _currentInfo.shadow.pcfMethod; }
    float getShadowDepthBias() const { return _currentInfo.shadow.bias; }
    bool getShadowDebug() const { return _currentInfo.shadow.debugOutOfBounds; }
    bool getUseHalfFloatForLuts() const { return _currentInfo.useHalfFloatForLuts; }
    bool getOnlyScatterOnObjects() const { return _currentInfo.onlyScatterOnObjects; }
    bool getDisplaySun() const { return _currentInfo.displaySun; }
    bool getDebugNumericalInstability() const { return _currentInfo.debugNumericalInstability; }

    /// The tables and their shader, owned by the effect; the shader is null before the first load().
    ovGraphics::Texture* getSunTransmittanceLut() const { return _luts.getSunTransmittance(); }
    ovGraphics::Texture* getMultiScatteringLut() const { return _luts.getMultiScattering(); }
    ovGraphics::Shader* getLutShader() const { return _luts.getShader(); }

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
    void _makeSamplers();
    void _writePixelConstantsIfLoaded() const;
    void _writeAirConstantsIfLoaded() const;

    template <typename T>
    void _setAir(T& setting, const T& value) {
        setting = value;
        _writeAirConstantsIfLoaded();
    }

    AtmosphereLuts _luts;
    ovMemory::UniquePtr<ovGraphics::Sampler> _lutSampler;
    ovMemory::UniquePtr<ovGraphics::Sampler> _depthSampler;
    ovMemory::UniquePtr<ovGraphics::Sampler> _shadowSampler;
};

} // namespace ovVeldris

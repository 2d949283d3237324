// The effect that adds the grain of film.
#pragma once

#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/effects/ScreenEffect.h>

namespace ovGraphics {
class BlendState;
}

namespace ovVeldris {

/// Settings of a FilmGrainEffect.
struct FilmGrainEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture; ///< becomes null when it is destroyed
    float strength = 0.15f;
    bool blendGrainInTarget = false;
    bool rgbNoise = false;
};

/// 2 when either switch is on, otherwise 0. Both share a value on purpose: effects with one, the other or
/// both share the program of the one that was loaded first.
struct FilmGrainIdGenerator {
    uint64_t operator()(const FilmGrainEffectInfo& info) const {
        return (info.rgbNoise ? 2u : 0u) | (info.blendGrainInTarget ? 2u : 0u);
    }
};

struct FilmGrainNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_FILM_GRAIN_PROGRAM_"; }
};

class OV_API FilmGrainProgramTracker
    : public ProgramTracker<FilmGrainEffectInfo, FilmGrainIdGenerator, FilmGrainNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// Adds noise that changes with the graphics system's time: colour + colour * noise * strength, noise from 0
/// to below 1. Alpha passes through. It draws its source with the grain, or the grain alone over what the
/// target holds already; that pass needs the blend state of FilmGrainEffectUtils.
///
/// Strength and source reach a loaded effect at once; the two switches wait for the next load(). Effects with
/// either switch on share a program: while one of them is loaded, the others draw with its switches.
///
/// The noise hangs on the last bits of the coordinates, of the time and of the device's sine. On one device
/// it repeats bit for bit, from device to device the pattern differs while its kind stays.
class OV_API FilmGrainEffect final : public ScreenEffect<FilmGrainEffectInfo, FilmGrainProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<FilmGrainEffect> create(System* system);
    explicit FilmGrainEffect(System* system);
    ~FilmGrainEffect() override;

    /// The settings of every film grain effect.
    static const SettingTable& settings();

    /// The texture that gets the grain, not owned; null (the default) reads as opaque black. Reaches a loaded
    /// effect at once, unless it was loaded to draw the grain alone, which reads no texture.
    void setSourceTexture(ovGraphics::Texture* texture);
    /// The share of a colour that the brightest grain adds to it. Default 0.15; 0 changes nothing, and
    /// nothing is clamped.
    void setStrength(float strength);
    /// Noise of its own for each colour (true), or grey noise (false, the default). Waits for load().
    void setRgbNoise(bool rgb);
    /// Draw the grain alone, to be blended with the target (true), or the source with its grain (false, the
    /// default). Waits for load().
    void setBlendGrainInTarget(bool blend);

    ovGraphics::Texture* getSourceTexture() const;
    float getStrength() const { return _currentInfo.strength; }
    bool getRgbNoise() const { return _currentInfo.rgbNoise; }
    bool getBlendGrainInTarget() const { return _currentInfo.blendGrainInTarget; }

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
    void _writeStrength(ovGraphics::Shader& shader) const;
};

/// What a pass needs that draws grain alone.
class OV_API FilmGrainEffectUtils {
public:
    /// Makes a state of target 0 that multiplies the grain with the target's colour and adds it. Alpha
    /// becomes the larger of the target's and 1, so that a target that is not opaque becomes so.
    /// @param blendState not null
    static void prepareBlendStateForGrainBlending(ovGraphics::BlendState* blendState);
};

} // namespace ovVeldris

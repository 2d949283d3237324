// The settings of an atmosphere, and which of them select its programs.
#pragma once

#include <ovMaths/Vector.h>
#include <ovMemory/Borrowed.h>
#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/shaders/ShadowMapParameters.h>

namespace ovGraphics {
class Camera;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

/// One kind of particles of the air. The coefficients are per megametre, for red, green and blue.
struct AtmosphereParticles {
    ovMaths::Vector scattering;
    ovMaths::Vector extinction; ///< what the tables dim light by; the march adds scattering and absorb
    ovMaths::Vector absorb;
    float heightDensityFactor = 1.0f; ///< how much faster they get fewer with the height
};

/// Settings of an AtmosphereEffect. What is borrowed becomes null when it is destroyed.
struct AtmosphereEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceColorTexture;
    ovMemory::Borrowed<ovGraphics::Texture> sourceDepthTexture;
    ovMemory::Borrowed<ovGraphics::Texture> shadowTexture;
    ovMemory::Borrowed<ovGraphics::Camera> shadowCamera;
    ovMaths::Vector sunPosition{0.0f, 1.0f, 0.0f};
    ovMaths::Vector planetAlbedo{0.1f, 0.1f, 0.1f};
    AtmosphereParticles rayleigh{
        .scattering = {5.802f, 13.558f, 33.1f}, .extinction = {5.802f, 13.558f, 33.1f}, .absorb = {}};
    AtmosphereParticles mie{.scattering = {3.996f, 3.996f, 3.996f},
                            .extinction = {8.396f, 8.396f, 8.396f},
                            .absorb = {4.4f, 4.4f, 4.4f}};
    AtmosphereParticles ozone{
        .scattering = {}, .extinction = {0.65f, 1.881f, 0.085f}, .absorb = {0.65f, 1.881f, 0.085f}};
    float mieG = 0.8f;
    float distanceFactor = 1.0f;
    float sunIlluminanceFactor = 5.0f;
    float sunAngularRadius = 0.545f; ///< degrees
    unsigned int sunLutSampleCount = 40;
    unsigned int multiScatteringLutSphereSampleCount = 8;
    unsigned int multiScatteringLutMarchSampleCount = 20;
    unsigned int raymarchSampleCount = 32;
    unsigned int sunTransmittanceLutWidth = 256;
    unsigned int sunTransmittanceLutHeight = 64;
    unsigned int multiScatteringLutWidth = 64;
    unsigned int multiScatteringLutHeight = 64;
    ShadowMapParameters shadow; ///< of nine taps, with the library's bias
    bool useHalfFloatForLuts = false;
    bool onlyScatterOnObjects = false;
    bool displaySun = true;
    bool debugNumericalInstability = false;
    // Kept beside what is borrowed: what is destroyed must not change which program is given back.
    bool hasSourceColor = false;
    bool hasSourceDepth = false;
    bool hasShadowTexture = false;
    bool hasShadowCamera = false;

    /// A shadow map needs both.
    bool usesShadows() const { return hasShadowTexture && hasShadowCamera; }
};

/// A hash of the settings that select the text of the effect's program.
struct OV_API AtmosphereIdGenerator {
    uint64_t operator()(const AtmosphereEffectInfo& info) const;
};

struct AtmosphereNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_ATMOSPHERE_PROGRAM_"; }
};

class OV_API AtmosphereProgramTracker
    : public ProgramTracker<AtmosphereEffectInfo, AtmosphereIdGenerator, AtmosphereNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// A hash of the settings that select the text of the tables' program.
struct OV_API AtmosphereLutIdGenerator {
    uint64_t operator()(const AtmosphereEffectInfo& info) const;
};

struct AtmosphereLutNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_ATMOSPHERE_LUT_PROGRAM_"; }
};

class OV_API AtmosphereLutProgramTracker
    : public ProgramTracker<AtmosphereEffectInfo, AtmosphereLutIdGenerator, AtmosphereLutNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

} // namespace ovVeldris

// The effect that darkens corners: ambient occlusion in screen space.
#pragma once

#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/effects/ScreenEffect.h>

namespace ovGraphics {
class BlendState;
class Camera;
} // namespace ovGraphics

namespace ovVeldris {

/// Settings of an SsaoEffect. What is borrowed becomes null when it is destroyed.
struct SsaoEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> depthBuffer;
    ovMemory::Borrowed<ovGraphics::Texture> gBufferPosition;
    ovMemory::Borrowed<ovGraphics::Texture> gBufferNormal;
    ovMemory::Borrowed<ovGraphics::Camera> camera;
    float samplingRadius = 0.05f;
    float maxOcclusionDistance = 1.0f;
    float strength = 0.8f;
    float depthBias = 0.00001f;
    unsigned int kernelSampleCount = 16;
    bool occlusionDrivesAlpha = false;
    bool linearDepth = false;
    // Kept beside the textures: one that is destroyed must not change which program is given back.
    bool readsPositions = false; ///< a position texture was set
    bool readsNormals = false;   ///< a normal texture was set
};

/// Bits 63 to 32: those of the depth bias as a float; 31 to 24: the number of samples; 16: positions are
/// read; 15: occlusion drives alpha; 14: linear depth. Normals are not among them: of two effects that differ
/// in nothing else, the second draws with the program of the first (kept: hosts store these keys).
struct OV_API SsaoIdGenerator {
    uint64_t operator()(const SsaoEffectInfo& info) const;
};

struct SsaoNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_SSAO_PROGRAM_"; }
};

class OV_API SsaoProgramTracker : public ProgramTracker<SsaoEffectInfo, SsaoIdGenerator, SsaoNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// Draws how open to the sky around it each pixel of a scene is: 1 in the open, 0 in a closed corner, in all
/// colour channels. Pixels that show nothing, and the rims of things when there are no normals, stay as the
/// target was: clear it to 1.
///
/// The scene is read from its view-space positions, with or without normals, or from its depth buffer. Depth
/// is followed from the near plane: its pixels lie at near + far times the linear depth. Needs a camera.
class OV_API SsaoEffect final : public ScreenEffect<SsaoEffectInfo, SsaoProgramTracker> {
public:
    static constexpr unsigned int MAX_KERNEL_SAMPLE_COUNT = 16;

    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<SsaoEffect> create(System* system);
    explicit SsaoEffect(System* system);
    ~SsaoEffect() override;

    /// The settings of every ambient occlusion effect.
    static const SettingTable& settings();

    /// Reads view-space positions (z = 0 where there is nothing) and, unless null, view-space normals of any
    /// length; without them normals follow from neighbouring positions. Not owned. Forgets the depth buffer.
    /// Reaches an effect that was loaded with positions at once, with normals if it was loaded with those;
    /// otherwise waits for load().
    void setEffectFromGBufferInfo(ovGraphics::Texture* positions, ovGraphics::Texture* normals);
    /// Reads a depth buffer, not owned. Forgets positions and normals. Reaches an effect that was loaded
    /// without positions at once, but for linearDepth; otherwise waits for load(). @param linearDepth the
    /// buffer holds view z over the far plane; false: what a perspective camera writes
    void setEffectFromDepthInfo(ovGraphics::Texture* depth, bool linearDepth);
    /// The camera that saw the scene, not owned; null (the default) means the camera that renders, whose near
    /// and far plane count in any case. Reaches a loaded effect at once.
    void setCamera(ovGraphics::Camera* camera);
    /// How far from a pixel samples are taken, in units of the view. Default 0.05. Reaches a loaded effect at
    /// once.
    void setSamplingRadius(float radius);
    /// How much nearer than a sample a surface may be to darken it, in units of the view. Default 1. Reaches
    /// a loaded effect at once.
    void setMaxOcclusionDistance(float distance);
    /// The power of the open fraction, kept in [0, 1]: 0 draws no occlusion. Default 0.8. Reaches a loaded
    /// effect at once.
    void setStrength(float strength);
    /// How much nearer than a sample a surface must be to darken it. Six decimals count: anything smaller
    /// than 0.0000005 is 0. Default 0.00001. Waits for load().
    void setDepthBias(float bias);
    /// Samples a pixel, kept in [1, 16]. Default 16. Waits for load().
    void setKernelSampleCount(unsigned int count);
    /// Whether alpha holds what the colour channels hold, for blending; otherwise it is 1. Default false.
    /// Waits for load().
    void setOcclusionDrivesAlpha(bool drives);

    /// The positions; null when none are set.
    ovGraphics::Texture* getPositionBuffer() const;
    /// The normals; null when none are set.
    ovGraphics::Texture* getNormalBuffer() const;
    /// The depth buffer; null when none is set.
    ovGraphics::Texture* getDepthBuffer() const;
    bool getLinearDepth() const { return _currentInfo.linearDepth; }
    ovGraphics::Camera* getCamera() const;
    float getSamplingRadius() const { return _currentInfo.samplingRadius; }
    float getMaxOcclusionDistance() const { return _currentInfo.maxOcclusionDistance; }
    float getStrength() const { return _currentInfo.strength; }
    float getDepthBias() const { return _currentInfo.depthBias; }
    unsigned int getKernelSampleCount() const { return _currentInfo.kernelSampleCount; }
    bool getOcclusionDrivesAlpha() const { return _currentInfo.occlusionDrivesAlpha; }

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
    void _setPositions(ovGraphics::Texture* positions);
    void _setNormals(ovGraphics::Texture* normals);
    void _setDepth(ovGraphics::Texture* depth);
    void _writeSamplingVarsIfLoaded() const;
    void _writeSamplingVars(ovGraphics::Shader& shader) const;
    void _writeCamera(ovGraphics::Shader& shader) const;
};

class OV_API SsaoEffectUtils {
public:
    /// Makes a blend state multiply the target's colour by the alpha that is drawn, and keep the larger
    /// alpha. It works with setOcclusionDrivesAlpha(true) only: without it alpha is 1 and nothing darkens.
    static void prepareBlendStateForAoBlending(ovGraphics::BlendState* blendState);
};

} // namespace ovVeldris

// The effect that blurs what is out of focus.
#pragma once

#include <array>
#include <ovVeldris/complexEffects/BlurComplexEffect.h>

namespace ovGraphics {
class Camera;
}

namespace ovVeldris {

/// Settings of a DofComplexEffect. What is borrowed becomes null when it is destroyed.
struct DofComplexEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture;
    ovMemory::Borrowed<ovGraphics::Texture> sourceDepth;
    ovMemory::Borrowed<ovGraphics::Camera> camera;
    float nearPlaneDistance = 10.0f;
    float focalPlaneDistance = 50.0f;
    float focalPlaneThickness = 0.0f;
    float farPlaneDistance = 100.0f;
    unsigned int blurStrength = 3;
    bool linearDepth = false;
};

/// Bits 63 to 32: the strength; 0: the depth is linear.
struct OV_API DofIdGenerator {
    uint64_t operator()(const DofComplexEffectInfo& info) const;
};

struct DofNameGenerator {
    static constexpr ovMemory::StringView FIRST_SUFFIX = "_DOWN";
    static constexpr ovMemory::StringView SECOND_SUFFIX = "_BLEND";
    ovMemory::StringView operator()() const { return "ORVANE_DOF_PROGRAM_"; }
};

/// The programs of the down-sampling and the blend pass.
class OV_API DofProgramTracker
    : public ProgramPairTracker<DofComplexEffectInfo, DofIdGenerator, DofNameGenerator> {
public:
    using ProgramPairTracker::ProgramPairTracker;
};

/// Blurs a picture by depth: nothing in the sharp zone around the focal plane, more towards the near and the
/// far plane, fully beyond them.
///
/// One pass makes three pictures of a quarter of the sides (1 texel at least): what is nearer than the far
/// plane, what is beyond it, and how much each pixel fades. A BlurComplexEffect blurs each, and a last pass
/// blends them with the sharp picture.
///
/// Distances are those of the shaders: near + (far - near) times the linear depth, with the near and far
/// plane of the camera. That is view z, but for less than the near plane's distance. Without a source the
/// result is of one texel. A source whose format cannot be drawn to makes load() fail.
class OV_API DofComplexEffect final : public MultiPassEffect<DofComplexEffectInfo, DofProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<DofComplexEffect> create(System* system);
    explicit DofComplexEffect(System* system);
    /// Unloads.
    ~DofComplexEffect() override;

    /// The settings of every depth of field.
    static const SettingTable& settings();

    /// The sharp picture, not owned. Default null. Reaches a loaded effect at once, with the size and the
    /// format that it has then: set it again when it was loaded with others.
    void setSourceTexture(ovGraphics::Texture* texture);
    /// The depth of the picture, not owned and of its size. Default null, which reads as depth 0. Reaches a
    /// loaded effect at once.
    void setSourceDepth(ovGraphics::Texture* depth);
    /// The camera that saw the scene, not owned; null (the default) means the camera that renders. Reaches a
    /// loaded effect at once.
    void setCamera(ovGraphics::Camera* camera);
    /// Where everything is fully blurred, and before. Default 10. Reaches a loaded effect at once.
    void setNearPlaneDistance(float distance);
    /// The middle of the sharp zone. Default 50. Reaches a loaded effect at once.
    void setFocalPlaneDistance(float distance);
    /// From the beginning of the sharp zone to its end, which are no part of it: at 0, the default, no pixel
    /// is quite sharp. Reaches a loaded effect at once.
    void setFocalPlaneThickness(float thickness);
    /// Where everything is fully blurred, and beyond. Default 100. Reaches a loaded effect at once.
    void setFarPlaneDistance(float distance);
    /// Radius of the blurs, in texels of the small pictures. Default 3; load() fails beyond MAX_BLUR_RADIUS.
    /// Waits for load().
    void setBlurStrength(unsigned int texels);
    /// Whether the depth texture holds view z over the far plane; otherwise what a perspective camera writes.
    /// Default false. Waits for load().
    void setLinearDepth(bool isLinear);

    ovGraphics::Texture* getSourceTexture() const;
    ovGraphics::Texture* getSourceDepth() const;
    ovGraphics::Camera* getCamera() const;
    float getNearPlaneDistance() const { return _currentInfo.nearPlaneDistance; }
    float getFocalPlaneDistance() const { return _currentInfo.focalPlaneDistance; }
    float getFocalPlaneThickness() const { return _currentInfo.focalPlaneThickness; }
    float getFarPlaneDistance() const { return _currentInfo.farPlaneDistance; }
    unsigned int getBlurStrength() const { return _currentInfo.blurStrength; }
    bool getLinearDepth() const { return _currentInfo.linearDepth; }

    /// What the last pass draws into, owned by the effect and loaded while the effect is. Null before the
    /// system is initialised. It stays the same object until the effect is destroyed or loaded on another
    /// graphics system.
    ovGraphics::Texture* getOutputTexture() const { return _output.get(); }

private:
    /// Of the small pictures: near field, far field, fade.
    static constexpr unsigned int PLANE_COUNT = 3;

    bool _loadParts(ovGraphics::CompositorNode& node) override;
    void _unloadParts() override;
    void _createTargets(ovGraphics::System& graphics);
    bool _prepareTextures();
    bool _makeSamplers(ovGraphics::System& graphics);
    bool _makeViewports(ovGraphics::System& graphics);
    void _prepareViewports();
    void _makeBlurs(ovGraphics::CompositorNode& node);
    bool _prepareShaders();
    bool _feedNode(ovGraphics::CompositorNode& node);
    bool _isLoaded() const;
    void _writeCamera();
    void _writeDistances();

    std::array<ovMemory::UniquePtr<BlurComplexEffect>, PLANE_COUNT> _blurs;
    ovMemory::UniquePtr<ovGraphics::Shader> _down;
    ovMemory::UniquePtr<ovGraphics::Shader> _blend;
    std::array<ovMemory::UniquePtr<ovGraphics::Texture>, PLANE_COUNT> _planes;
    ovMemory::UniquePtr<ovGraphics::Texture> _output;
    ovMemory::UniquePtr<ovGraphics::Sampler> _colorSampler;
    ovMemory::UniquePtr<ovGraphics::Sampler> _depthSampler;
    ovMemory::UniquePtr<ovGraphics::Viewport> _downViewport;
    ovMemory::UniquePtr<ovGraphics::Viewport> _highViewport;
};

} // namespace ovVeldris

// The effect that blurs a texture.
#pragma once

#include <ovVeldris/complexEffects/MultiPassEffect.h>

namespace ovGraphics {
class Sampler;
class Shader;
class Texture;
class Viewport;
} // namespace ovGraphics

namespace ovVeldris {

/// Settings of a BlurComplexEffect.
struct BlurComplexEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture; ///< becomes null when it is destroyed
    unsigned int kernelRadius = 5;
    bool alphaEncodesBlurPlanes = false;
    bool preserveAlpha = false;
};

/// Bits 63 to 32: the radius; 1: alpha is preserved; 0: alpha encodes planes.
struct OV_API BlurIdGenerator {
    uint64_t operator()(const BlurComplexEffectInfo& info) const;
};

struct BlurNameGenerator {
    static constexpr ovMemory::StringView FIRST_SUFFIX = "_H";
    static constexpr ovMemory::StringView SECOND_SUFFIX = "_V";
    ovMemory::StringView operator()() const { return "ORVANE_BLUR_PROGRAM_"; }
};

/// The programs of the horizontal and the vertical pass.
class OV_API BlurProgramTracker
    : public ProgramPairTracker<BlurComplexEffectInfo, BlurIdGenerator, BlurNameGenerator> {
public:
    using ProgramPairTracker::ProgramPairTracker;
};

/// Blurs a texture by a row of Pascal's triangle, near to a Gaussian of the standard deviation
/// sqrt((radius + 1) / 2) texels: a horizontal pass and a vertical one, each into a texture of the effect's
/// own that has the source's size and format. Texels beyond the edge are those of the edge.
///
/// Without a source the result is of one texel. A source whose format cannot be drawn to makes load() fail.
class OV_API BlurComplexEffect final : public MultiPassEffect<BlurComplexEffectInfo, BlurProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<BlurComplexEffect> create(System* system);
    explicit BlurComplexEffect(System* system);
    /// Unloads.
    ~BlurComplexEffect() override;

    /// The settings of every blur.
    static const SettingTable& settings();

    /// What is blurred, not owned. Default null. Reaches a loaded effect at once, with the size and the
    /// format that it has then: set it again when it was loaded with others.
    void setSourceTexture(ovGraphics::Texture* texture);
    /// Texels on each side of the centre. Default 5; 0 copies. load() fails beyond MAX_BLUR_RADIUS. Waits for
    /// load().
    void setKernelRadius(unsigned int texels);
    /// Whether texels count only where their alpha differs from the centre's by less than 0.00001, so that
    /// planes of other alphas do not bleed into each other. Alphas are compared as fetched, between texels:
    /// so a fetch across the border of two planes counts for neither, and the vertical pass compares what the
    /// horizontal one drew. Default false. Waits for load().
    void setAlphaEncodesBlurPlanes(bool encodes);
    /// Whether alpha is blurred like the colours; otherwise it is 1 after the vertical pass. Default false.
    /// Waits for load().
    void setPreserveAlpha(bool preserve);

    ovGraphics::Texture* getSourceTexture() const;
    unsigned int getKernelRadius() const { return _currentInfo.kernelRadius; }
    bool getAlphaEncodesBlurPlanes() const { return _currentInfo.alphaEncodesBlurPlanes; }
    bool getPreserveAlpha() const { return _currentInfo.preserveAlpha; }

    /// What the vertical pass draws into, owned by the effect and loaded while the effect is. Null before the
    /// system is initialised. It stays the same object until the effect is destroyed or loaded on another
    /// graphics system.
    ovGraphics::Texture* getOutputTexture() const { return _vertical.target.get(); }

private:
    struct Pass {
        ovMemory::UniquePtr<ovGraphics::Texture> target;
        ovMemory::UniquePtr<ovGraphics::Shader> shader;
    };

    bool _loadParts(ovGraphics::CompositorNode& node) override;
    void _unloadParts() override;
    void _createTargets(ovGraphics::System& graphics);
    bool _prepareTextures();
    bool _preparePrograms();
    bool _prepareShaders();
    void _prepareViewport();
    void _writeTexelSize();

    Pass _horizontal;
    Pass _vertical;
    ovMemory::UniquePtr<ovGraphics::Viewport> _viewport;
    ovMemory::UniquePtr<ovGraphics::Sampler> _sampler;
};

} // namespace ovVeldris

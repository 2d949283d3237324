// The effect that draws a texture as it is.
#pragma once

#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/effects/ScreenEffect.h>

namespace ovVeldris {

/// Settings of a TextureCopyEffect. What is borrowed becomes null when it is destroyed.
struct TextureCopyEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture;
    ovMemory::Borrowed<ovGraphics::Sampler> sourceSampler; ///< null: the effect's own
};

/// No setting changes the shader text: every texture copy effect shares the program 0.
struct TextureCopyIdGenerator {
    uint64_t operator()(const TextureCopyEffectInfo&) const { return 0; }
};

struct TextureCopyNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_TEX_COPY_PROGRAM_"; }
};

class OV_API TextureCopyProgramTracker
    : public ProgramTracker<TextureCopyEffectInfo, TextureCopyIdGenerator, TextureCopyNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// Draws a source texture unchanged over the whole target, all four channels, stretched to its size.
class OV_API TextureCopyEffect final : public ScreenEffect<TextureCopyEffectInfo, TextureCopyProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<TextureCopyEffect> create(System* system);
    explicit TextureCopyEffect(System* system);
    ~TextureCopyEffect() override;

    /// The settings of every texture copy effect.
    static const SettingTable& settings();

    /// The texture to draw, not owned; null (the default) reads as opaque black. Reaches a loaded effect at
    /// once.
    void setSourceTexture(ovGraphics::Texture* texture);
    /// How it is read, not owned; null (the default) reads the nearest texel of mip 0, clamped to the edges.
    /// Reaches a loaded effect at once.
    void setSourceSampler(ovGraphics::Sampler* sampler);

    ovGraphics::Texture* getSourceTexture() const;
    ovGraphics::Sampler* getSourceSampler() const;

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
};

} // namespace ovVeldris

// The effects that read a scene, over its samples.
#pragma once

#include <ovGraphics/compositor/Compositor.h>
#include <veldris/effects/SceneResources.h>
#include <veldris/pictures/PictureShader.h>

namespace ovVeldris {
class TextureCopyEffect;
}

namespace veldris {

class Session;

/// The samples of a scene's picture, and what else is known of it. Borrowed.
struct SceneSamples {
    ovGraphics::Texture& color;
    /// Whether alpha of the samples is the share of the background that is seen, and their colour what covers
    /// the rest; it stays so. Otherwise alpha means nothing.
    bool transparent = false;
    SceneResources resources;
};

/// Draws effects over every sample of a scene before the samples are averaged, so that edges stay smooth. An
/// effect that blends is drawn over the colours. Any other is drawn beside them and takes their place; where
/// it draws nothing, light of 1 is left.
class SceneEffects {
public:
    /// Loads effects. @param effects that read a scene, in their order
    /// @return null after one log line when one cannot be loaded
    static ovMemory::UniquePtr<SceneEffects>
    create(Session& session, const ovMemory::Buffer<PlannedEffect>& effects, const SceneSamples& samples);
    ~SceneEffects();

    /// Adds the passes to a node that is drawn when the scene was.
    void appendPasses(ovGraphics::CompositorNode& node);
    /// What the passes leave: the colours of the scene, or a texture of the same size.
    ovGraphics::Texture& getPicture() const { return *_picture; }

    /// Tells effects where the light comes from, unless they were told otherwise. @param toLight of any
    /// length
    void light(const ovMaths::Vector& toLight);

private:
    struct Step {
        PlannedEffect planned;
        ovMemory::UniquePtr<ovVeldris::Effect> effect;
        ovGraphics::BlendState blending = {};
        bool blends = false;
        ovGraphics::Texture* target = nullptr;
    };

    SceneEffects(Session& session, const SceneSamples& samples);
    bool _add(const PlannedEffect& planned);
    bool _loadCoverage();
    ovGraphics::Texture* _getOther();
    ovGraphics::PostProcessPass& _appendPass(ovGraphics::CompositorNode& node, ovGraphics::Texture& target,
                                             ovGraphics::Shader& shader, ovMemory::StringView name,
                                             bool fills = false);

    Session& _session;
    SceneSamples _samples;
    ovGraphics::Texture* _picture;
    ovMemory::UniquePtr<ovGraphics::Texture> _other;
    ovMemory::Buffer<Step> _steps;
    // Of transparent pictures: colours beside their coverage, and multiplied by it again.
    ovMemory::UniquePtr<PictureShader> _divide;
    ovMemory::UniquePtr<ovVeldris::TextureCopyEffect> _multiply;
};

} // namespace veldris

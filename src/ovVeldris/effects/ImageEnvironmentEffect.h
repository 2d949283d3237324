// The effect that draws surroundings behind a scene.
#pragma once

#include <ovMemory/Enumeration.h>
#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/effects/ScreenEffect.h>

namespace ovGraphics {
class Camera;
}

namespace ovVeldris {

/// How an ImageEnvironmentEffect reads its texture.
enum class IMAGE_ENVIRONMENT_PROJECTION : unsigned int {
    AUTO = 0,           ///< EQUIRECTANGULAR for a 2D texture, otherwise CUBE
    FLAT = 1,           ///< a picture stretched over the screen
    CUBE = 2,           ///< a cube texture, along the camera's directions
    EQUIRECTANGULAR = 3 ///< a map by longitude and latitude, along the camera's directions
};

inline constexpr ovMemory::EnumEntry<IMAGE_ENVIRONMENT_PROJECTION> IMAGE_ENVIRONMENT_PROJECTION_ENTRIES[] = {
    {IMAGE_ENVIRONMENT_PROJECTION::AUTO, "AUTO"},
    {IMAGE_ENVIRONMENT_PROJECTION::FLAT, "FLAT"},
    {IMAGE_ENVIRONMENT_PROJECTION::CUBE, "CUBE"},
    {IMAGE_ENVIRONMENT_PROJECTION::EQUIRECTANGULAR, "EQUIRECTANGULAR"},
};
constexpr ovMemory::EnumTable<IMAGE_ENVIRONMENT_PROJECTION> enumTable(IMAGE_ENVIRONMENT_PROJECTION) {
    return {"IMAGE_ENVIRONMENT_PROJECTION", IMAGE_ENVIRONMENT_PROJECTION_ENTRIES};
}

/// Settings of an ImageEnvironmentEffect. What is borrowed becomes null when it is destroyed.
struct ImageEnvironmentEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture;
    ovMemory::Borrowed<ovGraphics::Sampler> sourceSampler; ///< null: the effect's own
    ovMemory::Borrowed<ovGraphics::Camera> sourceCamera;   ///< null: the camera that renders
    IMAGE_ENVIRONMENT_PROJECTION sourceProjection = IMAGE_ENVIRONMENT_PROJECTION::AUTO;
};

/// 1 for CUBE, 2 for EQUIRECTANGULAR, 4 for FLAT, of the projection that is required.
struct OV_API ImageEnvironmentIdGenerator {
    uint64_t operator()(const ImageEnvironmentEffectInfo& info) const;
};

struct ImageEnvironmentNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_IMAGE_ENVIRONMENT_PROGRAM_"; }
};

class OV_API ImageEnvironmentProgramTracker
    : public ProgramTracker<ImageEnvironmentEffectInfo, ImageEnvironmentIdGenerator,
                            ImageEnvironmentNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// Draws an image behind a scene: a flat one over the whole target, or surroundings as a camera sees them,
/// infinitely far away. All four channels, unchanged. Draw it before the scene, or where nothing was drawn.
class OV_API ImageEnvironmentEffect final
    : public ScreenEffect<ImageEnvironmentEffectInfo, ImageEnvironmentProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<ImageEnvironmentEffect> create(System* system);
    explicit ImageEnvironmentEffect(System* system);
    ~ImageEnvironmentEffect() override;

    /// The settings of every image environment effect.
    static const SettingTable& settings();

    /// The image, not owned; null (the default) reads as opaque black. Reaches a loaded effect at once; one
    /// of another shape than the loaded projection reads is the first face of a cube, or opaque black.
    void setSourceTexture(ovGraphics::Texture* texture);
    /// How it is read, not owned; null (the default) reads mip 0, linear between texels, clamped to the
    /// edges. Reaches a loaded effect at once.
    void setSourceSampler(ovGraphics::Sampler* sampler);
    /// The camera whose view is drawn, not owned; null (the default) means the camera that renders. Reaches a
    /// loaded effect at once. FLAT needs none.
    void setSourceCamera(ovGraphics::Camera* camera);
    /// How the image is read. Waits for load(). Default AUTO.
    void setSourceProjection(IMAGE_ENVIRONMENT_PROJECTION projection);

    ovGraphics::Texture* getSourceTexture() const;
    ovGraphics::Sampler* getSourceSampler() const;
    ovGraphics::Camera* getSourceCamera() const;
    /// As it was set: AUTO stays AUTO.
    IMAGE_ENVIRONMENT_PROJECTION getSourceProjection() const { return _currentInfo.sourceProjection; }

    /// The projection of these settings, AUTO resolved: EQUIRECTANGULAR for a 2D texture, CUBE for another or
    /// none.
    static IMAGE_ENVIRONMENT_PROJECTION getRequiredProjection(const ImageEnvironmentEffectInfo& info);

private:
    void _resolveLoadedInfo() override;
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
};

} // namespace ovVeldris

// Draws a scene of physically based materials into a picture.
#pragma once

#include <functional>
#include <optional>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovImages/Image.h>
#include <ovVeldris/effects/ImageEnvironmentEffect.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <veldris/effects/EffectPlan.h>
#include <veldris/scene/SurfaceShaders.h>

namespace veldris {

class EnvironmentLight;
class PictureShader;
class SceneEffects;
class SceneGeometry;
class ShadowGround;
class Session;

/// What a scene is lit by, and how large its picture is.
struct SceneSettings {
    unsigned int width = 1280;                       ///< pixels
    unsigned int height = 720;                       ///< pixels
    unsigned int samples = 1;                        ///< of a pixel, the square of a whole number
    ovMaths::Vector background{0.18f, 0.18f, 0.18f}; ///< linear
    /// Where the light shines to; nothing: as the materials say.
    std::optional<ovMaths::Vector> lightDirection;
    std::optional<ovMaths::Vector> lightColor; ///< linear; nothing: as the materials say
    bool shadows = false;                      ///< of the scene on its own surfaces
    bool ground = false; ///< a ground that is not seen, below what casts shadows, catches their shadow
    /// Nothing stands behind the scene: no environment, no background. The picture's alpha tells what covers.
    bool transparent = false;
    /// Samples that are drawn at once, in whole rows: 20 bytes each. A picture of more is drawn strip by
    /// strip.
    unsigned int stripSamples = 1u << 21;
    bool lightBesideEnvironment = true; ///< false: an environment is all the light there is
    /// Effects that read the scene, in their order: they are drawn over every sample. With any the picture is
    /// drawn as a whole, not in strips.
    ovMemory::Buffer<PlannedEffect> effects = {};
    bool keepsDepth = false; ///< the depth of each pixel is wanted beside the picture
};

/// Two queues of entities, a light with its shadow map, and the passes that draw them. What is added is
/// borrowed.
///
/// The samples of a large picture take several times its memory, so they are drawn and averaged strip by
/// strip, unless effects read them.
class ScenePicture {
public:
    /// @return null with one line in error when the device cannot draw the size
    static ovMemory::UniquePtr<ScenePicture> create(Session& session, const SceneSettings& settings,
                                                    ovMemory::String& error);
    ~ScenePicture();

    ovGraphics::RenderQueue& getSolid() { return *_solid; }
    ovGraphics::RenderQueue& getBlended() { return *_blended; }
    ovGraphics::Camera& getCamera() { return *_camera; }
    float getAspect() const;

    /// Light from all around for the materials that are lit from now on, also drawn behind the scene; null
    /// (the default): the materials' own environment colour, and the background of the settings. Borrowed.
    /// @param behind a panorama to draw behind the scene in its place, borrowed; null: the environment's own
    /// @return false after one log line when it cannot be drawn
    bool setEnvironment(const EnvironmentLight* environment, ovGraphics::Texture* behind = nullptr);

    /// Lights a material. It must be loaded afterwards, and only then added to the queues.
    void light(ovVeldris::PbsMaterial& material);
    /// Gives the entities of a loaded material their shaders of the passes that draw no colours. A shadow is
    /// of opaque surfaces all, of masked ones what is drawn of them, of blended ones what covers by more than
    /// a half. Effects that read the geometry see opaque and masked surfaces, as the depth buffer has them.
    /// @return false after one log line when that takes a program that cannot be loaded
    bool prepareSurface(const ovVeldris::PbsMaterial& material, ovGraphics::GLTF_ALPHA_MODE alphaMode);
    /// Turns the light's view so that everything in the box casts its shadow.
    void fitShadow(const ovGraphics::BoundingBox& box);

    /// Draws. @return a texture of four scene-linear floats, colour beside alpha (not multiplied by it); null
    /// with one line in error when it cannot be drawn. Samples that are not numbers become black and are
    /// counted in warning.
    ovMemory::UniquePtr<ovGraphics::Texture> draw(ovMemory::String& warning, ovMemory::String& error);
    /// The depth of each pixel of the last picture, as the camera writes it, in red; null unless the settings
    /// keep it. The caller owns it.
    ovMemory::UniquePtr<ovGraphics::Texture> takeDepth() { return std::move(_pixelDepth); }
    /// The camera, for effects over the picture that outlive this object, which draws nothing afterwards.
    ovMemory::UniquePtr<ovGraphics::Camera> takeCamera() { return std::move(_camera); }
    /// Is told the share of a picture that is drawn, 0 to 1, after each strip.
    void setProgress(std::function<void(double share)> progress) { _progress = std::move(progress); }
    /// The passes of the last draw(), when the session measures: each once, whatever the number of strips.
    const ovMemory::Buffer<ovGraphics::PassTiming>& getTimings() const { return _timings; }

private:
    ScenePicture(Session& session, const SceneSettings& settings);
    bool _makeTextures(ovMemory::String& error);
    bool _makeShaders(ovMemory::String& error);
    void _makePasses();
    void _appendShadowPasses();
    void _appendColorPasses();
    ovGraphics::ScenePass* _appendBlendedPass(ovMemory::StringView name, ovGraphics::RenderQueue& queue);
    void _appendSamplePasses();
    void _appendDepthPass(ovGraphics::CompositorNode& node);
    bool _usesShadowMap() const;
    bool _makeEffects();
    bool _drawStrip(unsigned int top);
    void _addTimings();
    double _countNotFinite();

    Session& _session;
    SceneSettings _settings;
    ovMaths::Vector _lightDirection;
    const EnvironmentLight* _environment = nullptr;
    ovMemory::UniquePtr<ovVeldris::ImageEnvironmentEffect> _surroundings;
    ovGraphics::CompositorNode* _shadowNode = nullptr;
    ovGraphics::CompositorOperationsBlock* _colorBlock = nullptr;
    ovGraphics::CompositorOperationsBlock* _averageBlock = nullptr;
    ovGraphics::CompositorOperationsBlock* _pickBlock = nullptr;
    const ovGraphics::CompositorPass* _surroundingsPass = nullptr;
    unsigned int _scale;                             ///< samples along a side of a pixel
    unsigned int _stripRows;                         ///< pixels
    ovMemory::UniquePtr<ovGraphics::Texture> _color; ///< the samples of a strip
    ovMemory::UniquePtr<ovGraphics::Texture> _depth;
    ovMemory::UniquePtr<SceneEffects> _effects;           ///< null without any
    ovMemory::UniquePtr<ovGraphics::Texture> _notFinite;  ///< components that are none, a texel for a block
    ovMemory::UniquePtr<ovGraphics::Texture> _pixelDepth; ///< of the whole picture
    ovMemory::UniquePtr<PictureShader> _average;
    ovMemory::UniquePtr<PictureShader> _pickDepth;
    ovMemory::UniquePtr<PictureShader> _count;
    // The whole picture, moved up until its strip lies in the target.
    ovMemory::UniquePtr<ovGraphics::Viewport> _sampleViewport;
    // The strip in the whole picture.
    ovMemory::UniquePtr<ovGraphics::Viewport> _averageViewport;
    ovMemory::UniquePtr<ovGraphics::Viewport> _countViewport;
    ovMemory::Buffer<ovGraphics::PassTiming> _timings;
    std::function<void(double share)> _progress = [](double) {};
    ovMemory::UniquePtr<ovGraphics::Texture> _shadowMap;
    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
    ovMemory::UniquePtr<ovGraphics::Camera> _shadowCamera;
    SurfaceShaders _shadowSurfaces;
    ovMemory::UniquePtr<SceneGeometry> _geometry; ///< null where no effect reads it
    ovMemory::UniquePtr<ShadowGround> _ground;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _groundQueue;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _solid;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> _blended;
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovGraphics::RenderContext> _context;
};

} // namespace veldris

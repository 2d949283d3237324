// Shaders of surfaces for passes that draw no colours.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/scene/DepthShader.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace veldris {

/// Makes one pass draw the entities of a queue as their materials have holes.
class SurfaceShaders {
public:
    /// @param variant of the entities, which the pass draws @param drawsGeometry see DepthShaderSettings
    SurfaceShaders(ovGraphics::System& graphics, unsigned int variant, bool drawsGeometry)
        : _graphics(graphics)
        , _variant(variant)
        , _drawsGeometry(drawsGeometry) {}

    /// Gives the entities of a loaded material their shader; one that is a hole as a whole gets none.
    /// @param cutoff the alpha up to which a masked or blended surface is a hole
    /// @return false after one log line when the program cannot be loaded
    bool add(ovGraphics::RenderQueue& queue, const ovVeldris::PbsMaterial& material,
             ovGraphics::GLTF_ALPHA_MODE alphaMode, float cutoff);

private:
    ovGraphics::DepthShader* _makeWithHoles(const ovVeldris::PbsMaterial& material, float cutoff);
    ovGraphics::DepthShader* _getSolid();

    ovGraphics::System& _graphics;
    unsigned int _variant;
    bool _drawsGeometry;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::DepthShader>> _withHoles;
    ovMemory::UniquePtr<ovGraphics::DepthShader> _solid;
};

} // namespace veldris

// The positions and normals of a scene, for effects that read them.
#pragma once

#include <ovGraphics/compositor/Compositor.h>
#include <veldris/scene/SurfaceShaders.h>

namespace veldris {

/// Two textures of what a camera sees of a queue, in the space of the view, and the pass that draws them.
class SceneGeometry {
public:
    /// @param variant of the entities that the pass draws
    /// @return null after one log line when the device cannot hold the size
    static ovMemory::UniquePtr<SceneGeometry> create(ovGraphics::System& graphics, unsigned int width,
                                                     unsigned int height, bool withNormals,
                                                     unsigned int variant);

    /// Adds the pass. Everything is borrowed. @param depth is cleared and drawn to
    void appendPass(ovGraphics::CompositorNode& node, ovGraphics::Texture& depth,
                    ovGraphics::RenderQueue& queue, ovGraphics::Camera& camera);
    /// Makes the pass draw the entities of a loaded material. @return false after one log line
    bool add(ovGraphics::RenderQueue& queue, const ovVeldris::PbsMaterial& material,
             ovGraphics::GLTF_ALPHA_MODE alphaMode);

    /// z = 0 where nothing is.
    ovGraphics::Texture* getPositions() const { return _positions.get(); }
    /// Null without normals.
    ovGraphics::Texture* getNormals() const { return _normals.get(); }

private:
    SceneGeometry(ovGraphics::System& graphics, unsigned int variant);

    unsigned int _variant;
    SurfaceShaders _surfaces;
    ovMemory::UniquePtr<ovGraphics::Texture> _positions;
    ovMemory::UniquePtr<ovGraphics::Texture> _normals;
};

} // namespace veldris

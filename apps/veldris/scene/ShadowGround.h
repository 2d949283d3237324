// A ground of which only the shadow is seen.
#pragma once

#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>

namespace ovGraphics {
class RenderQueue;
}

namespace veldris {

/// A level rectangle below a model that darkens what is behind it where the light does not reach it: black,
/// with the shadow's strength as alpha. It is seen from above only.
class ShadowGround {
public:
    /// @param shadowMap depth as seen by the light's camera. Both are borrowed
    /// @return null after one log line when the program cannot be loaded
    static ovMemory::UniquePtr<ShadowGround>
    create(ovGraphics::System& graphics, ovGraphics::Texture& shadowMap, ovGraphics::Camera& lightCamera);
    ~ShadowGround();

    /// Adds the ground to a queue, whose pass blends by source alpha.
    void addTo(ovGraphics::RenderQueue& queue);

    /// Lays the ground below a box, large enough for the shadow of the box, or for the part of it that is
    /// less than six radii of the box away. Under a light that does not shine downwards there is no shadow.
    /// @param direction where the light shines to, unit length
    /// @return how far along the light, from the centre of the box, the ground reaches; metres
    float place(const ovGraphics::BoundingBox& box, const ovMaths::Vector& direction);

private:
    explicit ShadowGround(ovGraphics::System& graphics);
    bool _load(ovGraphics::Texture& shadowMap, ovGraphics::Camera& lightCamera);

    ovMemory::UniquePtr<ovGraphics::Program> _program;
    ovMemory::UniquePtr<ovGraphics::Sampler> _sampler;
    ovMemory::UniquePtr<ovGraphics::Shader> _shader;
    ovMemory::UniquePtr<ovGraphics::Mesh> _mesh;
    ovMemory::UniquePtr<ovGraphics::Node> _node;
};

} // namespace veldris

// Objects of one picture of the demo.
#pragma once

#include <functional>
#include <ovGraphics/resources/Texture.h>
#include <veldris/effects/EffectPlan.h>
#include <veldris/scene/SceneCamera.h>
#include <veldris/scene/ScenePicture.h>

namespace ovGraphics {
class Mesh;
class Node;
} // namespace ovGraphics

namespace veldris {

/// One picture, scene-linear.
struct MaterialPicture {
    ovMemory::StringView name;                        ///< of its file, without extension
    ovMemory::StringView caption;                     ///< what is to be seen
    ovMemory::UniquePtr<ovGraphics::Texture> texture; ///< of four floats
    /// Those that drew it; none of a picture that was put together.
    ovMemory::Buffer<ovGraphics::PassTiming> passes = {};
    ovMemory::StringView effects = DEFAULT_TONE_MAPPING; ///< those that show it
};

/// Where a copy of an object stands.
struct Placement {
    ovMaths::Vector position;
    ovMaths::Vector half{1.0f, 1.0f, 1.0f}; ///< half its size
    float turn = 0.0f;                      ///< about +y, radians
    float lean = 0.0f;                      ///< then about +x, radians
};

/// Receives a picture and may take its texture. @return false, with one line in error, to draw no more
using TakePicture = std::function<bool(MaterialPicture&, ovMemory::String& error)>;

/// Objects in a scene, each with a material of its own. Meshes and the scene are borrowed.
class DemoSet {
public:
    using Configure = std::function<void(ovVeldris::PbsMaterial&)>;

    DemoSet(Session& session, ScenePicture& scene);
    ~DemoSet();

    ovGraphics::System& getGraphics() { return _graphics; }

    /// Adds an object that is to be seen whole, with its shadow. @param mesh of radius 1 around the origin
    void addSphere(ovGraphics::Mesh& mesh, const ovMaths::Vector& position, float radius,
                   const Configure& configure);
    /// The same of any shape. @param mesh within a cube of side 2 around the origin @param half its size
    void addShape(ovGraphics::Mesh& mesh, const ovMaths::Vector& position, const ovMaths::Vector& half,
                  const Configure& configure);
    /// Adds an object that the picture need not show whole.
    void addGround(ovGraphics::Mesh& mesh, float height, float halfSide, const Configure& configure);
    /// Adds copies of an object with one material, which the picture need not show whole either.
    void addCopies(ovGraphics::Mesh& mesh, ovMemory::BufferView<const Placement> placements,
                   const Configure& configure);
    /// A texture that lives as long as the set.
    ovGraphics::Texture* keep(ovMemory::UniquePtr<ovGraphics::Texture> texture);

    /// Points camera and light at the spheres and draws. @return false with one line in error
    bool draw(const CameraChoice& camera, MaterialPicture& picture, ovMemory::String& error);
    /// Draws with camera and light as they are. @return false with one line in error
    bool drawAsPlaced(MaterialPicture& picture, ovMemory::String& error);

private:
    Session& _session;
    ovGraphics::System& _graphics;
    ScenePicture& _scene;
    ovGraphics::BoundingBox _box;
    bool _loaded = true;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Texture>> _textures;
    ovMemory::Buffer<ovMemory::UniquePtr<ovGraphics::Node>> _nodes;
    ovMemory::Buffer<ovMemory::UniquePtr<ovVeldris::PbsMaterial>> _materials;
};

/// The milliseconds of passes together.
double sumOf(const ovMemory::Buffer<ovGraphics::PassTiming>& timings);

} // namespace veldris

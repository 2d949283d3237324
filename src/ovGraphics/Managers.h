// The managers of a graphics system, one per kind of resource.
#pragma once

#include <ovGraphics/NamedResources.h>
#include <ovMemory/Borrowed.h>

namespace ovGraphics {

class Camera;
class Compositor;
class Mesh;
class Node;
class Program;
class RenderContext;
class RenderQueue;
class Sampler;
class Shader;
class Texture;
class Viewport;
struct RenderContextDescriptor;

// Each getInstance() is the manager of the System singleton, which is created (not initialised) when missing.

class OV_API TextureManager : public NamedResources<Texture> {
public:
    using NamedResources::NamedResources;
    static TextureManager* getInstance();
};

class OV_API SamplerManager : public NamedResources<Sampler> {
public:
    using NamedResources::NamedResources;
    static SamplerManager* getInstance();
};

class OV_API ProgramManager : public NamedResources<Program> {
public:
    using NamedResources::NamedResources;
    static ProgramManager* getInstance();
};

class OV_API ShaderManager : public NamedResources<Shader> {
public:
    using NamedResources::NamedResources;
    static ShaderManager* getInstance();
};

class OV_API MeshManager : public NamedResources<Mesh> {
public:
    using NamedResources::NamedResources;
    static MeshManager* getInstance();
};

class OV_API NodeManager : public NamedResources<Node> {
public:
    using NamedResources::NamedResources;
    static NodeManager* getInstance();
};

class OV_API RenderQueueManager : public NamedResources<RenderQueue> {
public:
    using NamedResources::NamedResources;
    static RenderQueueManager* getInstance();
};

class OV_API CameraManager : public NamedResources<Camera> {
public:
    using NamedResources::NamedResources;
    static CameraManager* getInstance();

    /// The camera that a pass without one of its own renders with; null when none was set.
    Camera* getActiveRenderCamera() const;
    void setActiveRenderCamera(Camera* camera);

private:
    ovMemory::Borrowed<Camera> _activeRenderCamera;
};

class OV_API ViewportManager : public NamedResources<Viewport> {
public:
    using NamedResources::NamedResources;
    static ViewportManager* getInstance();

    /// The viewport of the operations block that was drawn last; null when it had none.
    Viewport* getActiveViewport() const;
    void setActiveViewport(Viewport* viewport);

private:
    ovMemory::Borrowed<Viewport> _activeViewport;
};

class OV_API CompositorManager : public NamedResources<Compositor> {
public:
    using NamedResources::NamedResources;
    static CompositorManager* getInstance();
};

class OV_API RenderContextManager : public NamedResources<RenderContext> {
public:
    using NamedResources::NamedResources;
    static RenderContextManager* getInstance();

    using NamedResources::createOrRetrieve;
    /// The context of that name, created when missing, set up to draw into what the descriptor names.
    RenderContext* createOrRetrieve(ovMemory::StringView name, const RenderContextDescriptor& descriptor);

    /// The context that the last frame() drew; null before.
    RenderContext* getActiveRenderContext() const;
    void setActiveRenderContext(RenderContext* context);

private:
    ovMemory::Borrowed<RenderContext> _activeRenderContext;
};

} // namespace ovGraphics

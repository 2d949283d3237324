// The managers of a graphics system, one per kind of resource.
#pragma once

#include <ovGraphics/ResourceManager.h>
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

class OV_API TextureManager : public ResourceManager<Texture> {
public:
    using ResourceManager::ResourceManager;
    static TextureManager* getInstance();
};

class OV_API SamplerManager : public ResourceManager<Sampler> {
public:
    using ResourceManager::ResourceManager;
    static SamplerManager* getInstance();
};

class OV_API ProgramManager : public ResourceManager<Program> {
public:
    using ResourceManager::ResourceManager;
    static ProgramManager* getInstance();
};

class OV_API ShaderManager : public ResourceManager<Shader> {
public:
    using ResourceManager::ResourceManager;
    static ShaderManager* getInstance();
};

class OV_API MeshManager : public ResourceManager<Mesh> {
public:
    using ResourceManager::ResourceManager;
    static MeshManager* getInstance();
};

class OV_API NodeManager : public ResourceManager<Node> {
public:
    using ResourceManager::ResourceManager;
    static NodeManager* getInstance();
};

class OV_API RenderQueueManager : public ResourceManager<RenderQueue> {
public:
    using ResourceManager::ResourceManager;
    static RenderQueueManager* getInstance();
};

class OV_API CameraManager : public ResourceManager<Camera> {
public:
    using ResourceManager::ResourceManager;
    static CameraManager* getInstance();

    /// The camera that a pass without one of its own renders with; null when none was set.
    Camera* getActiveRenderCamera() const;
    void setActiveRenderCamera(Camera* camera);

private:
    ovMemory::Borrowed<Camera> _activeRenderCamera;
};

class OV_API ViewportManager : public ResourceManager<Viewport> {
public:
    using ResourceManager::ResourceManager;
    static ViewportManager* getInstance();

    /// The viewport of the operations block that was drawn last; null when it had none.
    Viewport* getActiveViewport() const;
    void setActiveViewport(Viewport* viewport);

private:
    ovMemory::Borrowed<Viewport> _activeViewport;
};

class OV_API CompositorManager : public ResourceManager<Compositor> {
public:
    using ResourceManager::ResourceManager;
    static CompositorManager* getInstance();
};

class OV_API RenderContextManager : public ResourceManager<RenderContext> {
public:
    using ResourceManager::ResourceManager;
    static RenderContextManager* getInstance();

    using ResourceManager::createOrRetrieve;
    /// The context of that name, created when missing, set up to draw into what the descriptor names.
    RenderContext* createOrRetrieve(ovMemory::StringView name, const RenderContextDescriptor& descriptor);

    /// The context that the last frame() drew; null before.
    RenderContext* getActiveRenderContext() const;
    void setActiveRenderContext(RenderContext* context);

private:
    ovMemory::Borrowed<RenderContext> _activeRenderContext;
};

} // namespace ovGraphics

// Render contexts: a compositor and where it draws.
#pragma once

#include <ovGraphics/resources/Resource.h>

namespace ovGraphics {

class Camera;
class Compositor;
class Texture;

/// What a context draws into: a render-target texture, or the system's window.
struct RenderContextDescriptor {
    Texture* texture = nullptr; ///< borrowed
    bool window = false;        ///< the system's window; its back buffer follows the window's size
};

/// Draws a compositor into a target when System::frame() is called with it.
class OV_API RenderContext : public Resource {
public:
    /// A new context without target; a null system means the singleton.
    static ovMemory::UniquePtr<RenderContext> create(System* system);
    explicit RenderContext(System* system);
    ~RenderContext() override;

    void setDescriptor(const RenderContextDescriptor& descriptor);
    bool drawsInWindow() const { return _window; }

    void setCompositor(Compositor* compositor);
    Compositor* getCompositor() const;

    /// The camera that passes and slots without one of their own mean. Null (the default): the camera
    /// manager's active render camera.
    void setCamera(Camera* camera);
    Camera* getCamera() const;

    /// The texture that blocks without targets draw into; null when the descriptor named none.
    Texture* getBackBuffer() const;

    /// Makes the window's back buffer as large as the window. It encodes what is drawn into it as sRGB.
    /// @return false after one log line when the system has no window or the buffer cannot be loaded; false
    /// without one while the window is minimised
    bool followWindowSize();

    void reset() override;

private:
    bool _window = false;
    ovMemory::Borrowed<Texture> _texture;
    ovMemory::UniquePtr<Texture> _windowBuffer;
    ovMemory::Borrowed<Compositor> _compositor;
    ovMemory::Borrowed<Camera> _camera;
};

} // namespace ovGraphics

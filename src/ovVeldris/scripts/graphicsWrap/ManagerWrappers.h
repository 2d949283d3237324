// The managers of the graphics system in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds "ovGraphics.CameraManager".
class CameraManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.CompositorManager".
class CompositorManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.NodeManager".
class NodeManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.MeshManager".
class MeshManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.ProgramManager".
class ProgramManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.RenderContextManager".
class RenderContextManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.RenderQueueManager".
class RenderQueueManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.ShaderManager".
class ShaderManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.TextureManager".
class TextureManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.ViewportManager".
class ViewportManagerWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovGraphicsWrap

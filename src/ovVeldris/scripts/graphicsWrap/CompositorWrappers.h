// What a frame draws, in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds "ovGraphics.Compositor".
class CompositorWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.CompositorNode".
class CompositorNodeWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.RenderContext".
class RenderContextWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovGraphicsWrap

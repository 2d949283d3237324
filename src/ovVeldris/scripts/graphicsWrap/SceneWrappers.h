// Places and what stands there, in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds "ovGraphics.Entity", which has no operations of its own.
class EntityWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.Node".
class NodeWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.RenderQueue".
class RenderQueueWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovGraphicsWrap

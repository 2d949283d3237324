// Vertices and indices in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds "ovGraphics.Mesh".
class MeshWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.VertexComponent".
class VertexComponentWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.VertexComponentArray".
class VertexComponentArrayWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.VertexComposition".
class VertexCompositionWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovGraphicsWrap

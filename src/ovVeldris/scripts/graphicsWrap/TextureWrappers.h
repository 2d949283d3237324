// Textures in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds "ovGraphics.Texture".
class TextureWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.TextureSaver".
class TextureSaverWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

/// Binds "ovGraphics.TextureUtils".
class TextureUtilsWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovGraphicsWrap

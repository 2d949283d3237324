// Reading glTF files in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovGraphicsWrap {

/// Binds "ovGraphics.GltfEncoder" and what "decode" gives: "ovGraphics.GltfDecodeResult".
class GltfEncoderWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovGraphicsWrap

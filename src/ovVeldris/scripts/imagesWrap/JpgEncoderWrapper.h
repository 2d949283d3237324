// JPEG in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovImagesWrap {

/// Binds ovImages::JpgEncoder, as static functions.
class JpgEncoderWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovImagesWrap

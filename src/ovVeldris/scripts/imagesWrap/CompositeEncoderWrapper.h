// Decoding of every format in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovImagesWrap {

/// Binds ovImages::CompositeEncoder, as static functions.
class CompositeEncoderWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovImagesWrap

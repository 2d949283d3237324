// Pictures in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovImagesWrap {

/// Binds ovImages::Image. Decoders make them; scripts own what they get.
class ImageWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovImagesWrap

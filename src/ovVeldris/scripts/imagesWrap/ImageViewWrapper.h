// Views of pictures in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovImagesWrap {

/// Binds ovImages::ImageView, which keeps its picture alive.
class ImageViewWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovImagesWrap

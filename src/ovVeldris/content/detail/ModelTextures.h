// The textures of a model.
#pragma once

#include <map>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovImages/Image.h>
#include <ovVeldris/content/detail/LoadSteps.h>
#include <set>

namespace ovGraphics {
class Sampler;
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris::detail {

/// Makes textures of a file's pictures when materials ask for them, each once. Their texels are on the device
/// alone.
class OV_API ModelTextures {
public:
    struct Made {
        ovGraphics::Texture* texture;
        ovGraphics::Sampler* sampler;
    };

    /// @param warnings gets a line for each picture that cannot be used
    ModelTextures(ovGraphics::System& graphics, const ovGraphics::GltfScene& scene,
                  ovMemory::Buffer<ovMemory::String>& warnings, const ModelLoadProgress& progress = {});

    /// A texture of the file as a shader reads it; null for -1. A missing picture gives the stand-in.
    ovGraphics::Texture* get(int texture, ovImages::COLOR_ENCODING encoding);

    /// The picture behind a texture; one white pixel for -1 and for a missing picture. It is decoded once,
    /// and kept until forgetPictures().
    ovImages::ImageView read(int texture, ovImages::COLOR_ENCODING encoding);

    /// Frees what read() decoded, and ends its views. Several large pictures at a time would cost gigabytes.
    void forgetPictures() { _pictures.clear(); }

    /// A texture of a picture that was computed. @param like gives the sampler: a texture of the file or -1
    ovGraphics::Texture* add(ovMemory::StringView name, ovImages::Image image, int like);

    /// What is being done, for those who make textures of others.
    LoadSteps& getSteps() { return _steps; }

    /// Everything made so far.
    const ovMemory::Buffer<Made>& getMade() const { return _made; }

private:
    ovImages::Image _decode(int texture, ovImages::COLOR_ENCODING encoding);
    ovGraphics::Sampler* _makeSampler(ovMemory::StringView name, int like);
    ovMemory::String _freeName(ovMemory::StringView wanted) const;

    ovGraphics::System& _graphics;
    const ovGraphics::GltfScene& _scene;
    ovMemory::Buffer<ovMemory::String>& _warnings;
    LoadSteps _steps;
    std::map<std::pair<int, ovImages::COLOR_ENCODING>, ovGraphics::Texture*> _ofFile;
    std::map<int, ovImages::Image> _pictures; ///< by texture
    std::set<int> _decoded;                   ///< images that were tried: each counts, and is warned of, once
    ovMemory::Buffer<Made> _made;
};

} // namespace ovVeldris::detail

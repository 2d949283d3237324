// The textures of a model.
#pragma once

#include <functional>
#include <map>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovImages/Image.h>
#include <ovMaths/Vector.h>

namespace ovGraphics {
class Sampler;
class System;
class Texture;
} // namespace ovGraphics

namespace ovVeldris::detail {

/// A picture as four linear floats a pixel.
class OV_API LinearPicture {
public:
    /// One pixel of a colour.
    explicit LinearPicture(const ovMaths::Vector& color);
    explicit LinearPicture(ovImages::Image image);

    unsigned int getWidth() const { return _image.getWidth(); }
    unsigned int getHeight() const { return _image.getHeight(); }
    /// The picture stretched over width x height pixels, read at the middle of one of them, bilinearly.
    ovMaths::Vector read(unsigned int x, unsigned int y, unsigned int width, unsigned int height) const;

private:
    ovMaths::Vector _pixel(unsigned int x, unsigned int y) const;

    ovImages::Image _image;
};

/// Makes textures of a file's pictures when materials ask for them, each once.
class OV_API ModelTextures {
public:
    struct Made {
        ovGraphics::Texture* texture;
        ovGraphics::Sampler* sampler;
    };

    /// @param warnings gets a line for each picture that cannot be used
    ModelTextures(ovGraphics::System& graphics, const ovGraphics::GltfScene& scene,
                  ovMemory::Buffer<ovMemory::String>& warnings);

    /// A texture of the file as a shader reads it; null for -1. A missing picture gives the stand-in.
    ovGraphics::Texture* get(int texture, ovImages::COLOR_ENCODING encoding);

    /// The picture behind a texture; one white pixel for -1 and for a missing picture.
    LinearPicture read(int texture, ovImages::COLOR_ENCODING encoding);

    /// A texture of 8 bits a component whose pixels a function computes from the place in it.
    /// @param like gives the sampler: a texture of the file or -1
    ovGraphics::Texture* compute(ovMemory::StringView name, unsigned int width, unsigned int height,
                                 ovImages::COLOR_ENCODING encoding, int like,
                                 const std::function<ovMaths::Vector(unsigned int x, unsigned int y)>& pixel);

    /// Everything made so far.
    const ovMemory::Buffer<Made>& getMade() const { return _made; }

private:
    ovImages::Image _decode(int texture, ovImages::COLOR_ENCODING encoding);
    ovGraphics::Texture* _add(ovMemory::StringView name, const ovImages::Image& image, int like);
    ovGraphics::Sampler* _makeSampler(ovMemory::StringView name, int like);
    ovMemory::String _freeName(ovMemory::StringView wanted) const;

    ovGraphics::System& _graphics;
    const ovGraphics::GltfScene& _scene;
    ovMemory::Buffer<ovMemory::String>& _warnings;
    std::map<std::pair<int, ovImages::COLOR_ENCODING>, ovGraphics::Texture*> _ofFile;
    std::map<int, bool> _reported; ///< images that a warning was written for
    ovMemory::Buffer<Made> _made;
};

} // namespace ovVeldris::detail

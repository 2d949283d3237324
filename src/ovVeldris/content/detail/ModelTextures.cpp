#include <ovVeldris/content/detail/ModelTextures.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/content/StandInPicture.h>
#include <utility>

namespace ovVeldris::detail {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovMaths::Vector;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr unsigned int FULL_CHAIN = 0;

Vector mix(const Vector& a, const Vector& b, float weight) {
    return a * (1.0f - weight) + b * weight;
}

/// The two pixels around a place on an axis, and the weight of the second.
struct Neighbours {
    unsigned int first;
    unsigned int second;
    float weight;
};

// Middles of pixels, as devices read textures: a computed texture then fits the ones it is used beside.
Neighbours neighboursOf(unsigned int at, unsigned int count, unsigned int size) {
    const float place =
        (static_cast<float>(at) + 0.5f) * static_cast<float>(size) / static_cast<float>(count) - 0.5f;
    const float clamped = std::clamp(place, 0.0f, static_cast<float>(size - 1));
    const auto first = static_cast<unsigned int>(clamped);
    return {first, std::min(first + 1, size - 1), clamped - static_cast<float>(first)};
}

} // namespace

LinearPicture::LinearPicture(const Vector& color)
    : _image(1, 1, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR) {
    const float components[] = {color.x, color.y, color.z, color.w};
    for (unsigned int channel = 0; channel < 4; ++channel)
        _image.setComponent(0, 0, channel, components[channel]);
}

LinearPicture::LinearPicture(Image image)
    : _image(convertImage(image.view(), COMPONENT_TYPE::FLOAT, 4, COLOR_ENCODING::LINEAR)) {}

Vector LinearPicture::_pixel(unsigned int x, unsigned int y) const {
    float components[4];
    const std::size_t at = (std::size_t{y} * getWidth() + x) * sizeof(components);
    std::memcpy(components, _image.getBytes().data() + at, sizeof(components));
    return {components[0], components[1], components[2], components[3]};
}

Vector LinearPicture::read(unsigned int x, unsigned int y, unsigned int width, unsigned int height) const {
    const Neighbours across = neighboursOf(x, width, getWidth());
    const Neighbours down = neighboursOf(y, height, getHeight());
    const auto row = [&](unsigned int line) {
        return mix(_pixel(across.first, line), _pixel(across.second, line), across.weight);
    };
    return mix(row(down.first), row(down.second), down.weight);
}

ModelTextures::ModelTextures(ovGraphics::System& graphics, const ovGraphics::GltfScene& scene,
                             ovMemory::Buffer<String>& warnings)
    : _graphics(graphics)
    , _scene(scene)
    , _warnings(warnings) {}

ovGraphics::Texture* ModelTextures::get(int texture, COLOR_ENCODING encoding) {
    if (texture < 0)
        return nullptr;
    // By encoding too: a texture that one material reads as colour and another as data becomes two.
    ovGraphics::Texture*& made = _ofFile[{texture, encoding}];
    if (made)
        return made;
    const ovGraphics::GltfTexture& described = _scene.textures[static_cast<std::size_t>(texture)];
    Image image = _decode(texture, encoding);
    if (image.isEmpty())
        image = makeStandInPicture(encoding);
    made = _add(described.name, image, texture);
    return made;
}

LinearPicture ModelTextures::read(int texture, COLOR_ENCODING encoding) {
    Image image = _decode(texture, encoding);
    return image.isEmpty() ? LinearPicture(Vector(1.0f, 1.0f, 1.0f, 1.0f)) : LinearPicture(std::move(image));
}

ovGraphics::Texture*
ModelTextures::compute(StringView name, unsigned int width, unsigned int height, COLOR_ENCODING encoding,
                       int like, const std::function<Vector(unsigned int x, unsigned int y)>& pixel) {
    // Floats in between, and rounded once at the end.
    Image image(width, height, 4, COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            const Vector value = pixel(x, y);
            image.setComponent(x, y, 0, value.x);
            image.setComponent(x, y, 1, value.y);
            image.setComponent(x, y, 2, value.z);
            image.setComponent(x, y, 3, value.w);
        }
    }
    return _add(name, convertImage(image.view(), COMPONENT_TYPE::UINT8, 4, encoding), like);
}

// The picture of a texture; empty, with one warning for each image, when it is missing.
Image ModelTextures::_decode(int texture, COLOR_ENCODING encoding) {
    if (texture < 0)
        return {};
    const int index = _scene.textures[static_cast<std::size_t>(texture)].image;
    if (index < 0)
        return {};
    const ovGraphics::GltfImage& source = _scene.images[static_cast<std::size_t>(index)];
    if (source.isMissing()) // the reader has warned
        return {};
    ovImages::DecodeResult decoded = source.decode(encoding);
    if (decoded)
        return std::move(*decoded.image);
    // Several textures may share a damaged image; one warning is enough.
    if (!std::exchange(_reported[index], true))
        _warnings.push_back(decoded.error + " It is drawn as a chequerboard of magenta and black.");
    return {};
}

ovGraphics::Texture* ModelTextures::_add(StringView name, const Image& image, int like) {
    // Grey pictures become colours, for shaders read the channels that the material names.
    const Image colors = image.getChannels() == 4
                             ? image
                             : convertImage(image.view(), image.getComponentType(), 4, image.getEncoding());
    ovGraphics::Texture* texture = _graphics.getTextureManager()->createOrRetrieve(_freeName(name));
    const bool mipmapped = like < 0 || _scene.textures[static_cast<std::size_t>(like)].mipmapped;
    texture->setFromImage(colors.view());
    texture->setMipCount(mipmapped ? FULL_CHAIN : 1);
    texture->setMightManuallyGenerateMip(mipmapped);
    if (!texture->load())
        _warnings.push_back("The texture '" + String(name) + "' could not be loaded and reads as black.");
    else if (mipmapped)
        texture->generateMips();
    _made.push_back({texture, _makeSampler(texture->getName(), like)});
    return texture;
}

ovGraphics::Sampler* ModelTextures::_makeSampler(StringView name, int like) {
    const ovGraphics::GltfTexture described =
        like < 0 ? ovGraphics::GltfTexture() : _scene.textures[static_cast<std::size_t>(like)];
    ovGraphics::Sampler* sampler = _graphics.getSamplerManager()->createOrRetrieve(name);
    sampler->setFilter(described.filter);
    sampler->setAddressU(described.addressU);
    sampler->setAddressV(described.addressV);
    sampler->load();
    return sampler;
}

// Another model may have textures of the same names.
String ModelTextures::_freeName(StringView wanted) const {
    String name(wanted);
    for (unsigned int number = 2; _graphics.getTextureManager()->get(name); ++number)
        name = String(wanted) + " (" + std::to_string(number) + ")";
    return name;
}

} // namespace ovVeldris::detail

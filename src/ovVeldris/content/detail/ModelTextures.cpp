#include <ovVeldris/content/detail/ModelTextures.h>

#include <algorithm>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/content/StandInPicture.h>

namespace ovVeldris::detail {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr unsigned int FULL_CHAIN = 0;

Image makeWhitePixel() {
    Image white(1, 1, 4, COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
    std::ranges::fill(white.getBytes(), static_cast<unsigned char>(255));
    return white;
}

} // namespace

ModelTextures::ModelTextures(ovGraphics::System& graphics, const ovGraphics::GltfScene& scene,
                             ovMemory::Buffer<String>& warnings, const ModelLoadProgress& progress)
    : _graphics(graphics)
    , _scene(scene)
    , _warnings(warnings)
    , _steps(progress, scene) {}

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
    made = add(described.name, std::move(image), texture);
    return made;
}

ovImages::ImageView ModelTextures::read(int texture, COLOR_ENCODING encoding) {
    Image& picture = _pictures[texture];
    if (picture.isEmpty())
        picture = _decode(texture, encoding);
    if (picture.isEmpty())
        picture = makeWhitePixel();
    ovImages::ImageView view = picture.view();
    view.encoding = encoding;
    return view;
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
    const LoadSteps::Scope step(_steps, MODEL_LOAD_STEP::DECODING);
    ovImages::DecodeResult decoded = source.decode(encoding);
    const bool isFirst = _decoded.insert(index).second;
    if (isFirst)
        _steps.addDecoded(source.bytes.size());
    if (decoded)
        return std::move(*decoded.image);
    // Several textures may share a damaged image; one warning is enough.
    if (isFirst)
        _warnings.push_back(decoded.error + " It is drawn as a chequerboard of magenta and black.");
    return {};
}

ovGraphics::Texture* ModelTextures::add(StringView name, Image image, int like) {
    // Grey pictures become colours, for shaders read the channels that the material names.
    if (image.getChannels() != 4) {
        const LoadSteps::Scope step(_steps, MODEL_LOAD_STEP::CONVERSION);
        image = convertImage(image.view(), image.getComponentType(), 4, image.getEncoding());
    }
    const LoadSteps::Scope step(_steps, MODEL_LOAD_STEP::UPLOADING);
    ovGraphics::Texture* texture = _graphics.getTextureManager()->createOrRetrieve(_freeName(name));
    const bool mipmapped = like < 0 || _scene.textures[static_cast<std::size_t>(like)].mipmapped;
    texture->takeImage(std::move(image));
    texture->setMipCount(mipmapped ? FULL_CHAIN : 1);
    texture->setMightManuallyGenerateMip(mipmapped);
    if (texture->load())
        texture->dropCpuCopies();
    else
        _warnings.push_back("The texture '" + String(name) + "' could not be loaded and reads as black.");
    texture->setSampler(_makeSampler(texture->getName(), like));
    _made.push_back({texture, texture->getSampler()});
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

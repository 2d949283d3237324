#include <ovVeldris/content/detail/ModelMaterials.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <ovImages/Conversion.h>
#include <ovVeldris/content/detail/MetalConversion.h>
#include <ovVeldris/content/detail/ModelTextures.h>
#include <ovVeldris/content/detail/PictureRows.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace ovVeldris::detail {

using ovGraphics::GltfMaterial;
using ovImages::COLOR_ENCODING;
using ovImages::Image;
using ovImages::ImageView;
using ovMaths::Vector;
using ovMemory::String;

namespace {

/// A light is a point to the material: of a mirror its reflection would be seen nowhere.
constexpr float LOWEST_ROUGHNESS = 0.045f;

constexpr unsigned int METALNESS_CHANNEL = 2; ///< blue

const Vector WHITE(1.0f, 1.0f, 1.0f);

Vector colorOf(const Vector& vector) {
    return {vector.x, vector.y, vector.z};
}

/// A formula of one channel over a whole colour.
template <typename Formula>
Vector ofColor(Formula formula, const Vector& base, float metalness) {
    return {formula(base.x, metalness), formula(base.y, metalness), formula(base.z, metalness)};
}

/// A picture of one pixel that tells a metalness all over.
Image metalnessPixel(float metalness) {
    Image pixel(1, 1, 4, ovImages::COMPONENT_TYPE::FLOAT, COLOR_ENCODING::LINEAR);
    pixel.setComponent(0, 0, 2, metalness);
    return pixel;
}

/// Whether a component is the same in all pixels, by its bytes.
bool isUniform(const ImageView& picture, unsigned int channel) {
    const std::size_t size = ovImages::getComponentSize(picture.componentType);
    const std::size_t pixel = size * picture.channels;
    const unsigned char* first = picture.bytes.data() + channel * size;
    for (std::size_t at = channel * size; at < picture.bytes.size(); at += pixel)
        if (!std::equal(first, first + size, picture.bytes.data() + at))
            return false;
    return true;
}

float firstMetalness(ImageView surface) {
    surface.bytes = surface.bytes.first(surface.bytes.size() / surface.height / surface.width);
    surface.width = surface.height = 1;
    return convertImage(surface, ovImages::COMPONENT_TYPE::FLOAT, 4, COLOR_ENCODING::LINEAR)
        .getComponent(0, 0, METALNESS_CHANNEL);
}

/// Sets a material up from one of a file.
class MaterialBuilder {
public:
    MaterialBuilder(const GltfMaterial& source, ModelTextures& textures, PbsMaterial& material)
        : _source(source)
        , _textures(textures)
        , _material(material) {}

    void build() {
        // The meshes of models have binormals with the file's handedness. Computing them would turn mirrored
        // parts over.
        _material.setReconstructBinormals(false);
        _material.setMetalness(1.0f); // reflectance is given as such
        if (_source.workflow == ovGraphics::GLTF_WORKFLOW::SPECULAR_GLOSSINESS)
            _buildGlossiness();
        else
            _buildMetalness();
        _buildEmission();
        _buildAlpha();
        _buildRelief();
        _textures.forgetPictures();
    }

private:
    ovGraphics::Texture* _color(int texture) { return _textures.get(texture, COLOR_ENCODING::SRGB); }
    ovGraphics::Texture* _data(int texture) { return _textures.get(texture, COLOR_ENCODING::LINEAR); }

    void _setAlbedo(ovGraphics::Texture* texture, const Vector& factor) {
        _material.setAlbedoTexture(texture, THREE_CHANNEL_PACK::RGB);
        _material.setAlbedoColor(factor);
        // A factor of white is left out, so that most materials share the program without the product.
        _material.setMixAlbedoColorAndTexture(texture && factor != WHITE);
    }

    void _setSpecular(ovGraphics::Texture* texture, const Vector& factor) {
        _material.setSpecularTexture(texture, THREE_CHANNEL_PACK::RGB);
        _material.setSpecularColor(factor);
        _material.setMixSpecularColorAndTexture(texture && factor != WHITE);
    }

    void _setRoughnessGlossiness(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel, float factor) {
        _material.setRoughnessGlossinessTexture(texture, channel);
        _material.setRoughnessGlossiness(factor);
        _material.setMixRoughnessGlossinessFactorAndTexture(texture && factor != 1.0f);
    }

    void _buildGlossiness() {
        _material.setPbsModel(PBS_MODEL::SPECULAR_GLOSSINESS);
        _setAlbedo(_color(_source.baseColorTexture), colorOf(_source.baseColor));
        ovGraphics::Texture* reflectance = _color(_source.specularGlossinessTexture);
        _setSpecular(reflectance, _source.specular);
        _setRoughnessGlossiness(reflectance, ONE_CHANNEL_PACK::A,
                                reflectance ? _source.glossiness
                                            : std::min(_source.glossiness, 1.0f - LOWEST_ROUGHNESS));
    }

    void _buildMetalness() {
        ovGraphics::Texture* surface = _data(_source.metallicRoughnessTexture);
        _setRoughnessGlossiness(surface, ONE_CHANNEL_PACK::G,
                                surface ? _source.roughness : std::max(_source.roughness, LOWEST_ROUGHNESS));
        if (const std::optional<float> metalness = _uniformMetalness())
            _buildUniform(*metalness);
        else
            _buildVarying();
    }

    /// The metalness when it is the same all over.
    // Most files paint one metalness all over. Then no texture has to be computed, which saves time and two
    // textures in memory.
    std::optional<float> _uniformMetalness() {
        if (_source.metallicRoughnessTexture < 0 || _source.metallic == 0.0f)
            return _source.metallic;
        const ImageView surface = _textures.read(_source.metallicRoughnessTexture, COLOR_ENCODING::LINEAR);
        const unsigned int channel = surface.channels < 3 ? 0 : METALNESS_CHANNEL;
        if (!isUniform(surface, channel))
            return std::nullopt;
        return firstMetalness(surface) * _source.metallic;
    }

    void _buildUniform(float metalness) {
        const bool isMetal = metalness == 1.0f;
        const bool isDielectric = metalness == 0.0f;
        ovGraphics::Texture* base = _color(_source.baseColorTexture);
        // Metals scatter nothing, and reading a texture to multiply it by black would be a waste.
        _setAlbedo(isMetal ? nullptr : base, ofColor(diffuseOf, _source.baseColor, metalness));
        if (!base || isDielectric)
            _setSpecular(nullptr, ofColor(reflectanceOf, _source.baseColor, metalness));
        else if (isMetal)
            _setSpecular(base, colorOf(_source.baseColor));
        else
            _addReflectance(_surfaceOf(metalnessPixel(metalness / _source.metallic).view()));
    }

    void _buildVarying() {
        const MetalSurface surface =
            _surfaceOf(_textures.read(_source.metallicRoughnessTexture, COLOR_ENCODING::LINEAR));
        _setAlbedo(_textures.add(_source.name + " diffuse", _converted(makeDiffuse, surface), _sampled()),
                   WHITE);
        _addReflectance(surface);
    }

    MetalSurface _surfaceOf(const ImageView& metalness) {
        return {_textures.read(_source.baseColorTexture, COLOR_ENCODING::SRGB), metalness, _source.baseColor,
                _source.metallic};
    }

    Image _converted(Image (*convert)(const MetalSurface&), const MetalSurface& surface) {
        const LoadSteps::Scope step(_textures.getSteps(), MODEL_LOAD_STEP::CONVERSION);
        return convert(surface);
    }

    void _addReflectance(const MetalSurface& surface) {
        Image reflectance = _converted(makeReflectance, surface);
        _textures.forgetPictures();
        _setSpecular(_textures.add(_source.name + " reflectance", std::move(reflectance), _sampled()), WHITE);
    }

    /// The texture whose sampler computed ones take.
    int _sampled() const {
        return _source.baseColorTexture >= 0 ? _source.baseColorTexture : _source.metallicRoughnessTexture;
    }

    void _buildEmission() {
        ovGraphics::Texture* texture = _color(_source.emissiveTexture);
        _material.setEmissiveTexture(texture, THREE_CHANNEL_PACK::RGB);
        _material.setEmissiveColor(_source.emissive);
        _material.setMixEmissiveColorAndTexture(texture && _source.emissive != WHITE);
        if (!_source.unlit)
            return;
        // Its own colour, whatever the light: emitted, with nothing left to reflect.
        _material.setEmissiveTexture(_color(_source.baseColorTexture), THREE_CHANNEL_PACK::RGB);
        _material.setEmissiveColor(colorOf(_source.baseColor));
        _material.setMixEmissiveColorAndTexture(_source.baseColorTexture >= 0);
        _setAlbedo(nullptr, Vector());
        _setSpecular(nullptr, Vector());
        _setRoughnessGlossiness(nullptr, ONE_CHANNEL_PACK::R, 1.0f);
    }

    void _buildAlpha() {
        const bool isMasked = _source.alphaMode == ovGraphics::GLTF_ALPHA_MODE::MASK;
        // A cut-off of 0 keeps every alpha that there is.
        if (_source.alphaMode == ovGraphics::GLTF_ALPHA_MODE::OPAQUE ||
            (isMasked && _source.alphaCutoff <= 0.0f))
            return;
        ovGraphics::Texture* texture = _material.getAlbedoTexture();
        // A metal has no albedo texture, but its alpha is still in the file's.
        if (!texture)
            texture = _color(_source.baseColorTexture);
        _material.setAlphaTexture(texture, ONE_CHANNEL_PACK::A);
        _material.setAlpha(_source.baseColor.w);
        _material.setMixAlphaFactorAndTexture(texture && _source.baseColor.w != 1.0f);
        // Files keep what equals the cut-off, the material does not. Above 1 nothing is kept by either.
        if (isMasked)
            _material.setAlphaCutoff(std::min(std::nextafter(_source.alphaCutoff, 0.0f), 1.0f));
    }

    void _buildRelief() {
        _material.setNormalMapTexture(_normals(), THREE_CHANNEL_PACK::RGB);
        _material.setOcclusionTexture(_occlusion(), ONE_CHANNEL_PACK::R);
    }

    ovGraphics::Texture* _normals() {
        if (_source.normalTexture < 0 || _source.normalScale == 1.0f)
            return _data(_source.normalTexture);
        // The material knows no scale of normals, so the scale is worked into a texture of its own.
        return _adjusted(" normals", _source.normalTexture, [this](const Vector& texel) {
            Vector normal = texel * 2.0f - Vector(1.0f, 1.0f, 1.0f);
            normal.x *= _source.normalScale;
            normal.y *= _source.normalScale;
            normal.normalizeVec3();
            return normal * 0.5f + Vector(0.5f, 0.5f, 0.5f);
        });
    }

    ovGraphics::Texture* _occlusion() {
        if (_source.occlusionTexture < 0 || _source.occlusionStrength == 1.0f)
            return _data(_source.occlusionTexture);
        // The same for a strength of occlusion.
        return _adjusted(" occlusion", _source.occlusionTexture, [this](const Vector& texel) {
            return WHITE * (1.0f + _source.occlusionStrength * (texel.x - 1.0f));
        });
    }

    template <typename Adjust>
    ovGraphics::Texture* _adjusted(ovMemory::StringView suffix, int texture, Adjust adjust) {
        const ImageView picture = _textures.read(texture, COLOR_ENCODING::LINEAR);
        Image adjusted = _adjustedPicture(picture, adjust);
        _textures.forgetPictures();
        return _textures.add(_source.name + String(suffix), std::move(adjusted), texture);
    }

    template <typename Adjust>
    Image _adjustedPicture(const ImageView& picture, Adjust adjust) {
        const LoadSteps::Scope step(_textures.getSteps(), MODEL_LOAD_STEP::CONVERSION);
        PictureRows rows(picture, picture.width, picture.height);
        return makePicture(picture.width, picture.height, COLOR_ENCODING::LINEAR,
                           [&](unsigned int y, ovMemory::BufferView<float> row) {
                               const auto texels = rows.read(y);
                               for (std::size_t i = 0; i < row.size(); i += 4) {
                                   const Vector result =
                                       adjust(Vector(texels[i], texels[i + 1], texels[i + 2], texels[i + 3]));
                                   row[i] = result.x;
                                   row[i + 1] = result.y;
                                   row[i + 2] = result.z;
                                   row[i + 3] = result.w;
                               }
                           });
    }

    const GltfMaterial& _source;
    ModelTextures& _textures;
    PbsMaterial& _material;
};

} // namespace

void applyMaterial(const GltfMaterial& source, ModelTextures& textures, PbsMaterial& material) {
    MaterialBuilder(source, textures, material).build();
}

} // namespace ovVeldris::detail

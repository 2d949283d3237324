#include <veldris/scene/SurfaceShaders.h>

#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>

namespace veldris {

using ovGraphics::DepthShader;
using ovGraphics::GLTF_ALPHA_MODE;
using ovVeldris::PbsMaterial;

namespace {

constexpr unsigned int COLORS = 0; // the variant
constexpr unsigned int ANY_STAGE = 0;

/// The sampler that a shader reads a texture of the surface with, so that holes agree in all passes.
ovGraphics::Sampler* samplerOf(const ovGraphics::Shader& shader, const ovGraphics::Texture* texture) {
    for (unsigned int unit = 0; unit < ovVeldris::PbsMaterialParameters::PACKED_TEXTURE_COUNT; ++unit)
        if (shader.getTexture(unit, ANY_STAGE) == texture)
            return shader.getSampler(unit, ANY_STAGE);
    return nullptr;
}

} // namespace

bool SurfaceShaders::add(ovGraphics::RenderQueue& queue, const PbsMaterial& material,
                         GLTF_ALPHA_MODE alphaMode, float cutoff) {
    const bool hasHoles = alphaMode != GLTF_ALPHA_MODE::OPAQUE;
    if (hasHoles && !material.getAlphaTexture() && material.getAlpha() <= cutoff)
        return true;
    const bool isCut = hasHoles && material.getAlphaTexture();
    const DepthShader* shader = isCut ? _makeWithHoles(material, cutoff) : _getSolid();
    if (!shader)
        return false;
    for (unsigned int i = 0; i < queue.getEntityCount(); ++i) {
        ovGraphics::Entity* entity = queue.getEntity(i);
        if (entity->getShader(COLORS) == material.getShader())
            entity->setShader(shader->getShader(), _variant);
    }
    return true;
}

DepthShader* SurfaceShaders::_makeWithHoles(const PbsMaterial& material, float cutoff) {
    ovGraphics::DepthShaderSettings settings;
    settings.alphaTexture = material.getAlphaTexture();
    settings.sampler = samplerOf(*material.getShader(), settings.alphaTexture);
    settings.alphaChannel = static_cast<unsigned int>(material.getAlphaTextureChannels());
    settings.alpha = material.getMixAlphaFactorAndTexture() ? material.getAlpha() : 1.0f;
    settings.alphaCutoff = cutoff;
    settings.drawsGeometry = _drawsGeometry;
    return _withHoles.emplace_back(DepthShader::create(&_graphics, settings)).get();
}

// One for all materials without holes, so that equal meshes are drawn at once whatever they are made of.
DepthShader* SurfaceShaders::_getSolid() {
    if (!_solid)
        _solid = DepthShader::create(&_graphics, {.drawsGeometry = _drawsGeometry});
    return _solid.get();
}

} // namespace veldris

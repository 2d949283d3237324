#include <ovVeldris/materials/PbsShaderBindings.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Managers.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/ShaderInstanceMemorySlot.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/materials/PbsPropertiesInternal.h>

namespace ovVeldris {

namespace {

using ovGraphics::ShaderPassMemorySlot;

constexpr ovMemory::StringView SHADOW_SAMPLER = "ORVANE_DEFAULT_SAMPLER_COMPARISON_SHADOWS";

/// The slots of the pixel stage's constants, in the order of the members of the text's buffer.
class ConstantWriter {
public:
    ConstantWriter(ovGraphics::Shader& shader, PbsMaterialParameters& parameters)
        : _buffer(shader.addConstantBuffer(PBS_CONSTANTS, 0))
        , _parameters(parameters) {}

    void write() {
        _buffer->addPassMemorySlot()->setFromVector(_parameters.lightDirection);
        _buffer->addPassMemorySlot()->setFromVector(_parameters.lightColor);
        _addColor(PBS_ALBEDO);
        _addColor(PBS_SPECULAR);
        _addColor(PBS_EMISSIVE);
        if (_parameters.environmentTexture.isNamed())
            _add(_parameters.environmentTextureSizeConstant)
                ->setAsTextureSize(_parameters.environmentTexture.get());
        // Without an irradiance texture it is the irradiance.
        if (isMixedOrAlone(PBS_ENVIRONMENT, _parameters) || !_parameters.irradianceTexture.isNamed())
            _add(_parameters.environmentColorConstant)->setFromVector(_parameters.environmentColor);
        _addFactor(PBS_METALNESS);
        _addFactor(PBS_ROUGHNESS_GLOSSINESS);
        _add(_parameters.alphaConstant)->setFromVector(toPbsAlphaConstant(_parameters));
        if (_parameters.shadowMapTexture.isNamed())
            _addShadowMap();
    }

private:
    ShaderPassMemorySlot* _add(unsigned int& index) {
        index = _buffer->getPassMemorySlotCount();
        return _buffer->addPassMemorySlot();
    }

    void _addColor(const PbsColorProperty& property) {
        if (isMixedOrAlone(property, _parameters))
            _add(_parameters.*property.constant)->setFromVector(_parameters.*property.color);
    }

    void _addFactor(const PbsFactorProperty& property) {
        if (isMixedOrAlone(property, _parameters))
            _add(_parameters.*property.constant)->setFromVector(toPbsConstant(_parameters.*property.factor));
    }

    void _addShadowMap() {
        ovGraphics::Camera* const camera = _parameters.shadowMapCamera.get();
        _add(_parameters.shadowTextureSizeConstant)->setAsTextureSize(_parameters.shadowMapTexture.get());
        _add(_parameters.shadowViewMatrixConstant)->setAsViewMatrix(camera);
        _add(_parameters.shadowProjectionMatrixConstant)->setAsProjectionMatrix(camera);
    }

    ovGraphics::ConstantBuffer* _buffer;
    PbsMaterialParameters& _parameters;
};

ovGraphics::Sampler* getShadowSampler(ovGraphics::SamplerManager& samplers) {
    if (ovGraphics::Sampler* const existing = samplers.get(SHADOW_SAMPLER)) {
        existing->load(); // unloaded by a graphics system that was shut down in between
        return existing;
    }
    ovGraphics::Sampler* const sampler = samplers.createOrRetrieve(SHADOW_SAMPLER);
    sampler->setHidden(true);
    sampler->setFilter(ovGraphics::FILTER::COMPARISON_MIN_MAG_MIP_LINEAR);
    sampler->setAddressU(ovGraphics::TEXTURE_ADDRESS::BORDER);
    sampler->setAddressV(ovGraphics::TEXTURE_ADDRESS::BORDER);
    sampler->setBorderColor(1.0f, 1.0f, 1.0f, 1.0f);
    sampler->setComparison(ovGraphics::COMPARISON::LESS_EQUAL);
    sampler->load();
    return sampler;
}

void bindTextures(ovGraphics::Shader& shader, const PbsMaterialParameters& parameters,
                  ovGraphics::SamplerManager& samplers) {
    ovGraphics::Sampler* const defaultSampler = samplers.get(GraphicsEngine::DEFAULT_SAMPLER_NAME);
    const auto bind = [&](const PbsTexture& texture, unsigned int unit, ovGraphics::Sampler* sampler) {
        shader.addTexture(texture.get(), unit, 0);
        shader.addSampler(sampler, unit, 0);
    };
    unsigned int unit = 0;
    for (const PbsTexture& texture : parameters.packedTextures)
        if (texture.isNamed())
            bind(texture, unit++, defaultSampler);
    if (parameters.shadowMapTexture.isNamed())
        bind(parameters.shadowMapTexture, PBS_SHADOW_MAP_UNIT, getShadowSampler(samplers));
    if (parameters.environmentTexture.isNamed())
        bind(parameters.environmentTexture, PBS_ENVIRONMENT_UNIT, defaultSampler);
    if (parameters.irradianceTexture.isNamed())
        bind(parameters.irradianceTexture, PBS_IRRADIANCE_UNIT, defaultSampler);
}

} // namespace

ovMaths::Vector toPbsConstant(float factor) {
    return {factor, 0.0f};
}

ovMaths::Vector toPbsAlphaConstant(const PbsMaterialParameters& parameters) {
    return {parameters.alpha, parameters.alphaCutoff};
}

void bindPbsShader(ovGraphics::Shader& shader, PbsMaterialParameters& parameters,
                   ovGraphics::System& graphicsSystem) {
    ovGraphics::ConstantBuffer* const pass = shader.addConstantBuffer(PBS_PASS_CONSTANTS, 0);
    pass->addPassMemorySlot()->setAsViewMatrix();
    pass->addPassMemorySlot()->setAsProjectionMatrix();
    pass->addPassMemorySlot()->setAsCameraPosition();
    ConstantWriter(shader, parameters).write();
    shader.addInstanceMemorySlot()->setAsWorldMatrix();
    shader.addInstanceMemorySlot()->setAsWorldMatrixInvTranspose();
    bindTextures(shader, parameters, *graphicsSystem.getSamplerManager());
}

} // namespace ovVeldris

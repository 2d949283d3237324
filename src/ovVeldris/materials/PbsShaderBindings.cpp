#include <ovVeldris/materials/PbsShaderBindings.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/ShaderInstanceMemorySlot.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/materials/PbsMaterialParameters.h>

namespace ovVeldris {

namespace {

using ovGraphics::ShaderPassMemorySlot;

constexpr ovMemory::StringView SHADOW_SAMPLER = "ORVANE_DEFAULT_SAMPLER_COMPARISON_SHADOWS";

/// Declares the pixel stage's constants, in the order of the members of the text's buffer.
class ConstantWriter {
public:
    ConstantWriter(ovGraphics::Shader& shader, PbsMaterialParameters& parameters)
        : _buffer(shader.addConstantBuffer(PBS_CONSTANTS, 0))
        , _parameters(parameters) {}

    void write() {
        for (const PbsProperty& property : pbsProperties())
            if (property.value.vector)
                _addProperty(property);
        for (const PbsProperty& property : pbsProperties())
            if (property.value.number)
                _addProperty(property);
        if (_parameters.shadowMapTexture.isNamed())
            _addShadowMap();
    }

private:
    ShaderPassMemorySlot* _add(unsigned int& index) {
        // Where each constant lies is noted while it is written, because live setters must find it and the
        // layout depends on the settings.
        index = _buffer->getPassMemorySlotCount();
        return _buffer->addPassMemorySlot();
    }

    void _addProperty(const PbsProperty& property) {
        if (property.needsSize && property.texture.isIn(_parameters))
            _addTextureSize(property);
        const bool isSubstitute = property.substitute && !(_parameters.*property.substitute).isNamed();
        if (property.isValueUsed(_parameters) || isSubstitute || property.second)
            _add(_parameters.constants[getPbsRow(property)].value)
                ->setFromVector(property.getConstant(_parameters));
    }

    void _addTextureSize(const PbsProperty& property) {
        _add(_parameters.constants[getPbsRow(property)].textureSize)
            ->setAsTextureSize((_parameters.*property.texture.field).get());
    }

    void _addShadowMap() {
        ovGraphics::Camera* const camera = _parameters.shadowMapCamera.get();
        _addTextureSize(getPbsProperty(&PbsSettings::shadowMapTexture));
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
    // The border is as far away as can be, so that everything outside the map is lit.
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
    for (const PbsProperty& property : pbsProperties()) {
        const PbsTextureRow& row = property.texture;
        const bool isShadowMap = row.field == &PbsSettings::shadowMapTexture;
        if (row.unit != PBS_NONE && row.isIn(parameters))
            bind(parameters.*row.field, static_cast<unsigned int>(row.unit),
                 isShadowMap ? getShadowSampler(samplers) : defaultSampler);
    }
}

} // namespace

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
    shader.useSamplersOfTextures();
}

} // namespace ovVeldris

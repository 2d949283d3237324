#include <ovVeldris/materials/PbsMaterial.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Managers.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/System.h>
#include <ovVeldris/effects/ProgramTrackersHolder.h>
#include <ovVeldris/materials/PbsParametersTree.h>
#include <ovVeldris/materials/PbsProgramSources.h>
#include <ovVeldris/materials/PbsProgramTracker.h>
#include <ovVeldris/materials/PbsPropertiesInternal.h>
#include <ovVeldris/materials/PbsShaderBindings.h>

namespace ovVeldris {

namespace {

constexpr std::array UNPACKED_TEXTURES = {
    &PbsMaterialParameters::environmentTexture,
    &PbsMaterialParameters::irradianceTexture,
    &PbsMaterialParameters::shadowMapTexture,
};

// A program is made for the textures that there are when it is asked for.
void forgetDestroyedTextures(PbsMaterialParameters& parameters) {
    for (const PbsTextureProperty* const property : PBS_SURFACE_TEXTURES)
        (parameters.*property->texture).forgetIfDestroyed();
    for (const auto texture : UNPACKED_TEXTURES)
        (parameters.*texture).forgetIfDestroyed();
}

void recordTextureSlots(PbsMaterialParameters& parameters) {
    for (const PbsTextureProperty* const property : PBS_SURFACE_TEXTURES) {
        const ovGraphics::Texture* const texture = (parameters.*property->texture).get();
        parameters.*property->slot = texture ? static_cast<int>(findPackedUnit(parameters, texture))
                                             : PbsMaterialParameters::NOT_BOUND;
    }
    parameters.environmentTextureUsed = parameters.environmentTexture.isNamed();
    parameters.irradianceTextureUsed = parameters.irradianceTexture.isNamed();
}

} // namespace

ovMemory::UniquePtr<PbsMaterial> PbsMaterial::create(System* system) {
    return std::make_unique<PbsMaterial>(system);
}

PbsMaterial::PbsMaterial(System* system)
    : Material(MATERIAL_TYPE::PBS)
    , _system(systemOrSingleton(system)) {}

PbsMaterial::~PbsMaterial() {
    PbsMaterial::unload();
}

bool PbsMaterial::load() {
    unload();
    forgetDestroyedTextures(_parameters);
    _packTextureSlots();
    if (const ProgramTrackersHolder* trackers = _getTrackers()) {
        // Kept at once: also a program that cannot be prepared is given back under the key it was got with.
        _loadedParameters = _parameters;
        _program = trackers->get<PbsProgramTracker>()->getProgram(_loadedParameters);
    }
    if (!_program || (_program->isUnloaded() && !_prepareProgram())) {
        _logLoadFailure("program");
        return false;
    }
    // A shader of a graphics system that was replaced since cannot draw any more.
    if (!getShader() || getShader()->getSystem() != _getGraphicsSystem())
        _setShader(ovGraphics::Shader::create(_getGraphicsSystem()));
    if (!_prepareShader()) {
        _logLoadFailure("shader");
        return false;
    }
    recordTextureSlots(_parameters);
    _loadedParameters = _parameters;
    return true;
}

void PbsMaterial::unload() {
    // A program that went with its tracker is not held any more: another tracker may count the same key.
    if (_program)
        if (const ProgramTrackersHolder* trackers = _getTrackers())
            trackers->get<PbsProgramTracker>()->releaseProgram(_loadedParameters);
    _program = nullptr;
    if (getShader())
        getShader()->reset();
}

void PbsMaterial::exportClassToTree(ovExport::Node* node) {
    Material::exportClassToTree(node);
    exportPbsParameters(_parameters, *node);
}

void PbsMaterial::importClassFromTree(ovExport::Node* node) {
    Material::importClassFromTree(node);
    ovGraphics::System* const graphicsSystem = _getGraphicsSystem();
    importPbsParameters(_parameters, *node, graphicsSystem ? graphicsSystem->getTextureManager() : nullptr);
}

void PbsMaterial::setLightDirection(const ovMaths::Vector& direction) {
    _parameters.lightDirection = direction;
    _writeIfLoaded(PBS_LIGHT_DIRECTION_CONSTANT, direction);
}

void PbsMaterial::setLightColor(const ovMaths::Vector& color) {
    _parameters.lightColor = color;
    _writeIfLoaded(PBS_LIGHT_COLOR_CONSTANT, color);
}

void PbsMaterial::setAlbedoColor(const ovMaths::Vector& color) {
    _setColor(PBS_ALBEDO, color);
}
void PbsMaterial::setSpecularColor(const ovMaths::Vector& color) {
    _setColor(PBS_SPECULAR, color);
}
void PbsMaterial::setEmissiveColor(const ovMaths::Vector& color) {
    _setColor(PBS_EMISSIVE, color);
}
void PbsMaterial::setEnvironmentColor(const ovMaths::Vector& color) {
    _setColor(PBS_ENVIRONMENT, color);
}

void PbsMaterial::setMetalness(float metalness) {
    _setFactor(PBS_METALNESS, metalness);
}
void PbsMaterial::setRoughnessGlossiness(float roughnessGlossiness) {
    _setFactor(PBS_ROUGHNESS_GLOSSINESS, roughnessGlossiness);
}

void PbsMaterial::setAlpha(float alpha) {
    _parameters.alpha = alpha;
    _writeIfLoaded(_loadedParameters.alphaConstant, toPbsAlphaConstant(_parameters));
}
void PbsMaterial::setAlphaCutoff(float cutoff) {
    _parameters.alphaCutoff = cutoff;
    _writeIfLoaded(_loadedParameters.alphaConstant, toPbsAlphaConstant(_parameters));
}

void PbsMaterial::setAlbedoTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _setTexture(PBS_ALBEDO_TEXTURE, texture, channels);
}
void PbsMaterial::setSpecularTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _setTexture(PBS_SPECULAR_TEXTURE, texture, channels);
}
void PbsMaterial::setEmissiveTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _setTexture(PBS_EMISSIVE_TEXTURE, texture, channels);
}
void PbsMaterial::setMetalnessTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _setTexture(PBS_METALNESS_TEXTURE, texture, channel);
}
void PbsMaterial::setRoughnessGlossinessTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _setTexture(PBS_ROUGHNESS_GLOSSINESS_TEXTURE, texture, channel);
}
void PbsMaterial::setAlphaTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _setTexture(PBS_ALPHA_TEXTURE, texture, channel);
}
void PbsMaterial::setOcclusionTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _setTexture(PBS_OCCLUSION_TEXTURE, texture, channel);
}
void PbsMaterial::setNormalMapTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _setTexture(PBS_NORMAL_MAP_TEXTURE, texture, channels);
}

void PbsMaterial::setEnvironmentTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels,
                                        bool prefiltered) {
    _storeTexture(PBS_ENVIRONMENT_TEXTURE, texture, channels);
    _parameters.environmentPrefiltered = prefiltered;
    if (!_loadedParameters.environmentTextureUsed)
        return;
    _bindIfLoaded(texture, PBS_ENVIRONMENT_UNIT);
    if (auto* const size = _getLoadedConstant(_loadedParameters.environmentTextureSizeConstant))
        size->setAsTextureSize(texture);
}

void PbsMaterial::setIrradianceTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _storeTexture(PBS_IRRADIANCE_TEXTURE, texture, channels);
    if (_loadedParameters.irradianceTextureUsed)
        _bindIfLoaded(texture, PBS_IRRADIANCE_UNIT);
}

void PbsMaterial::setShadowMapTexture(ovGraphics::Texture* texture, ovGraphics::Camera* camera,
                                      const ShadowMapParameters& parameters) {
    _parameters.shadowMapTexture = texture;
    _parameters.shadowMapCamera = camera;
    _parameters.shadowMapParameters = parameters;
    if (!_getLoadedShader() || !_loadedParameters.shadowMapTexture.isNamed())
        return;
    _bindIfLoaded(texture, PBS_SHADOW_MAP_UNIT);
    _getLoadedConstant(_loadedParameters.shadowTextureSizeConstant)->setAsTextureSize(texture);
    _getLoadedConstant(_loadedParameters.shadowViewMatrixConstant)->setAsViewMatrix(camera);
    _getLoadedConstant(_loadedParameters.shadowProjectionMatrixConstant)->setAsProjectionMatrix(camera);
}

bool PbsMaterial::_packTextureSlots() {
    _parameters.packedTextures = {};
    unsigned int used = 0;
    for (const PbsTextureProperty* const property : PBS_PACKING_ORDER) {
        const PbsTexture& texture = _parameters.*property->texture;
        if (texture.get() && findPackedUnit(_parameters, texture.get()) == _parameters.packedTextures.size())
            _parameters.packedTextures[used++] = texture;
    }
    return true;
}

bool PbsMaterial::_prepareProgram() {
    ovGraphics::ProgramSourcesHolder sources;
    fillPbsProgramSources(_parameters, sources);
    _program->setSources(sources);
    _program->setActivateCrossCompilerDefines(true);
    return _program->load();
}

bool PbsMaterial::_prepareShader() {
    getShader()->setProgram(_program.get());
    bindPbsShader(*getShader(), _parameters, *_getGraphicsSystem());
    return getShader()->load();
}

ovGraphics::System* PbsMaterial::_getGraphicsSystem() const {
    return _system->getGraphicsEngine()->getGraphicsSystem();
}

ProgramTrackersHolder* PbsMaterial::_getTrackers() const {
    return _system->getGraphicsEngine()->getProgramTrackersHolder();
}

ovGraphics::Shader* PbsMaterial::_getLoadedShader() const {
    ovGraphics::Shader* shader = getShader();
    return shader && !shader->isUnloaded() ? shader : nullptr;
}

ovGraphics::ShaderPassMemorySlot* PbsMaterial::_getLoadedConstant(unsigned int index) const {
    ovGraphics::Shader* const shader = _getLoadedShader();
    return shader ? shader->getConstantBuffer(PBS_CONSTANTS, 0)->getPassMemorySlot(index) : nullptr;
}

void PbsMaterial::_writeIfLoaded(unsigned int index, const ovMaths::Vector& value) const {
    if (ovGraphics::ShaderPassMemorySlot* const slot = _getLoadedConstant(index))
        slot->setFromVector(value);
}

void PbsMaterial::_bindIfLoaded(ovGraphics::Texture* texture, unsigned int unit) const {
    if (ovGraphics::Shader* const shader = _getLoadedShader())
        shader->setTexture(texture, unit, 0);
}

void PbsMaterial::_setColor(const PbsColorProperty& property, const ovMaths::Vector& color) {
    _parameters.*property.color = color;
    if (isMixedOrAlone(property, _loadedParameters))
        _writeIfLoaded(_loadedParameters.*property.constant, color);
}

void PbsMaterial::_setFactor(const PbsFactorProperty& property, float factor) {
    _parameters.*property.factor = factor;
    if (isMixedOrAlone(property, _loadedParameters))
        _writeIfLoaded(_loadedParameters.*property.constant, toPbsConstant(factor));
}

void PbsMaterial::_storeTexture(const PbsTextureProperty& property, ovGraphics::Texture* texture,
                                THREE_CHANNEL_PACK channels) {
    _parameters.*property.texture = texture;
    _parameters.*property.vectorChannels = channels;
}

void PbsMaterial::_storeTexture(const PbsTextureProperty& property, ovGraphics::Texture* texture,
                                ONE_CHANNEL_PACK channel) {
    _parameters.*property.texture = texture;
    _parameters.*property.numberChannel = channel;
}

template <typename Channels>
void PbsMaterial::_setTexture(const PbsTextureProperty& property, ovGraphics::Texture* texture,
                              Channels channels) {
    _storeTexture(property, texture, channels);
    const int slot = _loadedParameters.*property.slot;
    if (slot == PbsMaterialParameters::NOT_BOUND || !_getLoadedShader())
        return;
    const auto unit = static_cast<unsigned int>(slot);
    _parameters.packedTextures[unit] = texture;
    _bindIfLoaded(texture, unit);
}

void PbsMaterial::_logLoadFailure(ovMemory::StringView what) const {
    ovMemory::String message = "Could not load the pbs material ";
    message.append(what).append(" for '").append(getName());
    message += "'. Material will be unusable as-is, this needs to be addressed within the material creation.";
    logMessage(_system, message, "PbsMaterial");
}

} // namespace ovVeldris

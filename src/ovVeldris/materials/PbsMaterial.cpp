#include <ovVeldris/materials/PbsMaterial.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/ProgramTrackersHolder.h>
#include <ovVeldris/materials/PbsParametersTree.h>
#include <ovVeldris/materials/PbsProgramSources.h>
#include <ovVeldris/materials/PbsProgramTracker.h>
#include <ovVeldris/materials/PbsShaderBindings.h>

namespace ovVeldris {

namespace {

// A program is made for the textures that there are when it is asked for.
void forgetDestroyedTextures(PbsSettings& settings) {
    for (const PbsProperty& property : pbsProperties())
        if (property.texture)
            (settings.*property.texture.field).forgetIfDestroyed();
}

/// Gives a texture the next free unit, unless it has one already.
void packTexture(PbsLoadedTextures& loaded, const PbsTexture& texture) {
    if (texture.get() && loaded.findPackedUnit(texture.get()) == loaded.packedTextures.size())
        loaded.packedTextures[loaded.findPackedUnit(nullptr)] = texture;
}

/// The unit at which a loaded shader reads the texture of a property.
int findUnit(const PbsMaterialParameters& parameters, const PbsProperty& property) {
    const ovGraphics::Texture* const texture =
        property.texture ? (parameters.*property.texture.field).get() : nullptr;
    if (!texture)
        return PbsLoadedTextures::NOT_BOUND;
    return property.texture.isPacked() ? static_cast<int>(parameters.findPackedUnit(texture))
                                       : property.texture.unit;
}

} // namespace

ovMemory::UniquePtr<PbsMaterial> PbsMaterial::create(System* system) {
    return std::make_unique<PbsMaterial>(system);
}

PbsMaterial::PbsMaterial(System* system)
    : Material(MATERIAL_TYPE::PBS, settings())
    , _system(systemOrSingleton(system)) {}

PbsMaterial::~PbsMaterial() {
    PbsMaterial::unload();
}

bool PbsMaterial::load() {
    unload();
    forgetDestroyedTextures(_parameters);
    _packTextureSlots();
    if (const ProgramTrackersHolder* trackers = programTrackersOf(_system.get())) {
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
    for (const PbsProperty& property : pbsProperties())
        _parameters.units[getPbsRow(property)] = findUnit(_parameters, property);
    _loadedParameters = _parameters;
    return true;
}

void PbsMaterial::unload() {
    // A program that went with its tracker is not held any more: another tracker may count the same key.
    if (_program)
        if (const ProgramTrackersHolder* trackers = programTrackersOf(_system.get()))
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
    _setVector(&PbsSettings::lightDirection, direction);
}
void PbsMaterial::setLightColor(const ovMaths::Vector& color) {
    _setVector(&PbsSettings::lightColor, color);
}
void PbsMaterial::setAlbedoColor(const ovMaths::Vector& color) {
    _setVector(&PbsSettings::albedoColor, color);
}
void PbsMaterial::setSpecularColor(const ovMaths::Vector& color) {
    _setVector(&PbsSettings::specularColor, color);
}
void PbsMaterial::setEmissiveColor(const ovMaths::Vector& color) {
    _setVector(&PbsSettings::emissiveColor, color);
}
void PbsMaterial::setEnvironmentColor(const ovMaths::Vector& color) {
    _setVector(&PbsSettings::environmentColor, color);
}

void PbsMaterial::setMetalness(float metalness) {
    _setNumber(&PbsSettings::metalness, metalness);
}
void PbsMaterial::setRoughnessGlossiness(float roughnessGlossiness) {
    _setNumber(&PbsSettings::roughnessGlossiness, roughnessGlossiness);
}
void PbsMaterial::setAlpha(float alpha) {
    _setNumber(&PbsSettings::alpha, alpha);
}
void PbsMaterial::setAlphaCutoff(float cutoff) {
    _setNumber(&PbsSettings::alphaCutoff, cutoff);
}

void PbsMaterial::setAlbedoTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _parameters.albedoTextureChannels = channels;
    _setTexture(&PbsSettings::albedoTexture, texture);
}
void PbsMaterial::setSpecularTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _parameters.specularTextureChannels = channels;
    _setTexture(&PbsSettings::specularTexture, texture);
}
void PbsMaterial::setEmissiveTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _parameters.emissiveTextureChannels = channels;
    _setTexture(&PbsSettings::emissiveTexture, texture);
}
void PbsMaterial::setMetalnessTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _parameters.metalnessTextureChannel = channel;
    _setTexture(&PbsSettings::metalnessTexture, texture);
}
void PbsMaterial::setRoughnessGlossinessTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _parameters.roughnessGlossinessTextureChannel = channel;
    _setTexture(&PbsSettings::roughnessGlossinessTexture, texture);
}
void PbsMaterial::setAlphaTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _parameters.alphaTextureChannel = channel;
    _setTexture(&PbsSettings::alphaTexture, texture);
}
void PbsMaterial::setOcclusionTexture(ovGraphics::Texture* texture, ONE_CHANNEL_PACK channel) {
    _parameters.occlusionTextureChannel = channel;
    _setTexture(&PbsSettings::occlusionTexture, texture);
}
void PbsMaterial::setNormalMapTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _parameters.normalMapTextureChannels = channels;
    _setTexture(&PbsSettings::normalMapTexture, texture);
}
void PbsMaterial::setIrradianceTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels) {
    _parameters.irradianceTextureChannels = channels;
    _setTexture(&PbsSettings::irradianceTexture, texture);
}
void PbsMaterial::setEnvironmentTexture(ovGraphics::Texture* texture, THREE_CHANNEL_PACK channels,
                                        bool prefiltered) {
    _parameters.environmentTextureChannels = channels;
    _parameters.environmentPrefiltered = prefiltered;
    _setTexture(&PbsSettings::environmentTexture, texture);
}

void PbsMaterial::setShadowMapTexture(ovGraphics::Texture* texture, ovGraphics::Camera* camera,
                                      const ShadowMapParameters& parameters) {
    _parameters.shadowMapCamera = camera;
    _parameters.shadowMapParameters = parameters;
    _setTexture(&PbsSettings::shadowMapTexture, texture);
    if (!_getLoadedShader() || !_loadedParameters.shadowMapTexture.isNamed())
        return;
    _getLoadedConstant(_loadedParameters.shadowViewMatrixConstant)->setAsViewMatrix(camera);
    _getLoadedConstant(_loadedParameters.shadowProjectionMatrixConstant)->setAsProjectionMatrix(camera);
}

bool PbsMaterial::_packTextureSlots() {
    _parameters.packedTextures = {};
    for (int rank = 0; rank < static_cast<int>(pbsProperties().size()); ++rank)
        for (const PbsProperty& property : pbsProperties())
            if (property.texture.packingRank == rank)
                packTexture(_parameters, _parameters.*property.texture.field);
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
    return graphicsSystemOf(_system.get());
}

ovGraphics::Shader* PbsMaterial::_getLoadedShader() const {
    ovGraphics::Shader* shader = getShader();
    return shader && !shader->isUnloaded() ? shader : nullptr;
}

ovGraphics::ShaderPassMemorySlot* PbsMaterial::_getLoadedConstant(unsigned int index) const {
    ovGraphics::Shader* const shader = _getLoadedShader();
    return shader ? shader->getConstantBuffer(PBS_CONSTANTS, 0)->getPassMemorySlot(index) : nullptr;
}

void PbsMaterial::_setVector(ovMaths::Vector PbsSettings::*field, const ovMaths::Vector& value) {
    _parameters.*field = value;
    _writeIfLoaded(getPbsProperty(field));
}

void PbsMaterial::_setNumber(float PbsSettings::*field, float value) {
    _parameters.*field = value;
    _writeIfLoaded(getPbsProperty(field));
}

void PbsMaterial::_writeIfLoaded(const PbsProperty& property) const {
    if (!property.isValueUsed(_loadedParameters) && !property.second)
        return;
    if (auto* const slot = _getLoadedConstant(_loadedParameters.constants[getPbsRow(property)].value))
        slot->setFromVector(property.getConstant(_parameters));
}

void PbsMaterial::_setTexture(PbsTexture PbsSettings::*field, ovGraphics::Texture* texture) {
    _parameters.*field = texture;
    const PbsProperty& property = getPbsProperty(field);
    const int bound = _loadedParameters.units[getPbsRow(property)];
    if (bound == PbsLoadedTextures::NOT_BOUND || !_getLoadedShader())
        return;
    const auto unit = static_cast<unsigned int>(bound);
    if (property.texture.isPacked())
        _parameters.packedTextures[unit] = texture;
    _getLoadedShader()->setTexture(texture, unit, 0);
    if (property.needsSize)
        _getLoadedConstant(_loadedParameters.constants[getPbsRow(property)].textureSize)
            ->setAsTextureSize(texture);
}

void PbsMaterial::_logLoadFailure(ovMemory::StringView what) const {
    ovMemory::String message = "Could not load the pbs material ";
    message.append(what).append(" for '").append(getName());
    message += "'. Material will be unusable as-is, this needs to be addressed within the material creation.";
    logMessage(_system.get(), message, "PbsMaterial");
}

} // namespace ovVeldris

#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/effects/ScreenEffect.h>
#include <ovVeldris/shaders/PostProcessingLib.h>

namespace ovVeldris {

ScreenEffectBase::ScreenEffectBase(EFFECT_TYPE type, System* system, ovMemory::StringView kindName,
                                   ovMemory::StringView className, const SettingTable& settings)
    : Effect(type, settings)
    , _system(systemOrSingleton(system))
    , _kindName(kindName)
    , _className(className) {}

bool ScreenEffectBase::load() {
    // First of all, since the program that is held belongs to the settings of the last load and is given back
    // under them.
    unload();
    const ProgramTrackersHolder* trackers = programTrackersOf(_system.get());
    if (trackers)
        _program = _acquireProgram(*trackers);
    if (!trackers || !_prepareProgram()) {
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
    return true;
}

void ScreenEffectBase::unload() {
    // A program that went with its tracker is not held any more: another tracker may count the same id.
    if (_program)
        if (const ProgramTrackersHolder* trackers = programTrackersOf(_system.get()))
            _releaseProgram(*trackers);
    _program = nullptr;
    if (getShader())
        getShader()->reset();
}

bool ScreenEffectBase::_prepareProgram() const {
    // Another effect with the same text has loaded it already.
    if (!_program->isUnloaded())
        return true;
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(PostProcessingLib::ovPostProcessDefaultVertex());
    _fillSources(sources);
    _program->setSources(sources);
    _program->setActivateCrossCompilerDefines(true);
    return _program->load();
}

bool ScreenEffectBase::_prepareShader() {
    getShader()->setProgram(_program.get());
    _bindResources(*getShader());
    return getShader()->load();
}

System* ScreenEffectBase::_getSystem() const {
    return _system.get();
}

ovGraphics::System* ScreenEffectBase::_getGraphicsSystem() const {
    return graphicsSystemOf(_system.get());
}

ovGraphics::Shader* ScreenEffectBase::_getLoadedShader() const {
    ovGraphics::Shader* shader = getShader();
    return shader && !shader->isUnloaded() ? shader : nullptr;
}

void ScreenEffectBase::_bindTextureIfLoaded(ovGraphics::Texture* texture, unsigned int unit) const {
    if (ovGraphics::Shader* shader = _getLoadedShader())
        shader->setTexture(texture, unit, 0);
}

void ScreenEffectBase::_bindSamplerIfLoaded(ovGraphics::Sampler* sampler, ovMemory::StringView defaultName,
                                            unsigned int unit) const {
    if (ovGraphics::Shader* shader = _getLoadedShader())
        shader->setSampler(sampler ? sampler : _getGraphicsSystem()->getSamplerManager()->get(defaultName),
                           unit, 0);
}

ovGraphics::Sampler* ScreenEffectBase::_prepareSampler(const EffectSamplerSettings& settings) const {
    ovGraphics::Sampler* sampler = _getGraphicsSystem()->getSamplerManager()->createOrRetrieve(settings.name);
    sampler->setFilter(settings.filter);
    if (settings.address) {
        sampler->setAddressU(*settings.address);
        sampler->setAddressV(*settings.address);
    }
    if (settings.borderColor) {
        const std::array<float, 4>& color = *settings.borderColor;
        sampler->setBorderColor(color[0], color[1], color[2], color[3]);
    }
    if (settings.firstMipOnly)
        sampler->setLodRange(0.0f, 0.0f);
    if (settings.hidden)
        sampler->setHidden(true);
    sampler->load();
    return sampler;
}

void ScreenEffectBase::_logLoadFailure(ovMemory::StringView what) const {
    ovMemory::String message = "Could not load the ";
    message.append(_kindName).append(" effect ").append(what).append(" for '").append(getName());
    message += "'. Effect will be unusable as-is, this needs to be addressed within the effect creation.";
    logMessage(_system.get(), message, _className);
}

} // namespace ovVeldris

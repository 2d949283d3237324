#include <ovVeldris/complexEffects/MultiPassEffect.h>

#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/shaders/PostProcessingLib.h>

namespace ovVeldris {

MultiPassEffectBase::MultiPassEffectBase(COMPLEX_EFFECT_TYPE type, System* system,
                                         ovMemory::StringView className, const SettingTable& settings)
    : ComplexEffect(type, settings)
    , _system(systemOrSingleton(system))
    , _className(className) {}

bool MultiPassEffectBase::load() {
    unload();
    ovGraphics::CompositorNode* node = _getCompositorNode();
    if (!node) {
        logMessage(_system.get(),
                   "ComplexEffect '" + _nameWith("'") +
                       " requires a CompositorNode set to be able to work with it. None provided, aborting.",
                   _className);
        return false;
    }
    // Before the programs are asked for, as they are given back under the settings that they came from.
    _takeInfo();
    if (_loadParts(*node))
        return true;
    // Half an effect must not stay in a node that is drawn.
    unload();
    return false;
}

void MultiPassEffectBase::unload() {
    _blocks.remove();
    _unloadParts();
    // Programs that went with their tracker are not held any more: another tracker may count the same id.
    if (_programs.first)
        if (const ProgramTrackersHolder* trackers = programTrackersOf(_system.get()))
            _releaseTo(*trackers);
    _programs = {};
}

System* MultiPassEffectBase::_getSystem() const {
    return _system.get();
}

ovGraphics::System* MultiPassEffectBase::_getGraphicsSystem() const {
    return graphicsSystemOf(_system.get());
}

ovMemory::String MultiPassEffectBase::_nameWith(ovMemory::StringView suffix) const {
    return ovMemory::String(getName()).append(suffix);
}

const ProgramPair& MultiPassEffectBase::_acquirePrograms() {
    if (const ProgramTrackersHolder* trackers = programTrackersOf(_system.get()))
        _programs = _acquireFrom(*trackers);
    return _programs;
}

bool MultiPassEffectBase::_prepareProgram(ovGraphics::Program& program, ovMemory::StringView pixelText,
                                          const ovMemory::Buffer<ovGraphics::shading::Define>& pixelDefines) {
    if (!program.isUnloaded())
        return true;
    ovGraphics::ProgramSourcesHolder sources;
    sources.setVertexMemory(PostProcessingLib::ovPostProcessDefaultVertex());
    sources.setPixelMemory(pixelText);
    for (const ovGraphics::shading::Define& define : pixelDefines)
        sources.addDefineMacroPixel(define.name, define.value);
    program.setSources(sources);
    program.setHidden(true);
    program.setActivateCrossCompilerDefines(true);
    return program.load();
}

ovMemory::UniquePtr<ovGraphics::Shader> MultiPassEffectBase::_makeShader(ovMemory::StringView suffix,
                                                                         ovGraphics::Program& program) const {
    auto shader = ovGraphics::Shader::create(_getGraphicsSystem());
    shader->setName(_nameWith(suffix));
    shader->setHidden(true);
    shader->setProgram(&program);
    return shader;
}

bool MultiPassEffectBase::_fail(ovMemory::StringView start, ovMemory::StringView advice) const {
    ovMemory::String message(start);
    logMessage(_system.get(), message.append(_nameWith("'. ")).append(advice), _className);
    return false;
}

} // namespace ovVeldris

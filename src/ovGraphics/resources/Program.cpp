#include <ovGraphics/resources/Program.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/ProgramLibrary.h>

namespace ovGraphics {

namespace {

bool isSameText(const shading::StageText& first, const shading::StageText& second) {
    return first.text == second.text && first.defines == second.defines;
}

} // namespace

ovMemory::UniquePtr<Program> Program::create(System* system) {
    return std::make_unique<Program>(system);
}

Program::Program(System* system)
    : Resource(system, "program") {}

// Here and not in the base class, whose destructor can no longer reach this _unload.
Program::~Program() {
    _unload();
}

// Programs are given their text anew at every preparation: only another text is compiled again.
void Program::setSources(const ProgramSourcesHolder& sources) {
    if (isSameText(sources.getVertex(), _sources.getVertex()) &&
        isSameText(sources.getPixel(), _sources.getPixel()))
        return;
    _sources = sources;
    _settingChanged();
}

void Program::setActivateCrossCompilerDefines(bool activate) {
    if (activate == _crossCompilerDefines)
        return;
    _crossCompilerDefines = activate;
    _settingChanged();
}

shading::ProgramText Program::getText() const {
    const SHADER_LANGUAGE language = getSystem() ? getSystem()->getLanguage() : SHADER_LANGUAGE::GLSL;
    return {ovMemory::String(getName()), language, _crossCompilerDefines, _sources.getVertex(),
            _sources.getPixel()};
}

void Program::reset() {
    _sources = ProgramSourcesHolder();
    _crossCompilerDefines = false;
    Resource::reset();
}

bool Program::_load(ovMemory::String& error) {
    if (!_getDevice(error))
        return false;
    ovMemory::String warnings;
    _loadedProgram = getSystem()->getProgramLibrary().acquire(getText(), error, warnings);
    if (!warnings.empty())
        getSystem()->log("Program '" + ovMemory::String(getName()) + "': " + warnings, "program");
    _noteSceneChange();
    return _loadedProgram != nullptr;
}

void Program::_unload() {
    if (_loadedProgram)
        getSystem()->getProgramLibrary().release(_loadedProgram);
    _noteSceneChange();
    _loadedProgram = nullptr;
}

} // namespace ovGraphics

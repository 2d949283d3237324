#include <ovGraphics/resources/Program.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/ProgramLibrary.h>

namespace ovGraphics {

ovMemory::UniquePtr<Program> Program::create(System* system) {
    return std::make_unique<Program>(system);
}

Program::Program(System* system)
    : Resource(system, "program") {}

Program::~Program() {
    _unload();
}

void Program::setSources(const ProgramSourcesHolder& sources) {
    _sources = sources;
    _settingChanged();
}

void Program::setActivateCrossCompilerDefines(bool activate) {
    _crossCompilerDefines = activate;
    _settingChanged();
}

shading::ProgramText Program::getText() const {
    return {ovMemory::String(getName()), getSystem()->getLanguage(), _crossCompilerDefines,
            _sources.getVertex(), _sources.getPixel()};
}

void Program::reset() {
    _sources = ProgramSourcesHolder();
    _crossCompilerDefines = false;
    Resource::reset();
}

bool Program::_load(ovMemory::String& error) {
    if (!getSystem() || !getSystem()->getIsInitialized()) {
        error = "the graphics system is not initialised; call System::initialize first.";
        return false;
    }
    ovMemory::String warnings;
    _loadedProgram = getSystem()->getProgramLibrary().acquire(getText(), error, warnings);
    if (!warnings.empty())
        getSystem()->log("Program '" + ovMemory::String(getName()) + "': " + warnings, "program");
    return _loadedProgram != nullptr;
}

void Program::_unload() {
    if (_loadedProgram)
        getSystem()->getProgramLibrary().release(_loadedProgram);
    _loadedProgram = nullptr;
}

} // namespace ovGraphics

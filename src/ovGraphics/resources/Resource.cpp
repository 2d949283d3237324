#include <ovGraphics/resources/Resource.h>

#include <atomic>
#include <cctype>
#include <ovGraphics/System.h>

namespace ovGraphics {

namespace {

/// The class of a kind of resource: "RenderContext" for "render context".
ovMemory::String classNameOf(ovMemory::StringView kind) {
    ovMemory::String name;
    bool startsWord = true;
    for (const char letter : kind) {
        if (letter != ' ')
            name += startsWord ? static_cast<char>(std::toupper(static_cast<unsigned char>(letter))) : letter;
        startsWord = letter == ' ';
    }
    return name;
}

std::atomic<uint64_t> bindingChanges = 1;

} // namespace

uint64_t noteBindingChange() {
    return bindingChanges.fetch_add(1, std::memory_order_relaxed) + 1;
}

uint64_t getBindingChanges() {
    return bindingChanges.load(std::memory_order_relaxed);
}

Resource::Resource(System* system, ovMemory::StringView kind)
    : _system(systemOrSingleton(system))
    , _kind(kind) {
    _system->_registerResource(this);
}

Resource::~Resource() {
    noteBindingChange();
    _forgetBorrowers(); // before the system is told: what it does then must not reach a resource half gone
    if (_system)
        _system->_unregisterResource(this);
}

bool Resource::load() {
    // Loading twice costs nothing, so callers need not keep track of what is loaded.
    if (_loadState != RESOURCE_LOAD_STATE::UNLOADED && !_changedSinceLoad)
        return true;
    unload(); // counts as a change of what shaders bind, as the load that follows does
    _loadState = RESOURCE_LOAD_STATE::LOADING;
    ovMemory::String error;
    if (!_load(error)) {
        unload(); // a load that failed halfway may have made some of its objects
        _logFailure("load", error);
        return false;
    }
    // A texture whose upload is deferred has set another state itself.
    if (_loadState == RESOURCE_LOAD_STATE::LOADING)
        _loadState = RESOURCE_LOAD_STATE::LOADED;
    _changedSinceLoad = false;
    return true;
}

void Resource::unload() {
    noteBindingChange();
    _unload();
    _loadState = RESOURCE_LOAD_STATE::UNLOADED;
}

void Resource::reset() {
    unload();
    _settingChanged();
}

bool Resource::_load(ovMemory::String&) {
    return true;
}

void Resource::_noteSceneChange() {
    if (_system)
        _sceneRevision = _system->noteSceneChange();
}

void Resource::_logFailure(ovMemory::StringView action, ovMemory::StringView reason) const {
    if (!_system)
        return;
    ovMemory::String line = "Could not ";
    line.append(action).append(" the ").append(_kind).append(" '").append(_name).append("': ").append(reason);
    _system->log(line, classNameOf(_kind));
}

device::Device* Resource::_getDevice(ovMemory::String& error) const {
    device::Device* device = _system ? _system->getDevice() : nullptr;
    if (!_system)
        error = "its graphics system was destroyed; create the " + ovMemory::String(_kind) + " anew.";
    else if (!device)
        error = "the graphics system is not initialised; call System::initialize first.";
    return device;
}

System* systemOrSingleton(System* system) {
    return system ? system : System::getInstance();
}

} // namespace ovGraphics

#include <ovGraphics/resources/Resource.h>

#include <ovGraphics/System.h>

namespace ovGraphics {

Resource::Resource(System* system, ovMemory::StringView kind)
    : _system(systemOrSingleton(system))
    , _kind(kind) {
    _system->_registerResource(this);
}

Resource::~Resource() {
    for (BorrowedBase* borrower = _borrowers; borrower; borrower = borrower->_next)
        borrower->_resource = nullptr;
    if (_system)
        _system->_unregisterResource(this);
}

bool Resource::load() {
    if (_loadState != RESOURCE_LOAD_STATE::UNLOADED && !_changedSinceLoad)
        return true;
    unload();
    _loadState = RESOURCE_LOAD_STATE::LOADING;
    ovMemory::String error;
    if (!_load(error)) {
        _unload();
        _loadState = RESOURCE_LOAD_STATE::UNLOADED;
        _log(error);
        return false;
    }
    if (_loadState == RESOURCE_LOAD_STATE::LOADING)
        _loadState = RESOURCE_LOAD_STATE::LOADED;
    _changedSinceLoad = false;
    return true;
}

void Resource::unload() {
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

void Resource::_log(ovMemory::StringView message) const {
    if (!_system)
        return;
    ovMemory::String line = "Could not load the ";
    line.append(_kind).append(" '").append(_name).append("': ").append(message);
    _system->log(line, _kind);
}

System* systemOrSingleton(System* system) {
    return system ? system : System::getInstance();
}

} // namespace ovGraphics

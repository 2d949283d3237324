// The base of everything that a graphics system names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ovCommon/Api.h>
#include <ovGraphics/formats/Enums.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {

namespace device {
class Device;
}
class System;

/// Counts changes of whatever shaders bind: settings and loads of resources, cameras, bindings and memory
/// slots. A shader whose count is the present one binds what it bound before without looking. All systems
/// count together, so that a number is also another one for every change.
/// @return the count with this change
OV_API uint64_t noteBindingChange();
/// The present count.
OV_API uint64_t getBindingChanges();

/// A named object of a graphics system: a texture, a shader, a camera, a compositor, ...
///
/// Settings are stored by setters and take effect on the device at load().
/// When the system shuts down, its resources are unloaded.
/// When a resource is destroyed, whoever borrowed it forgets it.
class OV_API Resource : public ovMemory::Borrowable {
public:
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;
    virtual ~Resource();

    ovMemory::StringView getName() const { return _name; }
    /// Names need not be unique, except inside a manager, whose rename() is to be used there.
    void setName(ovMemory::StringView name) { _name = name; }

    /// The system that the resource was created on; null after that system was destroyed.
    System* getSystem() const { return _system; }

    /// A hidden resource is internal to a library: lists shown to users leave it out. Default false.
    bool getHidden() const { return _hidden; }
    void setHidden(bool hidden) { _hidden = hidden; }

    /// Whether load() may leave the upload to the first use. Default false.
    bool getGpuUploadCanBeDeferred() const { return _gpuUploadCanBeDeferred; }
    void setGpuUploadCanBeDeferred(bool deferred) { _gpuUploadCanBeDeferred = deferred; }

    RESOURCE_LOAD_STATE getLoadState() const { return _loadState; }
    /// Another number for every resource of a system, rising with the order of creation.
    uint64_t getId() const { return _id; }

    /// The system's count of scene changes when what scene passes keep of this resource changed last.
    uint64_t getSceneRevision() const { return _sceneRevision; }

    bool isUnloaded() const { return _loadState == RESOURCE_LOAD_STATE::UNLOADED; }

    /// Makes the resource usable with its present settings. A loaded resource whose settings did not change
    /// since is left as it is; otherwise it is unloaded first.
    /// @return false after one log line that says why; the resource is then unloaded.
    bool load();

    /// Frees what load() made; the settings stay.
    void unload();

    /// unload(), and back to the settings of a new resource of this kind; name and hidden flag stay.
    virtual void reset();

protected:
    /// @param kind what log lines call it ("texture", "shader"); a literal
    Resource(System* system, ovMemory::StringView kind);

    /// Makes the device's objects. @return false with the reason in error.
    virtual bool _load(ovMemory::String& error);
    /// Frees the device's objects; also called on resources that are not loaded.
    virtual void _unload() {}

    /// To be called by setters: the next load() must not be skipped.
    void _settingChanged() {
        _changedSinceLoad = true;
        noteBindingChange();
    }
    /// To be called when what scene passes keep of a mesh or a shader is out of date.
    void _noteSceneChange();
    void _setLoadState(RESOURCE_LOAD_STATE state) { _loadState = state; }
    /// Sends "Could not <action> the <kind> '<name>': <reason>" to the system's logger, the class as sender.
    void _logFailure(ovMemory::StringView action, ovMemory::StringView reason) const;
    /// The device to load on. @return null with the reason in error while the system has none
    device::Device* _getDevice(ovMemory::String& error) const;

private:
    friend class System;

    System* _system;
    ovMemory::StringView _kind;
    ovMemory::String _name;
    uint64_t _id = 0;
    uint64_t _sceneRevision = 0;
    RESOURCE_LOAD_STATE _loadState = RESOURCE_LOAD_STATE::UNLOADED;
    bool _hidden = false;
    bool _gpuUploadCanBeDeferred = false;
    bool _changedSinceLoad = true;
    std::size_t _registryIndex = 0; ///< place in the system's list of resources
};

/// The system to create a resource on: the given one, or the singleton when it is null.
OV_API System* systemOrSingleton(System* system);

} // namespace ovGraphics

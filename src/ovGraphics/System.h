// The graphics system: a device and everything that lives on it.
#pragma once

#include <ovCommon/MaybeSingletonClass.h>
#include <ovGraphics/Configuration.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Memory.h>

namespace ovGraphics {
class System;
}

extern template class OV_API ovCommon::MaybeSingletonClass<ovGraphics::System>;

namespace ovGraphics {

class Camera;
class CameraManager;
class CompositorManager;
class CompositorPass;
class ConstantPool;
class MeshManager;
class NodeManager;
class ProgramLibrary;
class ProgramManager;
class RenderContext;
class RenderContextManager;
class RenderQueueManager;
class Resource;
class ResourceManager;
class SamplerManager;
class ShaderManager;
class TextureManager;
class ViewportManager;
struct PassExecution;

namespace device {
class Device;
class GpuTimer;
struct DeviceInfo;
} // namespace device

/// The time that one pass took in the last frame.
struct PassTiming {
    ovMemory::String name;
    double milliseconds = 0.0;
};

/// The seconds that time slots see.
struct FrameTime {
    double seconds = 0.0;      ///< since initialize(), or as fixed
    double deltaSeconds = 0.0; ///< length of the last frame
};

/// A graphics device with its managers. Any number may exist; each belongs to the thread that initialised it.
class OV_API System : public ovCommon::MaybeSingletonClass<System>, public ovMemory::Borrowable {
public:
    /// A system of its own, not initialised.
    System();
    ~System() override;

    bool getIsInitialized() const { return _device != nullptr; }
    /// Opens the device. Does nothing on a system that is initialised.
    /// @return false after one log line when no device can be opened
    bool initialize(const Configuration& configuration);
    /// The same with a device of the host's own, which this system then owns: one that counts
    /// (device/CountingDevice.h), one behind another API. The configuration's choice of a device is not
    /// looked at. @return false after one log line for a null device
    bool initialize(const Configuration& configuration, ovMemory::UniquePtr<device::Device> device);
    /// Unloads every resource and closes the device; the resources stay and can be loaded after initialize().
    void shutdown();

    /// Draws a context now: every active node of its compositor; then shows it when it draws in the window.
    /// A pass that runs code of the application may call frame() for another context, and may erase contexts
    /// and compositors, these too; only the block that is running must stay, with its passes.
    /// @return false after one log line when the system is not initialised, the context or its compositor is
    /// null or of another system, or the window's back buffer cannot be made; false without one while the
    /// window is minimised
    bool frame(RenderContext* context);

    const Configuration& getConfiguration() const { return _configuration; }
    SHADER_LANGUAGE getLanguage() const { return _configuration.language; }
    /// What the device is and can do; null before initialize().
    const device::DeviceInfo* getDeviceInfo() const;
    /// The headless devices that Configuration::device chooses from, one line each.
    static ovMemory::Buffer<ovMemory::String> listDevices();

    MeshManager* getMeshManager() const { return _meshes.get(); }
    NodeManager* getNodeManager() const { return _nodes.get(); }
    RenderQueueManager* getRenderQueueManager() const { return _renderQueues.get(); }
    TextureManager* getTextureManager() const { return _textures.get(); }
    SamplerManager* getSamplerManager() const { return _samplers.get(); }
    ProgramManager* getProgramManager() const { return _programs.get(); }
    ShaderManager* getShaderManager() const { return _shaders.get(); }
    CameraManager* getCameraManager() const { return _cameras.get(); }
    ViewportManager* getViewportManager() const { return _viewports.get(); }
    CompositorManager* getCompositorManager() const { return _compositors.get(); }
    RenderContextManager* getRenderContextManager() const { return _renderContexts.get(); }
    /// Writes and reads sets of what the managers hold.
    ResourceManager* getResourceManager() const { return _resourceManager.get(); }

    /// Fixes the time that time slots see, so that renders repeat exactly; may be called before initialize().
    void setFixedTime(double seconds, double deltaSeconds);
    /// Lets the time run again.
    void clearFixedTime();
    const FrameTime& getFrameTime() const { return _frameTime; }

    /// Measures each pass of every frame (which costs time itself). Default off.
    void setPassTimingEnabled(bool enabled) { _passTimingEnabled = enabled; }
    bool getPassTimingEnabled() const { return _passTimingEnabled; }
    /// The passes of the last frame in order; empty unless timing is enabled. A frame that a pass draws
    /// counts to that pass.
    const ovMemory::Buffer<PassTiming>& getPassTimings() const { return _passTimings; }
    /// "timer queries" on hardware; "wall clock" on a software device, where queries cover the submission
    /// only.
    ovMemory::StringView getPassTimingMethod() const;

    /// Executes a pass of a frame, measured when pass timing is enabled.
    void runPass(CompositorPass& pass, const PassExecution& execution);

    /// Sends one line to the configuration's logger, if there is one.
    void log(ovMemory::StringView message, ovMemory::StringView sender) const;

    /// Counts changes of meshes and shaders, so that what scene passes keep of them tells when it is stale.
    uint64_t getSceneRevision() const { return _sceneRevision; }
    uint64_t noteSceneChange() { return ++_sceneRevision; }

    // The window, when the configuration asked for one.
    void pollWindowEvents();
    bool windowShouldClose() const;

    /// The device; null before initialize().
    device::Device* getDevice() const { return _device.get(); }
    /// The compiled programs of this system. Only while it is initialised.
    ProgramLibrary& getProgramLibrary() const { return *_programLibrary; }
    /// The constants on the device. Only while the system is initialised.
    ConstantPool& getConstantPool() const { return *_constantPool; }
    /// Counts the calls of frame() that drew.
    uint64_t getFrameNumber() const { return _frameNumber; }

private:
    friend class ovCommon::MaybeSingletonClass<System>;
    friend class Resource;

    explicit System(bool);
    bool _start(const Configuration& configuration, ovMemory::UniquePtr<device::Device> device,
                ovMemory::StringView error);
    void _registerResource(Resource* resource);
    void _unregisterResource(Resource* resource);
    void _advanceTime();
    void _reportDebugErrors();
    void _executePass(CompositorPass& pass, const PassExecution& execution);
    bool _canDraw(const RenderContext* context) const;

    Configuration _configuration;
    ovMemory::UniquePtr<device::Device> _device;
    ovMemory::UniquePtr<ProgramLibrary> _programLibrary;
    ovMemory::UniquePtr<ConstantPool> _constantPool;
    ovMemory::Buffer<Resource*> _resources; ///< every resource of this system, managed or not
    uint64_t _resourcesMade = 0;
    uint64_t _sceneRevision = 1;
    uint64_t _frameNumber = 0;
    FrameTime _frameTime;
    double _startSeconds = 0.0;     ///< of the steady clock, at initialize()
    double _lastFrameSeconds = 0.0; ///< since initialize()
    bool _timeIsFixed = false;
    bool _passTimingEnabled = false;
    bool _passIsMeasured = false; ///< a pass is running under the timer
    ovMemory::Buffer<PassTiming> _passTimings;
    ovMemory::UniquePtr<device::GpuTimer> _passTimer;

    ovMemory::UniquePtr<TextureManager> _textures;
    ovMemory::UniquePtr<SamplerManager> _samplers;
    ovMemory::UniquePtr<ProgramManager> _programs;
    ovMemory::UniquePtr<ShaderManager> _shaders;
    ovMemory::UniquePtr<CameraManager> _cameras;
    ovMemory::UniquePtr<ViewportManager> _viewports;
    ovMemory::UniquePtr<CompositorManager> _compositors;
    ovMemory::UniquePtr<RenderContextManager> _renderContexts;
    ovMemory::UniquePtr<MeshManager> _meshes;
    ovMemory::UniquePtr<NodeManager> _nodes;
    ovMemory::UniquePtr<RenderQueueManager> _renderQueues;
    ovMemory::UniquePtr<ResourceManager> _resourceManager;
};

} // namespace ovGraphics

// The compiled programs of a system: each text is compiled once.
#pragma once

#include <cstdint>
#include <functional>
#include <ovCommon/Api.h>
#include <ovGraphics/shading/CompiledProgram.h>
#include <ovGraphics/shading/ProgramDiskCache.h>
#include <unordered_map>

namespace ovGraphics {

namespace device {
class Device;
class GpuProgram;
} // namespace device

/// A program on the device with its interface. Shared by every Program of the same text.
struct LoadedProgram {
    shading::CompiledProgram compiled;
    ovMemory::UniquePtr<device::GpuProgram> gpuProgram;
    unsigned int users = 0;
    unsigned int inputLayout =
        0; ///< a number that stands for the list of attributes; the same for equal lists
};

/// How the programs of a library came to be.
struct ProgramLibraryStatistics {
    uint64_t compiled = 0;     ///< cross-compiled from text
    uint64_t fromDisk = 0;     ///< read from the cache folder
    uint64_t fromMemory = 0;   ///< shared with a program of the same text
    double milliseconds = 0.0; ///< that compiling and reading took
};

/// Compiles programs, shares those of equal text, and keeps them on disk when the configuration names a
/// folder.
class OV_API ProgramLibrary {
public:
    ProgramLibrary(device::Device& device, ovMemory::String cacheFolder);
    ~ProgramLibrary();

    /// The program of a text, with one more user. @return null with one message in error; warnings gets the
    /// compilers' warnings, and a cache folder that cannot be written to
    const LoadedProgram* acquire(const shading::ProgramText& text, ovMemory::String& error,
                                 ovMemory::String& warnings);
    /// Takes one user away; the last one frees the program.
    void release(const LoadedProgram* program);

    const ProgramLibraryStatistics& getStatistics() const { return _statistics; }

    /// Is told each text that is acquired from now on, also where it is shared; an empty function ends it.
    void setObserver(std::function<void(const shading::ProgramText& text)> observer) {
        _observer = std::move(observer);
    }

private:
    ovMemory::UniquePtr<LoadedProgram> _load(const shading::ProgramText& text, ovMemory::String& error,
                                             ovMemory::String& warnings);
    ovMemory::UniquePtr<LoadedProgram> _loadFromDisk(const shading::ProgramText& text);
    unsigned int _inputLayoutOf(const ovMemory::Buffer<shading::AttributeInfo>& attributes);
    ovMemory::UniquePtr<LoadedProgram> _compile(const shading::ProgramText& text, ovMemory::String& error,
                                                ovMemory::String& warnings);

    device::Device& _device;
    shading::ProgramDiskCache _diskCache;
    ProgramLibraryStatistics _statistics;
    std::function<void(const shading::ProgramText& text)> _observer;
    std::unordered_map<ovMemory::String, ovMemory::UniquePtr<LoadedProgram>> _programs; ///< by the full text
    ovMemory::Buffer<ovMemory::Buffer<shading::AttributeInfo>>
        _inputLayouts; ///< each list of attributes once
};

} // namespace ovGraphics

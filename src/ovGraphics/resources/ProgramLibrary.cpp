#include <ovGraphics/resources/ProgramLibrary.h>

#include <algorithm>
#include <chrono>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/shading/CrossCompiler.h>

namespace ovGraphics {

namespace {

/// Everything that decides what a program compiles to; the name in messages does not.
ovMemory::String keyOf(const shading::ProgramText& text) {
    return shading::getFullText(text, shading::STAGE::VERTEX) + '\0' +
           shading::getFullText(text, shading::STAGE::PIXEL);
}

// The version too: after an update a driver may refuse its old binaries, or worse, take them.
ovMemory::String driverKeyOf(const device::DeviceInfo& info) {
    return info.vendor + '\n' + info.renderer + '\n' + info.version;
}

} // namespace

ProgramLibrary::ProgramLibrary(device::Device& device, ovMemory::String cacheFolder)
    : _device(device)
    , _diskCache(std::move(cacheFolder), driverKeyOf(device.getInfo())) {}

ProgramLibrary::~ProgramLibrary() = default;

const LoadedProgram* ProgramLibrary::acquire(const shading::ProgramText& text, ovMemory::String& error,
                                             ovMemory::String& warnings) {
    if (_observer)
        _observer(text);
    ovMemory::String key = keyOf(text);
    const auto known = _programs.find(key);
    if (known != _programs.end()) {
        ++_statistics.fromMemory;
        ++known->second->users;
        return known->second.get();
    }
    ovMemory::UniquePtr<LoadedProgram> program = _load(text, error, warnings);
    if (!program)
        return nullptr;
    program->users = 1;
    program->inputLayout = _inputLayoutOf(program->compiled.attributes);
    return _programs.emplace(std::move(key), std::move(program)).first->second.get();
}

void ProgramLibrary::release(const LoadedProgram* program) {
    // A search, because programs are released rarely and the key would have to be put together anew for a
    // look-up.
    for (auto entry = _programs.begin(); entry != _programs.end(); ++entry) {
        if (entry->second.get() != program)
            continue;
        if (--entry->second->users == 0)
            _programs.erase(entry);
        return;
    }
}

ovMemory::UniquePtr<LoadedProgram>
ProgramLibrary::_load(const shading::ProgramText& text, ovMemory::String& error, ovMemory::String& warnings) {
    const auto start = std::chrono::steady_clock::now();
    ovMemory::UniquePtr<LoadedProgram> program = _loadFromDisk(text);
    if (!program)
        program = _compile(text, error, warnings);
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    _statistics.milliseconds += elapsed.count();
    return program;
}

ovMemory::UniquePtr<LoadedProgram> ProgramLibrary::_loadFromDisk(const shading::ProgramText& text) {
    ovMemory::UniquePtr<shading::CachedProgram> cached = _diskCache.load(text);
    if (!cached)
        return nullptr;
    auto program = std::make_unique<LoadedProgram>();
    ovMemory::String
        refusal; // a text that the driver refuses now is compiled anew, and fails there if it must
    program->gpuProgram =
        _device.createProgram(cached->program, cached->driverBinary, cached->driverBinaryFormat, refusal);
    // Without a message: the program is compiled from its text then, and only that failure counts.
    if (!program->gpuProgram)
        return nullptr;
    program->compiled = std::move(cached->program);
    ++_statistics.fromDisk;
    return program;
}

// A small number instead of the list is what meshes compare for each draw. There are few lists, since most
// programs read the same attributes.
unsigned int ProgramLibrary::_inputLayoutOf(const ovMemory::Buffer<shading::AttributeInfo>& attributes) {
    const auto known = std::find(_inputLayouts.begin(), _inputLayouts.end(), attributes);
    const auto place = known - _inputLayouts.begin();
    if (known == _inputLayouts.end())
        _inputLayouts.push_back(attributes);
    return static_cast<unsigned int>(place);
}

ovMemory::UniquePtr<LoadedProgram> ProgramLibrary::_compile(const shading::ProgramText& text,
                                                            ovMemory::String& error,
                                                            ovMemory::String& warnings) {
    shading::CompileResult result = shading::compile(text);
    warnings = result.warning;
    if (!result) {
        error = result.error;
        return nullptr;
    }
    auto program = std::make_unique<LoadedProgram>();
    program->gpuProgram = _device.createProgram(*result.program, {}, 0, error);
    if (!program->gpuProgram)
        return nullptr;
    ++_statistics.compiled;

    shading::CachedProgram cached;
    _device.getProgramBinary(*program->gpuProgram, cached.driverBinary, cached.driverBinaryFormat);
    cached.program = *result.program;
    ovMemory::String storeError;
    // A warning only: the program is there, and will just be compiled again next time.
    if (!_diskCache.store(text, cached, &storeError))
        warnings += (warnings.empty() ? "" : "\n") + storeError;
    program->compiled = std::move(cached.program);
    return program;
}

} // namespace ovGraphics

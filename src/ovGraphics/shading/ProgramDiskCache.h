// Compiled programs kept on disk between processes.
#pragma once

#include <ovCommon/Api.h>
#include <ovGraphics/shading/CompiledProgram.h>

namespace ovGraphics::shading {

/// A compiled program together with the driver's own binary of it.
struct CachedProgram {
    CompiledProgram program;
    ovMemory::Buffer<unsigned char> driverBinary; ///< empty when the driver offers none
    unsigned int driverBinaryFormat = 0;          ///< the driver's number for the binary's format
};

/// A folder of compiled programs, one file a program, keyed by the full text of both stages, the language,
/// the compilers' versions and the driver. A file that is cut short, corrupt or of other versions counts as
/// absent and is replaced by the next store. Files are written beside their place and renamed, so two
/// processes may share the folder; nothing is locked.
class OV_API ProgramDiskCache {
public:
    /// @param folder created when missing; empty switches the cache off (load finds nothing, store does
    /// nothing)
    /// @param driverKey text that names the driver and its version; binaries of another driver are never
    /// returned
    ProgramDiskCache(ovMemory::String folder, ovMemory::String driverKey);

    /// The program stored for this text, or null.
    ovMemory::UniquePtr<CachedProgram> load(const ProgramText& text) const;

    /// Keeps a program. @return false and the reason in *error when the file could not be written; the cache
    /// then holds what it held before.
    bool store(const ProgramText& text, const CachedProgram& program,
               ovMemory::String* error = nullptr) const;

private:
    ovMemory::String _folder;
    ovMemory::String _driverKey;
};

} // namespace ovGraphics::shading

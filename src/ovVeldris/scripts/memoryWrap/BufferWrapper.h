// Buffers of bytes in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovMemoryWrap {

/// Binds ovMemory::Buffer<unsigned char>. Scripts own the buffers that they get, and cannot change their
/// size: what looks into them stays valid.
class BufferWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovMemoryWrap

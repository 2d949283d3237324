#include <cstdint>
#include <cstdlib>
#include <ovGraphics/shading/detail/CachedProgramFormat.h>

using namespace ovGraphics::shading;

/// Reads the data as a whole file and as the content behind a header. What is taken must write back to
/// itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ovMemory::BufferView<const char> bytes(reinterpret_cast<const char*>(data), size);
    detail::unpackCachedProgram(bytes, "");
    if (const auto program = detail::unpackCachedContent(bytes, "")) {
        const ovMemory::Buffer<char> packed = detail::packCachedProgram("", *program);
        const auto again = detail::unpackCachedProgram(packed, "");
        if (!again || !(again->program == program->program) || again->driverBinary != program->driverBinary) {
            std::abort();
        }
    }
    return 0;
}

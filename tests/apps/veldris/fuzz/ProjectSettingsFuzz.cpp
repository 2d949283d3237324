// Whatever the settings of a project are, they give settings or problems, and what they give reads back.
#include <cstdlib>
#include <veldris/projects/ProjectSettings.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ovMemory::Buffer<ovMemory::String> problems;
    const auto settings = veldris::readSettings({reinterpret_cast<const char*>(data), size}, problems);
    // A member that is given twice is kept once.
    ovMemory::Buffer<ovMemory::String> none;
    const ovMemory::String once = veldris::writeSettings(settings);
    if (veldris::writeSettings(veldris::readSettings(once, none)) != once || !none.empty())
        std::abort();
    return 0;
}

#include <veldris/console/InputFile.h>

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <veldris/console/Console.h>

namespace veldris {

namespace {

using ovMemory::String;

constexpr std::size_t CHUNK_BYTES = std::size_t(1) << 16;

bool writeChunk(int file, const char* bytes, ssize_t count) {
    while (count > 0) {
        const ssize_t written = ::write(file, bytes, static_cast<std::size_t>(count));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes += written;
        count -= written;
    }
    return true;
}

/// Copies standard input to its end. @return the bytes, or -1 with errno
ssize_t copyStandardInput(int file) {
    char chunk[CHUNK_BYTES];
    ssize_t size = 0;
    while (true) {
        const ssize_t count = ::read(STDIN_FILENO, chunk, sizeof(chunk));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 || !writeChunk(file, chunk, count))
            return -1;
        if (count == 0)
            return size;
        size += count;
    }
}

} // namespace

InputFile::~InputFile() {
    if (_file >= 0)
        ::close(_file);
}

bool InputFile::open(String& path, Console& console, String& error) {
    if (path != "-")
        return true;
    // Readers take paths, look at sizes and come back: a file in memory serves them all.
    // A closed one is asked for first: the new file would take its number.
    const bool isOpen = ::fcntl(STDIN_FILENO, F_GETFD) >= 0;
    _file = isOpen ? ::memfd_create("standard input", MFD_CLOEXEC) : -1;
    const ssize_t size = _file < 0 ? -1 : copyStandardInput(_file);
    if (size < 0)
        error = fmt::format("standard input cannot be read: {}; give the name of a file instead.",
                            std::generic_category().message(errno));
    else if (size == 0)
        error = "standard input is empty; '-' reads it once, to its end.";
    if (!error.empty())
        return false;
    path = fmt::format("/proc/self/fd/{}", _file);
    console.callFile(path, "standard input");
    return true;
}

} // namespace veldris

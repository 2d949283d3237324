#include <ovResources/Files.h>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ovResources {

using ovMemory::Result;
using ovMemory::String;
using ovMemory::StringView;

namespace {

// As many links as Linux itself follows in one path.
constexpr int MAXIMUM_LINKS = 40;
constexpr std::size_t CHUNK_BYTES = std::size_t(1) << 20;

// A file that is open, closed at the end of the scope.
class OpenFile {
public:
    explicit OpenFile(int file)
        : _file(file) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (_file >= 0)
            ::close(_file);
    }
    int get() const { return _file; }
    // Some file systems report a full disk only here.
    bool close() {
        const int file = _file;
        _file = -1;
        return ::close(file) == 0;
    }

private:
    int _file;
};

StringView adviceFor(int code, bool writing) {
    switch (code) {
    case ENOENT:
        return writing ? "create the folder first" : "check the path";
    case ENOTDIR:
        return "a part of the path is a file, not a folder";
    case EACCES:
    case EPERM:
    case EROFS:
        return writing ? "choose a place where you may write" : "ask for permission to read it";
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return "free space or write elsewhere";
    case ENXIO:
        return "start what reads it first";
    case ELOOP:
        return "remove the loop of symbolic links";
    case ENAMETOOLONG:
        return "shorten the path";
    default:
        return "check the path and the disk";
    }
}

Result fail(StringView action, StringView path, StringView reason, StringView advice) {
    String error(action);
    error.append(" file '").append(path).append("' failed: ").append(reason).append("; ").append(advice);
    return ovMemory::failed(std::move(error), String(path));
}

Result failWithCode(bool writing, StringView path, int code) {
    return fail(writing ? "Writing" : "Reading", path, std::generic_category().message(code),
                adviceFor(code, writing));
}

StringView kindOf(mode_t mode) {
    return S_ISDIR(mode) ? "it is a folder" : "it is a device, a pipe or a socket, not a regular file";
}

// Whether the text can be a path at all; the system would cut it at a zero byte and take another file.
Result checkPath(StringView path, bool writing) {
    const StringView action = writing ? "Writing" : "Reading";
    if (path.empty())
        return fail(action, path, "the path is empty", "name a file");
    if (path.find('\0') != StringView::npos)
        return fail(action, path.substr(0, path.find('\0')), "the path contains a zero byte",
                    "remove it from the path");
    return {};
}

// Whether so many bytes can be in memory at all. Where the system promises more memory than it has, a
// mistaken size would otherwise not fail but fill the machine.
bool fitsIntoMemory(off_t size) {
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageBytes = ::sysconf(_SC_PAGESIZE);
    return pages <= 0 || pageBytes <= 0 || double(size) < double(pages) * double(pageBytes);
}

Result failForSize(StringView path, off_t size) {
    return fail("Reading", path, std::to_string(size) + " bytes do not fit into memory",
                "use a smaller file");
}

bool readAll(int file, std::size_t expectedSize, ovMemory::Buffer<char>& bytes) {
    std::size_t size = 0;
    // One byte more than expected, so that the end is found without growing the buffer. The size is only a
    // hint: the system's own files state 0.
    bytes.resize(expectedSize + 1);
    while (true) {
        if (size == bytes.size())
            bytes.resize(size + CHUNK_BYTES);
        const ssize_t count = ::read(file, bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        if (count == 0)
            break;
        size += std::size_t(count);
    }
    bytes.resize(size);
    return true;
}

bool writeAll(int file, ovMemory::BufferView<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        bytes = bytes.subspan(std::size_t(count));
    }
    return true;
}

// Follows symbolic links by hand, as the last one may point to a file that does not exist yet. Returns 0 or
// an error code.
int followLinks(std::filesystem::path& path) {
    std::error_code code;
    for (int links = 0; std::filesystem::is_symlink(path, code); ++links) {
        if (links == MAXIMUM_LINKS)
            return ELOOP;
        const std::filesystem::path next = std::filesystem::read_symlink(path, code);
        if (code)
            return code.value();
        path = path.parent_path() / next;
    }
    return 0;
}

// Opens a new file of a free name beside the target. The name is short and its own, since the target's may
// already have the greatest length. Returns the file or -1 with errno.
int openTemporary(const std::filesystem::path& target, mode_t mode, String& temporary) {
    static std::atomic<unsigned> counter{0};
    while (true) {
        const String name = ".ov-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp";
        temporary = (target.parent_path() / name).native();
        const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file >= 0 || errno != EEXIST)
            return file;
    }
}

// What a path leads to, symbolic links followed.
struct Target {
    std::filesystem::path path;
    bool isThere = false;
    struct stat state = {}; ///< of what is there
};

// Finds what is to be written, and checks what any way of writing asks for.
Result findTarget(StringView path, Target& target) {
    if (const Result checked = checkPath(path, true); !checked)
        return checked;
    target.path = path;
    if (const int code = followLinks(target.path))
        return failWithCode(true, path, code);
    target.isThere = ::stat(target.path.c_str(), &target.state) == 0;
    if (!target.isThere && errno != ENOENT)
        return failWithCode(true, path, errno);
    if (target.isThere && S_ISDIR(target.state.st_mode))
        return fail("Writing", path, kindOf(target.state.st_mode), "name a file");
    // A rename alone would replace files that are protected against writing.
    if (target.isThere && S_ISREG(target.state.st_mode) && ::access(target.path.c_str(), W_OK) != 0)
        return failWithCode(true, path, errno);
    if (!target.path.has_filename())
        return fail("Writing", path, "the path ends in a separator", "name a file");
    return {};
}

// Writes the temporary and renames it. Returns 0 or an error code, and then leaves no temporary.
int replaceFile(const Target& target, ovMemory::BufferView<const char> bytes) {
    String temporary;
    OpenFile file(openTemporary(target.path, 0666, temporary));
    if (file.get() < 0)
        return errno;
    // Best effort: some file systems have no permissions to keep.
    if (target.isThere && ::fchmod(file.get(), target.state.st_mode & 0777) != 0)
        errno = 0;
    if (writeAll(file.get(), bytes) && file.close() && ::rename(temporary.c_str(), target.path.c_str()) == 0)
        return 0;
    const int code = errno;
    ::unlink(temporary.c_str());
    return code;
}

// Whether an error of replaceFile() is about the folder or the name, and not about room on the disk: the file
// itself may still be written. EBUSY and EXDEV come for a file that is mounted by itself.
bool forbidsReplacing(int code) {
    return code == EACCES || code == EPERM || code == EROFS || code == EBUSY || code == EXDEV;
}

// Writes what is there over itself. The reason says why it is not replaced.
Result writeInPlace(StringView path, const Target& target, ovMemory::BufferView<const char> bytes,
                    const String& reason) {
    // Opening a pipe would otherwise wait for a reader, perhaps for ever.
    OpenFile file(::open(target.path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NONBLOCK));
    // Once it is open, a slow reader is waited for.
    if (file.get() < 0 || ::fcntl(file.get(), F_SETFL, 0) != 0 || !writeAll(file.get(), bytes) ||
        !file.close())
        return failWithCode(true, path, errno);
    Result written;
    written.place = path;
    written.warning = "File '" + String(path) + "' was written in place: " + reason +
                      "; who reads it meanwhile may find a part.";
    return written;
}

} // namespace

Result readFile(StringView path, ovMemory::Buffer<char>& bytes) {
    bytes.clear();
    if (const Result checked = checkPath(path, false); !checked)
        return checked;
    // Not blocking: opening a pipe would otherwise wait for a writer, perhaps for ever.
    const OpenFile file(::open(String(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat state = {};
    if (file.get() < 0 || ::fstat(file.get(), &state) != 0)
        return failWithCode(false, path, errno);
    if (!S_ISREG(state.st_mode))
        return fail("Reading", path, kindOf(state.st_mode), "name a file");
    if (!fitsIntoMemory(state.st_size))
        return failForSize(path, state.st_size);
    try {
        if (readAll(file.get(), std::size_t(state.st_size), bytes))
            return {};
        const int code = errno;
        bytes = {};
        return failWithCode(false, path, code);
    } catch (const std::bad_alloc&) {
        bytes = {};
        return failForSize(path, state.st_size);
    }
}

Result writeFileAtomically(StringView path, ovMemory::BufferView<const char> bytes) {
    Target target;
    if (const Result found = findTarget(path, target); !found)
        return found;
    if (target.isThere && !S_ISREG(target.state.st_mode))
        return fail("Writing", path, kindOf(target.state.st_mode), "name a file");
    if (const int code = replaceFile(target, bytes))
        return failWithCode(true, path, code);
    return {};
}

Result checkWritable(StringView path) {
    if (const Result checked = checkPath(path, true); !checked)
        return checked;
    std::filesystem::path target(path);
    if (const int code = followLinks(target))
        return failWithCode(true, path, code);
    struct stat existing = {};
    const bool exists = ::stat(target.c_str(), &existing) == 0;
    if (!exists && errno != ENOENT)
        return failWithCode(true, path, errno);
    if (exists && S_ISDIR(existing.st_mode))
        return fail("Writing", path, kindOf(existing.st_mode), "name a file");
    if (!target.has_filename())
        return fail("Writing", path, "the path ends in a separator", "name a file");
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    const std::filesystem::path& asked = exists ? target : folder;
    if (::faccessat(AT_FDCWD, asked.c_str(), exists ? W_OK : W_OK | X_OK, AT_EACCESS) != 0)
        return failWithCode(true, path, errno);
    return {};
}

Result writeFileAtomically(StringView path, ovMemory::BufferView<const unsigned char> bytes) {
    return writeFileAtomically(
        path, ovMemory::BufferView<const char>(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

Result writeFile(StringView path, ovMemory::BufferView<const char> bytes) {
    Target target;
    if (const Result found = findTarget(path, target); !found)
        return found;
    if (!target.isThere || (S_ISREG(target.state.st_mode) && target.state.st_nlink == 1)) {
        const int code = replaceFile(target, bytes);
        if (code == 0)
            return {};
        if (!target.isThere || !forbidsReplacing(code))
            return failWithCode(true, path, code);
        return writeInPlace(path, target, bytes, std::generic_category().message(code));
    }
    if (S_ISREG(target.state.st_mode))
        return writeInPlace(path, target, bytes,
                            "it has " + std::to_string(target.state.st_nlink) + " names");
    return writeInPlace(path, target, bytes, String(kindOf(target.state.st_mode)));
}

} // namespace ovResources

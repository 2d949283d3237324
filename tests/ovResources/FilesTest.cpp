#include <ovResources/Files.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <support/TemporaryFolder.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace ovResources;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
namespace fs = std::filesystem;

namespace {

// The test's own way to the disk, not the one under test.
void put(const String& path, StringView content) {
    std::ofstream(path, std::ios::binary) << content;
}

String take(const String& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t countEntries(const String& folder) {
    return std::size_t(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

bool writeText(const String& path, StringView text, String& error) {
    const ovMemory::Result written =
        writeFileAtomically(path, ovMemory::BufferView<const char>(text.data(), text.size()));
    EXPECT_TRUE(written || written.place == path.substr(0, path.find('\0'))) << written.place;
    error = written.error;
    return error.empty();
}

bool readBytes(const String& path, Buffer<char>& bytes, String& error) {
    const ovMemory::Result read = readFile(path, bytes);
    EXPECT_TRUE(read || read.place == path.substr(0, path.find('\0'))) << read.place;
    error = read.error;
    return error.empty();
}

String allBytes() {
    String bytes;
    for (int i = 0; i < 3 * 256; ++i)
        bytes += char(i % 256);
    return bytes;
}

// Permissions do not bind the superuser: for the length of the scope such a process acts as a plain user.
class PlainUser {
public:
    PlainUser() {
        if (::geteuid() == 0)
            _changed = ::seteuid(65534) == 0;
    }
    ~PlainUser() {
        if (_changed && ::seteuid(0) != 0)
            std::abort();
    }

private:
    bool _changed = false;
};

} // namespace

TEST(FilesTest, WhatIsWrittenIsReadBack) {
    const TemporaryFolder folder;
    const String longName(255, 'n');
    const StringView names[] = {
        "plain.bin", "with space.bin",          "\xC3\xA9t\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC.bin",
        ".hidden",   "new\nline \"quoted\" $x", "-rf",
        longName};
    const String contents[] = {allBytes(), "", "x", String((1 << 20) + 3, 'y')};
    for (const StringView name : names) {
        for (const String& content : contents) {
            const String path = folder.getPath(name);
            String error = "left over";
            EXPECT_TRUE(writeText(path, content, error)) << error;
            EXPECT_EQ(error, "");
            EXPECT_EQ(take(path), content);
            Buffer<char> bytes = {'l', 'e', 'f', 't'};
            error = "left over";
            EXPECT_TRUE(readBytes(path, bytes, error)) << error;
            EXPECT_EQ(error, "");
            EXPECT_EQ(String(bytes.begin(), bytes.end()), content);
        }
    }
    EXPECT_EQ(countEntries(folder.getPath()), std::size(names)) << "temporary files were left";
}

TEST(FilesTest, UnsignedBytesAreWrittenAlike) {
    const TemporaryFolder folder;
    const Buffer<unsigned char> bytes = {0, 127, 128, 255, '\n', '\r'};
    ASSERT_TRUE(writeFileAtomically(folder.getPath("f"), bytes));
    EXPECT_EQ(take(folder.getPath("f")), String(bytes.begin(), bytes.end()));
}

TEST(FilesTest, ReadsFilesWhoseSizeTheSystemDoesNotState) {
    Buffer<char> bytes;
    String error;
    ASSERT_TRUE(readBytes("/proc/self/stat", bytes, error)) << error;
    EXPECT_TRUE(String(bytes.begin(), bytes.end()).starts_with(std::to_string(::getpid()) + " ("));
}

TEST(FilesTest, PathsThatCannotBeReadOrWrittenAreExplained) {
    const TemporaryFolder folder;
    put(folder.getPath("file"), "old");
    fs::create_directory(folder.getPath("folder"));
    fs::create_symlink("loop2", folder.getPath("loop1"));
    fs::create_symlink("loop1", folder.getPath("loop2"));
    fs::create_symlink("self/x", folder.getPath("self"));
    ASSERT_EQ(::mkfifo(folder.getPath("pipe").c_str(), 0666), 0);
    const String missing = "No such file or directory";
    const String loop = "Too many levels of symbolic links; remove the loop of symbolic links";
    const String longName(256, 'n');
    const String tooLong = "File name too long; shorten the path";
    const String notFolder = "Not a directory; a part of the path is a file, not a folder";
    const String special = "it is a device, a pipe or a socket, not a regular file; name a file";
    const String isFolder = "it is a folder; name a file";
    const struct {
        String path, readReason, writeReason;
    } cases[] = {
        {"", "the path is empty; name a file", "the path is empty; name a file"},
        {folder.getPath("none/f"), missing + "; check the path", missing + "; create the folder first"},
        {folder.getPath("none/"), missing + "; check the path", "the path ends in a separator; name a file"},
        {folder.getPath("folder"), isFolder, isFolder},
        {folder.getPath("folder/"), isFolder, isFolder},
        {folder.getPath("."), isFolder, isFolder},
        {folder.getPath("file/f"), notFolder, notFolder},
        {folder.getPath("file/"), notFolder, notFolder},
        {folder.getPath("loop1"), loop, loop},
        {folder.getPath("loop1/f"), loop, loop},
        {folder.getPath("self"), loop, loop},
        {folder.getPath("pipe"), special, special},
        {"/dev/null", special, special},
        {"/dev/zero", special, special},
        {folder.getPath(longName), tooLong, tooLong},
    };
    const std::size_t entries = countEntries(folder.getPath());
    for (const auto& row : cases) {
        Buffer<char> bytes = {'l', 'e', 'f', 't'};
        String error;
        EXPECT_FALSE(readBytes(row.path, bytes, error)) << row.path;
        EXPECT_TRUE(bytes.empty());
        EXPECT_EQ(error, "Reading file '" + row.path + "' failed: " + row.readReason);
        EXPECT_FALSE(writeText(row.path, "new", error)) << row.path;
        EXPECT_EQ(error, "Writing file '" + row.path + "' failed: " + row.writeReason);
        if (row.writeReason != special) { // what may be written in place
            EXPECT_EQ(ovResources::checkWritable(row.path).error, error);
        }
    }
    EXPECT_EQ(countEntries(folder.getPath()), entries);
    EXPECT_EQ(take(folder.getPath("file")), "old");
}

TEST(FilesTest, LookingWhetherAFileCanBeWrittenWritesNothing) {
    const TemporaryFolder folder;
    put(folder.getPath("file"), "old");
    for (const StringView name : {"file", "new"}) {
        const ovMemory::Result checked = ovResources::checkWritable(folder.getPath(name));
        EXPECT_TRUE(checked) << checked.error;
    }
    EXPECT_TRUE(ovResources::checkWritable("a-new-file-of-the-current-folder"));
    EXPECT_EQ(countEntries(folder.getPath()), 1u);
    EXPECT_EQ(take(folder.getPath("file")), "old");
}

TEST(FilesTest, PathsWithAZeroByteAreNotCut) {
    const TemporaryFolder folder;
    put(folder.getPath("file"), "old");
    const String path = folder.getPath(StringView("file\0.png", 9));
    Buffer<char> bytes;
    String error;
    const String rest = " file '" + folder.getPath("file") +
                        "' failed: the path contains a zero byte; remove it from the path";
    EXPECT_FALSE(readBytes(path, bytes, error));
    EXPECT_EQ(error, "Reading" + rest);
    EXPECT_FALSE(writeText(path, "new", error));
    EXPECT_EQ(error, "Writing" + rest);
    EXPECT_EQ(take(folder.getPath("file")), "old");
}

TEST(FilesTest, PermissionsAreRespected) {
    const TemporaryFolder folder;
    put(folder.getPath("protected"), "old");
    fs::create_directory(folder.getPath("closed"));
    put(folder.getPath("closed/file"), "old");
    fs::permissions(folder.getPath("protected"), fs::perms::none);
    fs::permissions(folder.getPath("closed"), fs::perms::owner_read | fs::perms::owner_exec |
                                                  fs::perms::others_exec | fs::perms::others_read);
    fs::permissions(folder.getPath("closed/file"), fs::perms(0666));
    {
        const PlainUser user;
        String error;
        Buffer<char> bytes;
        EXPECT_FALSE(readBytes(folder.getPath("protected"), bytes, error));
        EXPECT_EQ(error, "Reading file '" + folder.getPath("protected") +
                             "' failed: Permission denied; ask for permission to read it");
        for (const StringView name : {"protected", "closed/new", "closed/file"}) {
            EXPECT_FALSE(writeText(folder.getPath(name), "new", error));
            EXPECT_EQ(error, "Writing file '" + folder.getPath(name) +
                                 "' failed: Permission denied; choose a place where you may write");
        }
        for (const StringView name : {"protected", "closed/new"})
            EXPECT_EQ(ovResources::checkWritable(folder.getPath(name)).error,
                      "Writing file '" + folder.getPath(name) +
                          "' failed: Permission denied; choose a place where you may write");
    }
    fs::permissions(folder.getPath("protected"), fs::perms(0644));
    fs::permissions(folder.getPath("closed"), fs::perms(0755));
    EXPECT_EQ(take(folder.getPath("protected")), "old");
    EXPECT_EQ(take(folder.getPath("closed/file")), "old");
    EXPECT_EQ(countEntries(folder.getPath("closed")), 1u);
}

TEST(FilesTest, ExistingPermissionsAreKeptAndNewOnesFollowTheMask) {
    const TemporaryFolder folder;
    const mode_t mask = ::umask(027);
    String error;
    EXPECT_TRUE(writeText(folder.getPath("new"), "x", error)) << error;
    put(folder.getPath("old"), "x");
    fs::permissions(folder.getPath("old"), fs::perms(0604));
    EXPECT_TRUE(writeText(folder.getPath("old"), "y", error)) << error;
    ::umask(mask);
    EXPECT_EQ(fs::status(folder.getPath("new")).permissions(), fs::perms(0640));
    EXPECT_EQ(fs::status(folder.getPath("old")).permissions(), fs::perms(0604));
}

TEST(FilesTest, LinksAreFollowedAndStay) {
    const TemporaryFolder folder;
    fs::create_directory(folder.getPath("real"));
    put(folder.getPath("real/target"), "old");
    fs::create_symlink("real/target", folder.getPath("relative"));
    fs::create_symlink(folder.getPath("relative"), folder.getPath("chain"));
    fs::create_symlink("real/not yet", folder.getPath("dangling"));
    const struct {
        StringView link, target;
    } cases[] = {{"relative", "real/target"}, {"chain", "real/target"}, {"dangling", "real/not yet"}};
    for (const auto& row : cases) {
        String error;
        EXPECT_TRUE(writeText(folder.getPath(row.link), row.link, error)) << error;
        EXPECT_TRUE(fs::is_symlink(folder.getPath(row.link)));
        EXPECT_EQ(take(folder.getPath(row.target)), row.link);
    }
}

TEST(FilesTest, AFailureInTheMiddleLeavesTheOldFile) {
    const TemporaryFolder folder;
    put(folder.getPath("file"), "old");
    // A limit on the size of files stands for a full disk: some of the bytes are written, then an error
    // comes.
    rlimit kept = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &kept), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = kept;
    limited.rlim_cur = 1000;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    String error;
    const bool written = writeText(folder.getPath("file"), String(100000, 'n'), error);
    ::setrlimit(RLIMIT_FSIZE, &kept);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(error, "Writing file '" + folder.getPath("file") +
                         "' failed: File too large; free space or write elsewhere");
    EXPECT_EQ(take(folder.getPath("file")), "old");
    EXPECT_EQ(countEntries(folder.getPath()), 1u);
}

TEST(FilesTest, WritingWhereReplacingIsPossibleReplaces) {
    const TemporaryFolder folder;
    const String path = folder.getPath("file");
    for (const char* const content : {"new", "replaced"}) {
        struct stat before = {};
        const bool wasThere = ::stat(path.c_str(), &before) == 0;
        const ovMemory::Result written = writeFile(path, StringView(content));
        EXPECT_EQ(written.error + written.warning, "");
        EXPECT_EQ(take(path), content);
        struct stat after = {};
        ASSERT_EQ(::stat(path.c_str(), &after), 0);
        EXPECT_TRUE(!wasThere || after.st_ino != before.st_ino) << "another file under the same name";
    }
    EXPECT_EQ(countEntries(folder.getPath()), 1u);
}

namespace {

// Writes a file by way of writeFile() and by a stream, which has to succeed as well: what it can, so can we.
void expectWrittenInPlace(const String& path, StringView reason) {
    EXPECT_TRUE(std::ofstream(path, std::ios::binary) << "longer than the new text");
    struct stat before = {};
    ASSERT_EQ(::stat(path.c_str(), &before), 0);
    const ovMemory::Result written = writeFile(path, StringView("in place"));
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.warning, "File '" + path + "' was written in place: " + String(reason) +
                                   "; who reads it meanwhile may find a part.");
    EXPECT_EQ(written.place, path);
    EXPECT_EQ(written.getStatus(), ovMemory::RESULT_STATUS::PARTLY_DONE);
    struct stat after = {};
    ASSERT_EQ(::stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "the same file";
}

} // namespace

TEST(FilesTest, WritesInPlaceWhereAStreamCanAndReplacingCannot) {
    const TemporaryFolder folder;
    for (const char* const name : {"closed", "sticky"}) {
        fs::create_directory(folder.getPath(name));
        put(folder.getPath(name) + "/file", "old");
        fs::permissions(folder.getPath(name) + "/file", fs::perms(0666));
    }
    fs::permissions(folder.getPath("closed"), fs::perms(0555));
    fs::permissions(folder.getPath("sticky"), fs::perms(01777)); // others' files may not be renamed over
    put(folder.getPath("first name"), "old");
    fs::create_hard_link(folder.getPath("first name"), folder.getPath("second name"));
    const bool isSuperuser = ::geteuid() == 0;
    {
        const PlainUser user;
        expectWrittenInPlace(folder.getPath("closed/file"), "Permission denied");
        if (isSuperuser) // a plain user has no files of somebody else to try
            expectWrittenInPlace(folder.getPath("sticky/file"), "Operation not permitted");
    }
    expectWrittenInPlace(folder.getPath("first name"), "it has 2 names");
    expectWrittenInPlace("/dev/null", "it is a device, a pipe or a socket, not a regular file");
    EXPECT_EQ(take(folder.getPath("closed/file")), "in place");
    EXPECT_EQ(take(folder.getPath("second name")), "in place");
    EXPECT_EQ(countEntries(folder.getPath("sticky")), 1u) << "a temporary was left";
    EXPECT_EQ(take(folder.getPath("sticky/file")), isSuperuser ? "in place" : "old");
    fs::permissions(folder.getPath("closed"), fs::perms(0755));
}

TEST(FilesTest, WritesAFileThatIsMountedByItself) {
    const TemporaryFolder folder;
    const String path = folder.getPath("mounted");
    put(path, "old");
    put(folder.getPath("source"), "old");
    if (::mount(folder.getPath("source").c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "mounting is not permitted here";
    expectWrittenInPlace(path, "Device or resource busy");
    ::umount(path.c_str());
    EXPECT_EQ(take(folder.getPath("source")), "in place");
    EXPECT_EQ(countEntries(folder.getPath()), 2u) << "a temporary was left";
}

TEST(FilesTest, WritingToPipesAndFullDevicesEnds) {
    const TemporaryFolder folder;
    const String pipe = folder.getPath("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(writeFile(pipe, StringView("x")).error,
              "Writing file '" + pipe + "' failed: No such device or address; start what reads it first");
    EXPECT_EQ(writeFile("/dev/full", StringView("x")).error,
              "Writing file '/dev/full' failed: No space left on device; free space or write elsewhere");
    EXPECT_EQ(writeFile(folder.getPath(), StringView("x")).error,
              "Writing file '" + folder.getPath() + "' failed: it is a folder; name a file");
    EXPECT_EQ(writeFile(folder.getPath("none/x"), StringView("x")).error,
              "Writing file '" + folder.getPath("none/x") +
                  "' failed: No such file or directory; create the folder first");

    // More than a pipe holds, so that the writer has to wait for the reader.
    const String content(1 << 20, 'p');
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    ASSERT_EQ(::fcntl(reader, F_SETFL, 0), 0);
    String received;
    std::thread reading([&] {
        char bytes[4096];
        ssize_t count = 0;
        while (received.size() < content.size() && (count = ::read(reader, bytes, sizeof(bytes))) >= 0)
            received.append(bytes, std::size_t(count));
    });
    EXPECT_EQ(writeFile(pipe, content).error, "");
    reading.join();
    ::close(reader);
    EXPECT_EQ(received, content);
}

TEST(FilesTest, ThreadsThatReadBesideWritersSeeWholeFilesOnly) {
    const TemporaryFolder folder;
    const String path = folder.getPath("file");
    const std::size_t size = 200000;
    put(path, String(size, 'a'));
    const auto write = [&](char letter) {
        String error;
        for (int i = 0; i < 50; ++i)
            EXPECT_TRUE(writeText(path, String(size, letter), error)) << error;
    };
    std::thread first(write, 'b');
    std::thread second(write, 'c');
    for (int i = 0; i < 100; ++i) {
        Buffer<char> bytes;
        String error;
        ASSERT_TRUE(readBytes(path, bytes, error)) << error;
        ASSERT_EQ(bytes.size(), size);
        ASSERT_EQ(String(bytes.begin(), bytes.end()), String(size, bytes[0])) << "a mixture";
    }
    first.join();
    second.join();
    EXPECT_EQ(countEntries(folder.getPath()), 1u);
}

TEST(FilesTest, AFileTooLargeForMemoryIsAnError) {
    const TemporaryFolder folder;
    const String path = folder.getPath("sparse");
    put(path, "x");
    // Nothing of it is on the disk, yet no machine's memory holds it. A file system that refuses such a size
    // cannot hold such a file either.
    const off_t size = off_t(1) << 43;
    if (::truncate(path.c_str(), size) != 0) {
        ASSERT_EQ(errno, EFBIG);
        return;
    }
    Buffer<char> bytes;
    String error;
    EXPECT_FALSE(readBytes(path, bytes, error));
    EXPECT_EQ(error, "Reading file '" + path + "' failed: " + std::to_string(size) +
                         " bytes do not fit into memory; use a smaller file");
    EXPECT_TRUE(bytes.empty());
}

// A folder of its own for each test that touches the disk.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <ovMemory/Memory.h>
#include <string>
#include <sys/stat.h>
#include <system_error>

/// A new empty folder that every user may read, removed with all it holds at the end of the scope.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = ::testing::TempDir() + "ov-test-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) {
            ADD_FAILURE() << "no temporary folder can be made as " << pattern;
            return;
        }
        // Without links, so that texts of paths compare equal.
        _path = std::filesystem::canonical(pattern).native();
        ::chmod(_path.c_str(), 0755);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }

    /// The folder, without a separator at the end.
    const ovMemory::String& getPath() const { return _path; }
    /// The path of a file or folder in it.
    ovMemory::String getPath(ovMemory::StringView name) const { return _path + "/" + ovMemory::String(name); }

private:
    ovMemory::String _path;
};

// A display for tests of windows.
#pragma once

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <ovMemory/Memory.h>
#include <support/TemporaryFolder.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

/// A virtual display of its own, ended with the object.
class VirtualDisplay {
public:
    VirtualDisplay() {
        int channel[2];
        if (pipe(channel) != 0)
            return;
        _process = fork();
        if (_process == 0) {
            close(channel[0]);
            // The server chooses a free number and writes it to the channel once it is ready.
            const ovMemory::String number = std::to_string(channel[1]);
            execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "640x480x24", "-nolisten",
                   "tcp", "-fbdir", _folder.getPath().c_str(), nullptr);
            _exit(NOT_FOUND);
        }
        close(channel[1]);
        char letter = 0; // the server writes the line end apart from the number
        while (read(channel[0], &letter, 1) == 1 && letter != '\n')
            _number += letter;
        close(channel[0]);
        if (!_number.empty())
            return;
        int status = 0;
        waitpid(std::exchange(_process, -1), &status, 0);
        _installed = !WIFEXITED(status) || WEXITSTATUS(status) != NOT_FOUND;
    }
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    ~VirtualDisplay() {
        if (_process <= 0)
            return;
        kill(_process, SIGTERM);
        waitpid(_process, nullptr, 0);
    }

    bool isInstalled() const { return _installed; }
    ovMemory::String getName() const { return _number.empty() ? "" : ":" + _number; }

    /// Red, green and blue of the screen. Xvfb keeps it in a file in the form of an X window dump: words of
    /// 32 bits, the highest byte first, then colours, then rows of 32-bit pixels with blue in the first byte.
    std::vector<unsigned char> readPixel(unsigned int x, unsigned int y) const {
        constexpr std::size_t HEADER_SIZE = 0;
        constexpr std::size_t BYTES_PER_LINE = 12;
        constexpr std::size_t COLOR_COUNT = 19;
        constexpr std::size_t COLOR_SIZE = 12;
        std::ifstream file(_folder.getPath() + "/Xvfb_screen0", std::ios::binary);
        const std::vector<unsigned char> dump{std::istreambuf_iterator<char>(file), {}};
        const auto word = [&dump](std::size_t index) {
            std::size_t value = 0;
            for (std::size_t i = index * 4; i < index * 4 + 4 && i < dump.size(); ++i)
                value = value * 256 + dump[i];
            return value;
        };
        const std::size_t at = word(HEADER_SIZE) + word(COLOR_COUNT) * COLOR_SIZE + y * word(BYTES_PER_LINE) +
                               std::size_t{x} * 4;
        return at + 3 < dump.size() ? std::vector<unsigned char>{dump[at + 2], dump[at + 1], dump[at]}
                                    : std::vector<unsigned char>{};
    }

private:
    static constexpr int NOT_FOUND = 127;
    TemporaryFolder _folder;
    pid_t _process = -1;
    bool _installed = true;
    ovMemory::String _number;
};

/// Has the windows of the test open on a display.
/// @return false when the test must end: it is skipped where Xvfb is not installed, and fails where that does
/// not start
inline bool openWindowsOn(const VirtualDisplay& display) {
    const ovMemory::String name = display.getName();
    if (!display.isInstalled())
        [] { GTEST_SKIP() << "Xvfb is not installed"; }();
    else
        EXPECT_NE(name, "") << "Xvfb did not start";
    if (name.empty())
        return false;
    setenv("DISPLAY", name.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    return true;
}

#include <veldris/console/Console.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <thread>
#include <unistd.h>

namespace {

using ovMemory::String;

/// What a console prints on the two streams.
struct Printed {
    String output;
    String error;
};

template <typename Speak>
Printed printedBy(bool isJson, const Speak& speak) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    veldris::Console console(isJson);
    speak(console);
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

TEST(ConsoleTest, resultsAndMessagesGoToTheirStreams) {
    const Printed printed = printedBy(false, [](veldris::Console& console) {
        console.print("picture.png");
        console.warn("");
        console.warn("it is odd.");
        EXPECT_EQ(console.fail("it broke."), 1);
        EXPECT_EQ(console.finish(3), 3);
    });
    EXPECT_EQ(printed.output, "picture.png\n");
    EXPECT_EQ(printed.error, "veldris: warning: it is odd.\nveldris: it broke.\n");
}

TEST(ConsoleTest, warningsOfOneKindAreToldOnceWithAnExample) {
    const Printed printed = printedBy(false, [](veldris::Console& console) {
        console.warnEach({"the skin 'left arm' of 40 joints is ignored.",
                          "the file's texture 'a' is missing.", "the skin 'it's' of 9 joints is ignored.",
                          "the file's texture 'b' is missing.", "the skin 'leg' of 7 joints is ignored.",
                          "the light's hue is lost."});
        console.finish(0);
        console.finish(0); // told already
    });
    EXPECT_EQ(printed.error,
              "veldris: warning: the skin 'left arm' of 40 joints is ignored. (2 more of this kind)\n"
              "veldris: warning: the file's texture 'a' is missing. (1 more of this kind)\n"
              "veldris: warning: the light's hue is lost.\n");
}

TEST(ConsoleTest, machinesReadJson) {
    const Printed printed = printedBy(true, [](veldris::Console& console) {
        console.warnEach({"odd \"1\"", "odd \"2\""});
        console.fail("it 'broke'\n");
    });
    EXPECT_EQ(printed.output, "");
    const std::size_t end = printed.error.find('\n');
    rapidjson::Document warning;
    warning.Parse(printed.error.substr(0, end).c_str());
    ASSERT_TRUE(warning.IsObject()) << printed.error;
    EXPECT_STREQ(warning["warning"].GetString(), "odd \"1\"");
    EXPECT_EQ(warning["count"].GetInt(), 2);
    rapidjson::Document error;
    error.Parse(printed.error.substr(end + 1).c_str());
    ASSERT_TRUE(error.IsObject()) << printed.error;
    EXPECT_STREQ(error["error"].GetString(), "it 'broke'\n");
}

/// What a run shows on a terminal while a step lasts.
String shownOnTerminal(bool isJson) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    EXPECT_TRUE(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    const int end = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    const int before = dup(STDERR_FILENO);
    dup2(end, STDERR_FILENO);
    {
        veldris::Console console(isJson);
        console.step("thinking");
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    }
    dup2(before, STDERR_FILENO);
    char shown[1024];
    const ssize_t size = read(terminal, shown, sizeof(shown));
    for (const int file : {before, end, terminal})
        close(file);
    return String(shown, size > 0 ? static_cast<std::size_t>(size) : 0);
}

TEST(ConsoleTest, aTerminalShowsProgressUnlessMachinesRead) {
    EXPECT_NE(shownOnTerminal(false).find("thinking, 1 s"), String::npos);
    EXPECT_EQ(shownOnTerminal(true), "");
}

TEST(ConsoleTest, dataOnStandardOutputIsNotMixedWithLines) {
    const Printed printed = printedBy(false, [](veldris::Console& console) {
        console.leaveOutputToData();
        console.print("picture.png");
    });
    EXPECT_EQ(printed.output, "");
    EXPECT_EQ(printed.error, "picture.png\n");
}

} // namespace

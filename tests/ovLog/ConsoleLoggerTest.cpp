#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <ovLog/ConsoleLogger.h>
#include <sstream>
#include <thread>
#include <unistd.h>
#include <vector>

using ovLog::CONSOLE_STREAM;
using ovLog::ConsoleLogger;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

TEST(ConsoleLoggerTest, PrintsOneLineAMessage) {
    const struct {
        ovLog::StringView message, sender;
        std::string expected;
    } cases[] = {
        {"a message", "Sender::operation", "[Sender::operation] a message\n"},
        {"", "-", "[-] \n"},
        {"", "", "[] \n"},
        {"%s {} {0} %n %v", "{}%v", "[{}%v] %s {} {0} %n %v\n"},
        {"\xC3\xA9t\xC3\xA9 \xE6\x97\xA5", "s", "[s] \xC3\xA9t\xC3\xA9 \xE6\x97\xA5\n"},
        {"first\nsecond\n\nfourth", "s", "[s] first\n    second\n    \n    fourth\n"},
        {ovLog::StringView("cut here", 3), ovLog::StringView("sender", 1), "[s] cut\n"},
    };
    ConsoleLogger logger;
    for (const auto& row : cases) {
        CaptureStderr();
        logger.log(row.message, row.sender);
        EXPECT_EQ(GetCapturedStderr(), row.expected);
    }
}

TEST(ConsoleLoggerTest, PrintsLongMessagesWhole) {
    const std::string message(1 << 20, 'm');
    CaptureStderr();
    ConsoleLogger().log(message, "s");
    EXPECT_EQ(GetCapturedStderr(), "[s] " + message + "\n");
}

TEST(ConsoleLoggerTest, PrintsToTheChosenStreamOnly) {
    for (const CONSOLE_STREAM stream : {CONSOLE_STREAM::STANDARD_ERROR, CONSOLE_STREAM::STANDARD_OUTPUT}) {
        CaptureStdout();
        CaptureStderr();
        ConsoleLogger(stream).log("message", "s");
        const bool toOutput = stream == CONSOLE_STREAM::STANDARD_OUTPUT;
        EXPECT_EQ(GetCapturedStdout(), toOutput ? "[s] message\n" : "");
        EXPECT_EQ(GetCapturedStderr(), toOutput ? "" : "[s] message\n");
    }
}

TEST(ConsoleLoggerTest, LinesOfSeveralThreadsAndObjectsNeverMix) {
    constexpr int THREADS = 4;
    constexpr int LINES = 200;
    CaptureStderr();
    {
        ConsoleLogger shared;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < THREADS; ++thread)
            threads.emplace_back([&shared, thread] {
                ConsoleLogger own;
                const std::string message(100, char('a' + thread));
                for (int line = 0; line < LINES; ++line)
                    (line % 2 ? own : shared).log(message, "s");
            });
        for (std::thread& thread : threads)
            thread.join();
    }
    std::map<std::string, int> counts;
    std::istringstream output(GetCapturedStderr());
    for (std::string line; std::getline(output, line);)
        ++counts[line];
    ASSERT_EQ(counts.size(), std::size_t(THREADS));
    for (int thread = 0; thread < THREADS; ++thread)
        EXPECT_EQ(counts["[s] " + std::string(100, char('a' + thread))], LINES);
}

TEST(ConsoleLoggerTest, SurvivesAStreamThatCannotBeWrittenTo) {
    std::fflush(stdout);
    const int kept = ::dup(STDOUT_FILENO);
    const int full = ::open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    ::dup2(full, STDOUT_FILENO);
    ConsoleLogger(CONSOLE_STREAM::STANDARD_OUTPUT).log("lost", "s");
    ::dup2(kept, STDOUT_FILENO);
    ::close(full);
    ::close(kept);
    std::clearerr(stdout);
    CaptureStdout();
    ConsoleLogger(CONSOLE_STREAM::STANDARD_OUTPUT).log("kept", "s");
    const std::string output = GetCapturedStdout();
    EXPECT_TRUE(output.ends_with("[s] kept\n")) << output;
}

#include <veldris/scripting/ScriptLogger.h>

#include <gtest/gtest.h>
#include <thread>
#include <veldris/console/Console.h>

namespace {

TEST(ScriptLoggerTest, scriptsPrintAndTheLibraryWarns) {
    veldris::Console console(false);
    veldris::ScriptLogger logger(console);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    logger.log("a line", "ovVeldris::lua");
    logger.log("a report", "Texture");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a line\n");
    console.finish(0);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("a report"), std::string::npos);
}

TEST(ScriptLoggerTest, linesOfSeveralThreadsStayWhole) {
    veldris::Console console(false);
    veldris::ScriptLogger logger(console);
    testing::internal::CaptureStdout();
    const auto talk = [&] {
        for (int i = 0; i < 200; ++i)
            logger.log("0123456789", "ovVeldris::lua");
    };
    std::thread first(talk);
    std::thread second(talk);
    first.join();
    second.join();
    std::string expected;
    for (int i = 0; i < 400; ++i)
        expected += "0123456789\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
}

} // namespace

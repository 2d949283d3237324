#include <gtest/gtest.h>
#include <memory>
#include <support/RecordingLogger.h>
#include <thread>
#include <vector>

TEST(LoggerTest, ReceiversAreDeletedThroughTheInterface) {
    struct Receiver : ovLog::Logger {
        explicit Receiver(bool& deletedFlag)
            : deleted(deletedFlag) {}
        ~Receiver() override { deleted = true; }
        void log(ovLog::StringView, ovLog::StringView) override {}
        bool& deleted;
    };
    bool deleted = false;
    std::unique_ptr<ovLog::Logger> logger = std::make_unique<Receiver>(deleted);
    logger->log("message", "sender");
    EXPECT_FALSE(deleted);
    logger.reset();
    EXPECT_TRUE(deleted);
}

TEST(LoggerTest, RecorderKeepsMessagesInOrderAfterTheirViewsAreGone) {
    RecordingLogger recorder;
    ovLog::Logger& logger = recorder;
    for (const char* text : {"first", "", "third"})
        logger.log(ovMemory::String(text), ovMemory::String("S::") + text);
    const ovMemory::Buffer<RecordingLogger::Message> expected = {
        {"first", "S::first"}, {"", "S::"}, {"third", "S::third"}};
    EXPECT_EQ(recorder.messages, expected) << recorder.getText();
    EXPECT_TRUE(recorder.contains("hir"));
    EXPECT_FALSE(recorder.contains("S::"));
}

TEST(LoggerTest, RecorderLosesNothingWhenThreadsShareIt) {
    RecordingLogger recorder;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int i = 0; i < 250; ++i)
                recorder.log("message", "thread");
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(recorder.messages.size(), 1000u);
}

#include <ovVeldris/core/LogManager.h>

#include <ovVeldris/core/SingletonTest.h>
#include <support/RecordingLogger.h>

using namespace ovVeldris;
using ovMemory::StringView;

namespace {

class LogManagerTest : public SingletonTest {};

} // namespace

TEST_F(LogManagerTest, StartsWithoutReceiverAndDropsMessages) {
    LogManager logManager;
    EXPECT_EQ(logManager.getReceiver(), nullptr);
    EXPECT_EQ(LogManager::getInstance()->getReceiver(), nullptr);
    logManager.log("nobody listens", "Test");
}

TEST_F(LogManagerTest, ForwardsMessageAndSenderUnchanged) {
    const RecordingLogger::Message cases[] = {
        {"Could not load 'a'.", "EffectManager"},
        {"", ""},
        {"two\nlines\n", "ContentLoader::inputData"},
        {ovMemory::String("zero\0inside", 11), ovMemory::String("\xc3\xa9\0", 3)},
        {"[not] a prefix %s {}", " padded "},
    };
    RecordingLogger receiver;
    LogManager logManager;
    logManager.setReceiver(&receiver);
    EXPECT_EQ(logManager.getReceiver(), &receiver);
    for (const RecordingLogger::Message& row : cases)
        logManager.log(row.message, row.sender);
    EXPECT_EQ(receiver.messages, RecordingLogger::Messages(std::begin(cases), std::end(cases)));
}

TEST_F(LogManagerTest, NullReceiverStopsDelivery) {
    RecordingLogger first;
    RecordingLogger second;
    LogManager logManager;
    logManager.setReceiver(&first);
    logManager.log("one", "Test");
    logManager.setReceiver(nullptr);
    logManager.log("two", "Test");
    logManager.setReceiver(&second);
    logManager.log("three", "Test");
    EXPECT_EQ(first.messages, (RecordingLogger::Messages{{"one", "Test"}}));
    EXPECT_EQ(second.messages, (RecordingLogger::Messages{{"three", "Test"}}));
}

TEST_F(LogManagerTest, LogMessageReachesTheSystemsOwnReceiver) {
    RecordingLogger receiver;
    RecordingLogger other;
    System system;
    System otherSystem;
    system.getLogManager()->setReceiver(&receiver);
    otherSystem.getLogManager()->setReceiver(&other);
    logMessage(&system, "message", "Sender");
    EXPECT_EQ(receiver.messages, (RecordingLogger::Messages{{"message", "Sender"}}));
    EXPECT_TRUE(other.messages.empty());
}

TEST_F(LogManagerTest, LogMessageDoesNothingWithoutSystemOrLogManager) {
    RecordingLogger receiver;
    System system;
    system.getLogManager()->setReceiver(&receiver);
    system.shutdown();
    logMessage(&system, "after shutdown", "Test");
    logMessage(nullptr, "no system", "Test");
    EXPECT_TRUE(receiver.messages.empty());
    EXPECT_EQ(getExisting(), "") << "logging must not create singletons";
}

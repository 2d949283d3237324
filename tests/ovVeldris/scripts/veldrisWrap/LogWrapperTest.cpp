#include <ovVeldris/scripts/veldrisWrap/LogWrapper.h>

#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <support/Lua.h>
#include <support/RecordingLogger.h>

namespace {

using ovVeldris::ScriptsEngine;

TEST(LogWrapperTest, printLogsItsFirstArgument) {
    ovVeldris::System system;
    RecordingLogger logger;
    system.getLogManager()->setReceiver(&logger);
    ScriptsEngine engine(&system);
    engine.initialize();
    logger.messages.clear();
    luaTest::evaluate(*engine.getEnvironment(),
                      "print(1, 2) print(nil) print() print({} ~= nil) ovLogLine('x')");
    const ovMemory::Buffer<RecordingLogger::Message> expected = {{"1", "ovVeldris::lua"},
                                                                 {"nil", "ovVeldris::lua"},
                                                                 {"nil", "ovVeldris::lua"},
                                                                 {"true", "ovVeldris::lua"},
                                                                 {"x", "ovVeldris::lua"}};
    EXPECT_EQ(logger.messages, expected);
}

TEST(LogWrapperTest, withoutSystemNothingIsLogged) {
    ScriptsEngine engine(nullptr);
    EXPECT_TRUE(engine.initialize());
    EXPECT_EQ(luaTest::evaluate(*engine.getEnvironment(), "print(1) return ovLogLine('x')"), "nil");
}

TEST(LogWrapperTest, logManagerMayGoFirst) {
    auto logManager = std::make_unique<ovVeldris::LogManager>();
    RecordingLogger logger;
    logManager->setReceiver(&logger);
    const auto environment = luaTest::luaEnvironment();
    ScriptsEngine::setupScriptsEnvironment(environment.get(), logManager.get());
    luaTest::evaluate(*environment, "print('before')");
    logManager.reset();
    EXPECT_EQ(luaTest::evaluate(*environment, "print('after')"), "nil");
    EXPECT_EQ(logger.messages.size(), 1u);
}

// What a finaliser raises has no caller to tell.
TEST(LogWrapperTest, errorsOfFinalisersAreLogged) {
    ovVeldris::LogManager logManager;
    RecordingLogger logger;
    logManager.setReceiver(&logger);
    const auto environment = luaTest::luaEnvironment();
    ovVeldrisWrap::LogWrapper::updateEnvironment(environment.get(), &logManager);
    luaTest::evaluate(*environment, "setmetatable({}, {__gc = function() error('late') end})");
    environment->collectGarbage();
    ASSERT_EQ(logger.messages.size(), 1u);
    EXPECT_NE(logger.messages[0].message.find("late"), std::string::npos);
    EXPECT_EQ(logger.messages[0].sender, "ovVeldris::lua");
}

// Whoever cannot replace "print" says so and goes on.
TEST(LogWrapperTest, aFailedReplacementIsLogged) {
    ovVeldris::LogManager logManager;
    RecordingLogger logger;
    logManager.setReceiver(&logger);
    const auto environment = luaTest::luaEnvironment({.stepLimit = 1});
    luaTest::evaluate(*environment, "for i = 1, 2000 do end");
    ovVeldrisWrap::LogWrapper::updateEnvironment(environment.get(), &logManager);
    ASSERT_EQ(logger.messages.size(), 1u) << logger.getText();
    EXPECT_EQ(logger.messages[0].message.find("Error while executing 'print' overwrite script. See :"), 0u);
    EXPECT_EQ(logger.messages[0].sender, "LogWrapper");
    EXPECT_NE(environment->getFunc("ovLogLine"), nullptr);
}

} // namespace

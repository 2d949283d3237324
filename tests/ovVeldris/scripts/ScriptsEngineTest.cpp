#include <ovVeldris/scripts/ScriptsEngine.h>

#include <gtest/gtest.h>
#include <ovVeldris/System.h>

TEST(ScriptsEngineTest, RunsBetweenInitializeAndShutdown) {
    ovVeldris::System system;
    ovVeldris::ScriptsEngine engine(&system);
    EXPECT_EQ(engine.getSystem(), &system);
    EXPECT_FALSE(engine.getIsInitialized());
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(engine.initialize());
        EXPECT_TRUE(engine.getIsInitialized());
        engine.shutdown();
        engine.shutdown();
        EXPECT_FALSE(engine.getIsInitialized());
    }
}

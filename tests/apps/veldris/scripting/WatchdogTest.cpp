#include <veldris/scripting/Watchdog.h>

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>

TEST(WatchdogTest, barksWhenTimeIsOver) {
    std::atomic<int> barks = 0;
    const veldris::Watchdog watchdog(0.001, [&] { ++barks; });
    while (barks == 0)
        std::this_thread::yield();
    EXPECT_EQ(barks, 1);
}

TEST(WatchdogTest, isQuietWhenItEndsInTime) {
    std::atomic<int> barks = 0;
    {
        const veldris::Watchdog watchdog(3600, [&] { ++barks; });
    }
    EXPECT_EQ(barks, 0);
}

#include <ovCommon/ParallelFor.h>

#include <gtest/gtest.h>
#include <set>

namespace {

TEST(ParallelForTest, threadsTakeEachNumberOnce) {
    for (const std::size_t count : {0u, 1u, 2u, 7u, 10000u}) {
        std::vector<int> calls(count, 0); // each element is one task's own
        ovCommon::parallelFor(count, [&](std::size_t i) { ++calls[i]; });
        EXPECT_EQ(calls, std::vector<int>(count, 1));
    }
}

TEST(ParallelForTest, threadsWorkAtTheSameTime) {
    if (std::thread::hardware_concurrency() < 2)
        GTEST_SKIP() << "one core";
    // Each task waits for the other: one thread alone would wait for ever.
    std::atomic<int> arrived = 0;
    std::vector<std::thread::id> threads(2);
    ovCommon::parallelFor(2, [&](std::size_t i) {
        threads[i] = std::this_thread::get_id();
        ++arrived;
        while (arrived < 2)
            std::this_thread::yield();
    });
    EXPECT_NE(threads[0], threads[1]);
}

} // namespace

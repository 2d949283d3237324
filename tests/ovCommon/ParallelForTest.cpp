#include <ovCommon/ParallelFor.h>

#include <gtest/gtest.h>
#include <mutex>
#include <set>

namespace {

TEST(ParallelForTest, threadsTakeEachNumberOnce) {
    for (const std::size_t count : {0u, 1u, 2u, 7u, 10000u}) {
        std::vector<int> calls(count, 0); // each element is one task's own
        ovCommon::parallelFor(count, [&](std::size_t i) { ++calls[i]; });
        EXPECT_EQ(calls, std::vector<int>(count, 1));
    }
}

TEST(ParallelForTest, threadsTellTheShareThatIsDone) {
    std::mutex mutex;
    std::multiset<double> shares;
    const auto remember = [&](double share) {
        const std::lock_guard lock(mutex);
        shares.insert(share);
    };
    ovCommon::parallelFor(8, remember, [](std::size_t) {});
    EXPECT_EQ(shares, (std::multiset<double>{0.125, 0.25, 0.375, 0.5, 0.625, 0.75, 0.875, 1.0}));
    int calls = 0;
    ovCommon::parallelFor(1, ovCommon::WorkProgress(), [&](std::size_t) { ++calls; });
    EXPECT_EQ(calls, 1) << "nobody asks";
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

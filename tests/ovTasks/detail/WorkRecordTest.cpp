#include <gtest/gtest.h>
#include <ovTasks/detail/WorkRecord.h>
#include <thread>

using ovTasks::TASK_STATE;
using ovTasks::detail::WorkRecord;

TEST(WorkRecordThreadTest, StartsQueuedAndIsOverBehindRunning) {
    WorkRecord record;
    EXPECT_EQ(record.getState(), TASK_STATE::QUEUED);
    for (const auto& entry : ovMemory::enumTableOf<TASK_STATE>()) {
        record.become(entry.value);
        const bool over = entry.value != TASK_STATE::QUEUED && entry.value != TASK_STATE::RUNNING;
        EXPECT_EQ(record.waitFor(std::chrono::milliseconds(0)), over) << entry.text;
    }
}

TEST(WorkRecordThreadTest, WakesThoseWhoWait) {
    WorkRecord record;
    std::jthread waiter([&] {
        EXPECT_TRUE(record.waitFor(std::chrono::seconds(60)));
        EXPECT_EQ(record.getFailure(), "why");
    });
    record.become(TASK_STATE::RUNNING);
    record.become(TASK_STATE::FAILED, "why");
}

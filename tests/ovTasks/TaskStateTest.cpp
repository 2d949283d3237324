#include <gtest/gtest.h>
#include <ovTasks/TaskState.h>

using ovTasks::TASK_STATE;

TEST(TaskStateTest, TableHasEachStateInItsOrder) {
    const char* const names[] = {"QUEUED", "RUNNING", "WORKED", "FINISHED", "FAILED", "DROPPED"};
    int value = 0;
    for (const auto& entry : ovMemory::enumTableOf<TASK_STATE>()) {
        EXPECT_EQ(static_cast<int>(entry.value), value);
        EXPECT_EQ(entry.text, names[value++]);
    }
    EXPECT_EQ(value, 6);
    EXPECT_EQ(ovMemory::enumTableOf<TASK_STATE>().name, "TASK_STATE");
}

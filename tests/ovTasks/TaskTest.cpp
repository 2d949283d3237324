#include <memory>
#include <ovTasks/Task.h>
#include <support/Probes.h>
#include <type_traits>

TEST(TaskTest, IsDestroyedThroughTheBase) {
    ovTasks::probes::Diary diary;
    std::unique_ptr<ovTasks::Task> task = ovTasks::probes::makeTask(diary, 7);
    task->work();
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{});
    task.reset();
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{7});
    EXPECT_EQ(diary.getWorked(), std::vector<int>{7});
}

TEST(TaskTest, IsNeitherCopiedNorMadeItself) {
    EXPECT_FALSE(std::is_copy_constructible_v<ovTasks::Task>);
    EXPECT_FALSE(std::is_copy_assignable_v<ovTasks::Task>);
    EXPECT_TRUE(std::is_abstract_v<ovTasks::Task>);
}

#include <ovTasks/SchedulerTask.h>
#include <support/Probes.h>

TEST(SchedulerTaskTest, FinishDoesTheFunctionThatWasSetLast) {
    ovTasks::probes::Diary diary;
    ovTasks::probes::DiaryTask task(diary, 1);
    task.finish(); // nothing to do
    int first = 0;
    int second = 0;
    task.setSyncWorkFunction([&] { ++first; });
    task.setSyncWorkFunction([&] { ++second; });
    task.finish();
    task.finish();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 2);
    EXPECT_EQ(diary.getWorked(), std::vector<int>{});
}

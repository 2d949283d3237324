#include <ovTasks/detail/WorkQueue.h>
#include <support/Probes.h>

using namespace ovTasks::probes;
using ovTasks::detail::Work;
using ovTasks::detail::WorkQueue;

TEST(WorkQueueThreadTest, TakesWaitingTasksByPriorityAndOrder) {
    Diary diary;
    WorkQueue queue({}, WorkQueue::DONE::DESTROYED);
    int id = 0;
    for (const int priority : {1, 2, 1, 2})
        queue.add(makeTask(diary, id++), priority);
    std::vector<uint64_t> numbers;
    for (const Work& work : queue.takeWaiting())
        numbers.push_back(work.number);
    EXPECT_EQ(numbers, (std::vector<uint64_t>{2, 4, 1, 3}));
    EXPECT_EQ(queue.getPendingCount(), 0u);
}

TEST(WorkQueueThreadTest, RefusesForEver) {
    Diary diary;
    WorkQueue queue({}, WorkQueue::DONE::DESTROYED);
    queue.refuse();
    EXPECT_EQ(queue.add(makeTask(diary, 0), 0)->getState(), ovTasks::TASK_STATE::DROPPED);
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{0});
    queue.open();
    EXPECT_EQ(queue.add(makeTask(diary, 1), 0)->getState(), ovTasks::TASK_STATE::DROPPED);
}

TEST(WorkQueueThreadTest, WorkersLeaveAClosedQueue) {
    Diary diary;
    WorkQueue queue({}, WorkQueue::DONE::DESTROYED);
    queue.work(); // closed at first: returns at once
    queue.open();
    queue.add(makeTask(diary, 0,
                       [&] {
                           EXPECT_TRUE(queue.isCalledByWorker());
                           queue.close();
                       }),
              0);
    queue.add(makeTask(diary, 1), 0);
    std::jthread(&WorkQueue::work, &queue).join();
    EXPECT_EQ(diary.getWorked(), std::vector<int>{0});
    EXPECT_EQ(queue.getPendingCount(), 1u);
    for (Work& work : queue.takeWaiting())
        ovTasks::detail::destroyAs(ovTasks::TASK_STATE::DROPPED, std::move(work));
}

TEST(WorkQueueThreadTest, KeepsTasksInTheOrderOfTheirEndsAndDropsThemWithItself) {
    Diary diary;
    std::shared_ptr<const ovTasks::detail::WorkRecord> left;
    {
        WorkQueue queue({}, WorkQueue::DONE::KEPT);
        EXPECT_FALSE(queue.takeDone());
        queue.open();
        queue.add(makeTask(diary, 0), 0);
        const auto second = queue.add(makeTask(diary, 1), 0);
        left = queue.add(makeTask(diary, 2, [&] { queue.close(); }), 0);
        std::jthread(&WorkQueue::work, &queue).join();
        EXPECT_EQ(queue.getDoneCount(), 3u);
        EXPECT_EQ(queue.getPendingCount(), 0u);
        EXPECT_FALSE(queue.isIdle());
        EXPECT_EQ(queue.takeDone()->number, 1u);
        EXPECT_EQ(second->getState(), ovTasks::TASK_STATE::WORKED);
        EXPECT_EQ(queue.takeDone()->number, 2u);
    }
    EXPECT_EQ(left->getState(), ovTasks::TASK_STATE::DROPPED);
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{0, 1, 2}));
}

TEST(WorkQueueThreadTest, WhoLearnsOfAnEndFindsItCounted) {
    Diary diary;
    WorkQueue queue({}, WorkQueue::DONE::DESTROYED);
    queue.open();
    std::jthread worker(&WorkQueue::work, &queue);
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(queue.add(makeTask(diary, i), 0)->waitFor(LONG));
        ASSERT_EQ(queue.getPendingCount(), 0u);
    }
    queue.close();
}

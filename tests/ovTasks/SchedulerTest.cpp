#include <algorithm>
#include <limits>
#include <memory>
#include <ovTasks/LambdaTask.h>
#include <ovTasks/Scheduler.h>
#include <set>
#include <stdexcept>
#include <support/Probes.h>

using namespace ovTasks::probes;
using ovTasks::LambdaTask;
using ovTasks::Scheduler;
using ovTasks::TASK_STATE;

TEST(SchedulerThreadTest, BeginsTheGreatestPriorityFirstAndEqualOnesInTheirOrder) {
    constexpr int LEAST = std::numeric_limits<int>::min();
    constexpr int GREATEST = std::numeric_limits<int>::max();
    Diary diary;
    Scheduler scheduler(1);
    int id = 0;
    for (const int priority : {0, 5, LEAST, GREATEST, 5, 0, -1})
        scheduler.addTask(makeTask(diary, id++), priority);
    EXPECT_EQ(scheduler.getPendingCount(), 7u);
    ASSERT_TRUE(scheduler.run());
    EXPECT_TRUE(scheduler.finishAll());
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{3, 1, 4, 0, 5, 6, 2}));
    EXPECT_EQ(diary.getDestroyed(), diary.getWorked()) << "collected in the order in which they ended";
}

TEST(SchedulerThreadTest, SecondHalvesAreDoneByTheCollectingThread) {
    const auto host = std::this_thread::get_id();
    Scheduler scheduler(2);
    std::vector<int> ended;
    std::set<std::thread::id> workers;
    std::mutex mutex;
    std::vector<ovTasks::ThreadSubmittedWork> works;
    for (int i = 0; i < 20; ++i) {
        auto task = std::make_unique<LambdaTask>([&] {
            const std::lock_guard lock(mutex);
            workers.insert(std::this_thread::get_id());
        });
        task->setSyncWorkFunction([&, i] {
            EXPECT_EQ(std::this_thread::get_id(), host);
            ended.push_back(i);
        });
        works.push_back(scheduler.addTask(std::move(task)));
    }
    scheduler.run();
    for (const auto& work : works)
        ASSERT_TRUE(work.waitFor(LONG));
    EXPECT_EQ(ended, std::vector<int>{}) << "not before they are collected";
    EXPECT_FALSE(scheduler.isIdle());
    EXPECT_TRUE(scheduler.finishAll());
    EXPECT_TRUE(scheduler.isIdle());
    std::sort(ended.begin(), ended.end());
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(ended.at(i), i);
    EXPECT_EQ(workers.count(host), 0u);
}

TEST(SchedulerThreadTest, WorksOnSeveralThreadsAtOnce) {
    // Each task waits for the other: only two threads at once come through.
    Gate first;
    Gate second;
    Scheduler scheduler(2);
    scheduler.addTask(std::make_unique<LambdaTask>([&] {
        first.open();
        EXPECT_TRUE(second.pass());
    }));
    scheduler.addTask(std::make_unique<LambdaTask>([&] {
        second.open();
        EXPECT_TRUE(first.pass());
    }));
    scheduler.run();
    EXPECT_TRUE(scheduler.finishAll());
}

TEST(SchedulerThreadTest, CollectWaitsForNothingAndTakesWhatWasThere) {
    Diary diary;
    Scheduler scheduler(1);
    scheduler.run();
    EXPECT_EQ(scheduler.collect(), 0u);
    auto task = makeTask(diary, 0);
    task->setSyncWorkFunction([&] {
        // Its work ends before the collection does, and is left for the next one.
        ASSERT_TRUE(scheduler.addTask(makeTask(diary, 1)).waitFor(LONG));
    });
    ASSERT_TRUE(scheduler.addTask(std::move(task)).waitFor(LONG));
    EXPECT_EQ(scheduler.getCollectableCount(), 1u);
    EXPECT_EQ(scheduler.collect(), 1u);
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{0});
    EXPECT_EQ(scheduler.getCollectableCount(), 1u);
    EXPECT_EQ(scheduler.collect(), 1u);
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{0, 1}));
    EXPECT_EQ(diary.getDestroyers(0), std::vector{std::this_thread::get_id()});
}

TEST(SchedulerThreadTest, SecondHalvesMayCollect) {
    Diary diary;
    Scheduler scheduler(1);
    std::vector<ovTasks::ThreadSubmittedWork> works;
    for (int i = 0; i < 3; ++i) {
        auto task = makeTask(diary, i);
        task->setSyncWorkFunction([&] { scheduler.collect(); });
        works.push_back(scheduler.addTask(std::move(task)));
    }
    scheduler.run();
    for (const auto& work : works)
        ASSERT_TRUE(work.waitFor(LONG));
    EXPECT_EQ(scheduler.collect(), 1u) << "the first one collected the others";
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{2, 1, 0}));
    EXPECT_TRUE(scheduler.isIdle());
}

TEST(SchedulerThreadTest, FailedTasksHaveNoSecondHalf) {
    Failures failures;
    Scheduler scheduler(1, failures.settings("pool"));
    bool finished = false;
    auto failing = std::make_unique<LambdaTask>([] { throw std::runtime_error("no disk"); });
    failing->setSyncWorkFunction([&] { finished = true; });
    auto failingLater = std::make_unique<LambdaTask>();
    failingLater->setSyncWorkFunction([] { throw std::runtime_error("no paper"); });
    const auto first = scheduler.addTask(std::move(failing));
    const auto second = scheduler.addTask(std::move(failingLater));
    scheduler.run();
    EXPECT_TRUE(scheduler.finishAll());
    EXPECT_FALSE(finished);
    EXPECT_EQ(first.getState(), TASK_STATE::FAILED);
    EXPECT_EQ(second.getState(), TASK_STATE::FAILED);
    const std::string advice =
        ". The task counts as failed and those behind it run; catch the exception in the task.";
    EXPECT_EQ(failures.getLines(),
              (std::vector<std::string>{
                  "The work of task 1 of 'pool' ended by an exception: no disk" + advice,
                  "The second half of task 2 of 'pool' ended by an exception: no paper" + advice}));
    EXPECT_EQ(second.getFailure(), failures.getLines().at(1));
}

TEST(SchedulerThreadTest, StopLeavesWhatCanBeCollected) {
    Diary diary;
    Scheduler scheduler(1);
    const auto done = scheduler.addTask(makeTask(diary, 0));
    scheduler.run();
    ASSERT_TRUE(done.waitFor(LONG));
    scheduler.stop();
    EXPECT_FALSE(scheduler.isRunning());
    const auto waiting = scheduler.addTask(makeTask(diary, 1));
    EXPECT_FALSE(scheduler.finishAll()) << "nobody does the waiting one";
    EXPECT_EQ(done.getState(), TASK_STATE::FINISHED);
    scheduler.stop();
    EXPECT_EQ(waiting.getState(), TASK_STATE::DROPPED);
    EXPECT_TRUE(scheduler.finishAll());
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{0, 1}));
}

TEST(SchedulerThreadTest, DestructorDropsWhatWaitsAndWhatNobodyCollected) {
    Diary diary;
    bool finished = false;
    auto scheduler = std::make_unique<Scheduler>(1);
    auto task = makeTask(diary, 0);
    task->setSyncWorkFunction([&] { finished = true; });
    const auto done = scheduler->addTask(std::move(task));
    scheduler->run();
    ASSERT_TRUE(done.waitFor(LONG));
    scheduler->stop();
    const auto waiting = scheduler->addTask(makeTask(diary, 1));
    scheduler.reset();
    EXPECT_FALSE(finished);
    EXPECT_EQ(done.getState(), TASK_STATE::DROPPED);
    EXPECT_EQ(waiting.getState(), TASK_STATE::DROPPED);
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{1, 0}));
    EXPECT_EQ(diary.getDestroyers(0), std::vector{std::this_thread::get_id()});
}

TEST(SchedulerThreadTest, TasksAskWithoutWaitingForThemselves) {
    Scheduler scheduler(2);
    scheduler.addTask(std::make_unique<LambdaTask>([&] {
        EXPECT_FALSE(scheduler.finishAll());
        EXPECT_EQ(scheduler.getPendingCount(), 1u);
    }));
    scheduler.run();
    EXPECT_TRUE(scheduler.finishAll());
}

TEST(SchedulerThreadTest, ATaskDestroysItsScheduler) {
    Diary diary;
    Gate gate;
    auto* scheduler = new Scheduler(2);
    const auto deleting = scheduler->addTask(makeTask(
        diary, 0, [&] { delete scheduler; }, [&] { gate.open(); }));
    scheduler->run();
    ASSERT_TRUE(gate.pass());
    EXPECT_TRUE(deleting.isOver());
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{0});
}

TEST(SchedulerThreadTest, SeveralThreadsAddAndCollect) {
    constexpr int TASKS = 200;
    Diary diary;
    std::atomic<int> finished = 0;
    Scheduler scheduler(3);
    scheduler.run();
    {
        std::vector<std::jthread> hosts;
        for (int host = 0; host < 2; ++host)
            hosts.emplace_back([&, host] {
                for (int i = 0; i < TASKS; ++i) {
                    auto task = makeTask(diary, host * TASKS + i);
                    task->setSyncWorkFunction([&] { ++finished; });
                    scheduler.addTask(std::move(task), i % 3);
                    scheduler.collect();
                }
            });
    }
    EXPECT_TRUE(scheduler.finishAll());
    EXPECT_EQ(finished, 2 * TASKS);
    for (int i = 0; i < 2 * TASKS; ++i)
        EXPECT_EQ(diary.getDestroyers(i).size(), 1u);
}

TEST(SchedulerThreadTest, HasAThreadWithoutACount) {
    Diary diary;
    Scheduler scheduler;
    scheduler.addTask(makeTask(diary, 0));
    ASSERT_TRUE(scheduler.run());
    EXPECT_TRUE(scheduler.finishAll());
    EXPECT_EQ(diary.getWorked(), std::vector<int>{0});
}

TEST(SchedulerThreadTest, RefusesNull) {
    Failures failures;
    Scheduler scheduler(1, failures.settings("pool"));
    EXPECT_EQ(scheduler.addTask(nullptr).getState(), TASK_STATE::DROPPED);
    EXPECT_TRUE(scheduler.isIdle());
    ASSERT_EQ(failures.getLines().size(), 1u);
}

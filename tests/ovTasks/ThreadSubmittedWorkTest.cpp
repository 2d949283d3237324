#include <optional>
#include <ovTasks/Scheduler.h>
#include <ovTasks/Thread.h>
#include <ovTasks/ThreadSubmittedWork.h>
#include <stdexcept>
#include <support/Probes.h>

using namespace ovTasks::probes;
using ovTasks::TASK_STATE;
using ovTasks::ThreadSubmittedWork;
using std::chrono::milliseconds;

TEST(ThreadSubmittedWorkTest, FollowsATaskFromTheQueueToItsEnd) {
    Diary diary;
    Gate started;
    Gate gate;
    ovTasks::Thread thread;
    const ThreadSubmittedWork work = thread.addTask(makeTask(diary, 1, [&] {
        started.open();
        EXPECT_TRUE(gate.pass());
    }));
    EXPECT_EQ(work.getState(), TASK_STATE::QUEUED);
    EXPECT_FALSE(work.isOver());
    EXPECT_FALSE(work.waitFor(milliseconds(0)));
    ASSERT_TRUE(thread.run());
    ASSERT_TRUE(started.pass());
    EXPECT_EQ(work.getState(), TASK_STATE::RUNNING);
    EXPECT_FALSE(work.waitFor(milliseconds(1)));
    gate.open();
    EXPECT_TRUE(work.waitFor(LONG));
    EXPECT_EQ(work.getState(), TASK_STATE::FINISHED);
    EXPECT_EQ(work.getFailure(), "");
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{1}) << "over means gone";
}

TEST(ThreadSubmittedWorkTest, OutlivesTheThreadAndNeverWaitsForIt) {
    Diary diary;
    std::optional<ThreadSubmittedWork> done;
    std::optional<ThreadSubmittedWork> waiting;
    {
        ovTasks::Thread thread;
        done = thread.addTask(makeTask(diary, 1));
        thread.run();
        thread.waitForAll();
        thread.stop();
        waiting = thread.addTask(makeTask(diary, 2));
        EXPECT_EQ(waiting->getState(), TASK_STATE::QUEUED);
    }
    EXPECT_EQ(done->getState(), TASK_STATE::FINISHED);
    EXPECT_EQ(waiting->getState(), TASK_STATE::DROPPED);
    EXPECT_TRUE(waiting->waitFor(milliseconds(0)));
    const ThreadSubmittedWork copy = *waiting;
    waiting.reset();
    EXPECT_EQ(copy.getState(), TASK_STATE::DROPPED);
}

TEST(ThreadSubmittedWorkTest, WaitsAreWokenByTheEndAndTakeAnyTime) {
    Diary diary;
    Gate gate;
    ovTasks::Thread thread;
    const ThreadSubmittedWork work = thread.addTask(makeTask(diary, 1, [&] { EXPECT_TRUE(gate.pass()); }));
    thread.run();
    std::vector<std::jthread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([work] { EXPECT_TRUE(work.waitFor(milliseconds::max())); });
    EXPECT_FALSE(work.waitFor(milliseconds::min()));
    gate.open();
    EXPECT_TRUE(work.waitFor(milliseconds::max()));
}

TEST(ThreadSubmittedWorkTest, CarriesTheReasonOfAFailure) {
    Diary diary;
    Failures failures;
    ovTasks::Thread thread(failures.settings("t"));
    const ThreadSubmittedWork work =
        thread.addTask(makeTask(diary, 1, [] { throw std::runtime_error("no disk"); }));
    thread.run();
    ASSERT_TRUE(work.waitFor(LONG));
    EXPECT_EQ(work.getState(), TASK_STATE::FAILED);
    ASSERT_EQ(failures.getLines().size(), 1u);
    EXPECT_EQ(work.getFailure(), failures.getLines()[0]);
}

TEST(ThreadSubmittedWorkTest, SeesATaskOfASchedulerUntilItsCollection) {
    Diary diary;
    ovTasks::Scheduler scheduler(1);
    const ThreadSubmittedWork work = scheduler.addTask(makeTask(diary, 1));
    scheduler.run();
    ASSERT_TRUE(work.waitFor(LONG));
    EXPECT_EQ(work.getState(), TASK_STATE::WORKED);
    EXPECT_EQ(scheduler.collect(), 1u);
    EXPECT_EQ(work.getState(), TASK_STATE::FINISHED);
}

#include <memory>
#include <ovTasks/LambdaTask.h>
#include <ovTasks/Thread.h>
#include <stdexcept>
#include <support/Probes.h>

using namespace ovTasks::probes;
using ovTasks::LambdaTask;
using ovTasks::TASK_STATE;
using ovTasks::Thread;

TEST(ThreadTest, TasksWaitForRunAndAreDoneInTheirOrder) {
    Diary diary;
    Thread thread;
    for (int i = 0; i < 5; ++i)
        thread.addTask(makeTask(diary, i));
    EXPECT_FALSE(thread.isRunning());
    EXPECT_EQ(thread.getPendingCount(), 5u);
    EXPECT_FALSE(thread.isIdle());
    EXPECT_FALSE(thread.waitForAll()) << "nobody does them";
    EXPECT_EQ(diary.getWorked(), std::vector<int>{});
    EXPECT_TRUE(thread.run());
    EXPECT_TRUE(thread.run()) << "runs already";
    EXPECT_TRUE(thread.isRunning());
    EXPECT_TRUE(thread.waitForAll());
    EXPECT_TRUE(thread.isIdle());
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{0, 1, 2, 3, 4}));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(diary.getWorkers(i), diary.getWorkers(0)) << "one thread for all";
        EXPECT_EQ(diary.getDestroyers(i), diary.getWorkers(0)) << "the thread that did it";
    }
    EXPECT_NE(diary.getWorkers(0)[0], std::this_thread::get_id());
}

TEST(ThreadTest, DestructorFinishesTheRunningTaskAndDestroysTheOthersOnce) {
    Diary diary;
    Gate started;
    auto thread = std::make_unique<Thread>();
    bool cameToItsEnd = false;
    const auto running = thread->addTask(makeTask(diary, 0, [&, self = thread.get()] {
        started.open();
        while (self->isRunning()) // until the destructor has begun
            std::this_thread::yield();
        self->addTask(makeTask(diary, 3));
        cameToItsEnd = true;
    }));
    const auto waiting = thread->addTask(makeTask(diary, 1));
    thread->addTask(makeTask(diary, 2));
    thread->run();
    ASSERT_TRUE(started.pass());
    thread.reset();
    EXPECT_TRUE(cameToItsEnd);
    EXPECT_EQ(running.getState(), TASK_STATE::FINISHED);
    EXPECT_EQ(waiting.getState(), TASK_STATE::DROPPED);
    EXPECT_EQ(diary.getWorked(), std::vector<int>{0});
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{3, 0, 1, 2}))
        << "each once: what comes too late at once, what waits in its order";
    EXPECT_EQ(diary.getDestroyers(1), std::vector{std::this_thread::get_id()});
    EXPECT_EQ(diary.getDestroyers(2), std::vector{std::this_thread::get_id()});
}

TEST(ThreadTest, IsDestroyedWithoutRunning) {
    Diary diary;
    {
        Thread thread;
        thread.addTask(makeTask(diary, 0));
    }
    EXPECT_EQ(diary.getWorked(), std::vector<int>{});
    EXPECT_EQ(diary.getDestroyed(), std::vector<int>{0});
    Thread unused;
    unused.stop();
    EXPECT_TRUE(unused.waitForAll()) << "nothing is left to do";
}

TEST(ThreadTest, RunsAgainAfterAStop) {
    Diary diary;
    Thread thread;
    for (int round = 0; round < 3; ++round) {
        thread.addTask(makeTask(diary, round));
        ASSERT_TRUE(thread.run());
        ASSERT_TRUE(thread.waitForAll());
        thread.stop();
        EXPECT_FALSE(thread.isRunning());
        thread.stop();
    }
    thread.addTask(makeTask(diary, 9));
    EXPECT_EQ(thread.getPendingCount(), 1u) << "waits";
    thread.stop();
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{0, 1, 2, 9}));
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{0, 1, 2}));
}

TEST(ThreadTest, TakesTasksOfSeveralThreadsInTheOrderOfEach) {
    constexpr int ADDERS = 4;
    constexpr int TASKS = 100;
    Diary diary;
    Thread thread;
    thread.run();
    {
        std::vector<std::jthread> adders;
        for (int adder = 0; adder < ADDERS; ++adder)
            adders.emplace_back([&, adder] {
                for (int i = 0; i < TASKS; ++i)
                    thread.addTask(makeTask(diary, adder * TASKS + i));
            });
    }
    EXPECT_TRUE(thread.waitForAll());
    std::vector<int> next(ADDERS, 0);
    for (const int id : diary.getWorked())
        EXPECT_EQ(id % TASKS, next[id / TASKS]++);
    EXPECT_EQ(next, std::vector<int>(ADDERS, TASKS));
    EXPECT_EQ(diary.getDestroyed().size(), static_cast<std::size_t>(ADDERS * TASKS));
}

TEST(ThreadTest, ExceptionsAreOneLineAndTheNextTaskRuns) {
    Diary diary;
    Failures failures;
    Thread thread(failures.settings("loader"));
    thread.addTask(makeTask(diary, 1));
    const auto first = thread.addTask(makeTask(diary, 2, [] { throw std::runtime_error("no disk"); }));
    const auto second = thread.addTask(makeTask(diary, 3, [] { throw 5; }));
    thread.addTask(makeTask(diary, 4));
    thread.run();
    EXPECT_TRUE(thread.waitForAll());
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(first.getState(), TASK_STATE::FAILED);
    EXPECT_EQ(second.getState(), TASK_STATE::FAILED);
    EXPECT_EQ(
        failures.getLines(),
        (std::vector<std::string>{
            "The work of task 2 of 'loader' ended by an exception: no disk. The task counts as failed and "
            "those behind it run; catch the exception in the task.",
            "The work of task 3 of 'loader' ended by an exception: something that is no std::exception. The "
            "task counts as failed and those behind it run; catch the exception in the task."}));
}

TEST(ThreadTest, FailuresGoToStandardErrorWithoutAReceiver) {
    testing::internal::CaptureStderr();
    {
        Thread thread;
        thread.addTask(nullptr);
        thread.run();
        thread.addTask(std::make_unique<LambdaTask>([] { throw std::runtime_error("oh"); }));
        thread.waitForAll();
    }
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "[ovTasks] 'worker' was given a null pointer instead of a task, and queued nothing. Give it a task.\n"
        "[ovTasks] The work of task 1 of 'worker' ended by an exception: oh. The task counts as failed and "
        "those behind it run; catch the exception in the task.\n");
}

TEST(ThreadTest, RefusesNull) {
    Failures failures;
    Thread thread(failures.settings("t"));
    EXPECT_EQ(thread.addTask(nullptr).getState(), TASK_STATE::DROPPED);
    EXPECT_TRUE(thread.isIdle());
    EXPECT_EQ(failures.getLines(),
              std::vector<std::string>{
                  "'t' was given a null pointer instead of a task, and queued nothing. Give it a task."});
}

TEST(ThreadTest, TasksAddTasksAndCannotWaitForThemselves) {
    Diary diary;
    Thread thread;
    thread.addTask(makeTask(diary, 0, [&] {
        thread.addTask(makeTask(diary, 2));
        EXPECT_FALSE(thread.waitForAll());
        EXPECT_TRUE(thread.run());
    }));
    thread.addTask(makeTask(diary, 1));
    thread.run();
    EXPECT_TRUE(thread.waitForAll());
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{0, 1, 2}));
}

TEST(ThreadTest, ATaskStopsItsThreadWhichRunsAgainLater) {
    Diary diary;
    Thread thread;
    Gate gate;
    const auto stopping = thread.addTask(makeTask(diary, 0, [&] {
        thread.stop();
        EXPECT_FALSE(thread.run()) << "a stop cannot be taken back";
        gate.open();
    }));
    thread.addTask(makeTask(diary, 1));
    thread.run();
    ASSERT_TRUE(gate.pass());
    ASSERT_TRUE(stopping.waitFor(LONG));
    EXPECT_EQ(stopping.getState(), TASK_STATE::FINISHED);
    EXPECT_EQ(diary.getWorked(), std::vector<int>{0});
    EXPECT_EQ(diary.getDestroyers(1), diary.getWorkers(0)) << "by the thread that called stop()";
    thread.addTask(makeTask(diary, 2));
    EXPECT_TRUE(thread.run());
    EXPECT_TRUE(thread.waitForAll());
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{0, 2}));
}

TEST(ThreadTest, ATaskDestroysItsThread) {
    Diary diary;
    Gate gate;
    auto* thread = new Thread;
    const auto deleting = thread->addTask(makeTask(diary, 0, [&] { delete thread; }));
    const auto waiting = thread->addTask(makeTask(diary, 1, {}, [&] { gate.open(); }));
    thread->run();
    ASSERT_TRUE(gate.pass());
    ASSERT_TRUE(deleting.waitFor(LONG));
    EXPECT_EQ(deleting.getState(), TASK_STATE::FINISHED);
    EXPECT_EQ(waiting.getState(), TASK_STATE::DROPPED);
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{1, 0}));
}

TEST(ThreadTest, DestructorsOfTasksMayAddTasks) {
    Diary diary;
    {
        Thread thread;
        thread.addTask(makeTask(diary, 0, {}, [&] { thread.addTask(makeTask(diary, 1)); }));
        thread.stop();
        EXPECT_EQ(diary.getDestroyed(), std::vector<int>{0});
        EXPECT_EQ(thread.getPendingCount(), 1u) << "waits for the next run()";
        thread.addTask(makeTask(diary, 2, {}, [&] { thread.addTask(makeTask(diary, 3)); }));
    }
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{0, 1, 2, 3})) << "a dying thread takes none any more";
    EXPECT_EQ(diary.getWorked(), std::vector<int>{});
}

TEST(ThreadTest, DestructorsOfDoneTasksMayUseTheThread) {
    Diary diary;
    Thread thread;
    thread.addTask(makeTask(diary, 0, {}, [&] {
        EXPECT_EQ(thread.getPendingCount(), 1u) << "the task itself";
        thread.addTask(makeTask(diary, 1));
    }));
    thread.run();
    EXPECT_TRUE(thread.waitForAll());
    EXPECT_EQ(diary.getWorked(), (std::vector<int>{0, 1}));
}

TEST(ThreadTest, StopsAndRunsOfManyThreadsLeaveEachTaskDoneOrDroppedOnce) {
    constexpr int TASKS = 300;
    Diary diary;
    std::vector<ovTasks::ThreadSubmittedWork> works;
    {
        Thread thread;
        std::jthread controller([&] {
            for (int i = 0; i < 50; ++i) {
                thread.run();
                std::this_thread::yield();
                thread.stop();
            }
            thread.run();
        });
        std::jthread second([&] {
            for (int i = 0; i < 50; ++i) {
                thread.stop();
                thread.run();
                thread.getPendingCount();
            }
        });
        for (int i = 0; i < TASKS; ++i)
            works.push_back(thread.addTask(makeTask(diary, i)));
    }
    std::size_t done = 0;
    for (int i = 0; i < TASKS; ++i) {
        EXPECT_EQ(diary.getDestroyers(i).size(), 1u);
        const TASK_STATE state = works[i].getState();
        EXPECT_TRUE(state == TASK_STATE::FINISHED || state == TASK_STATE::DROPPED);
        EXPECT_EQ(diary.getWorkers(i).size(), state == TASK_STATE::FINISHED ? 1u : 0u);
        done += diary.getWorkers(i).size();
    }
    EXPECT_EQ(diary.getWorked().size(), done);
}

TEST(ThreadTest, WaitsEndWhenTheThreadIsStopped) {
    Diary diary;
    Gate started;
    Gate gate;
    Thread thread;
    thread.addTask(makeTask(diary, 0, [&] {
        started.open();
        EXPECT_TRUE(gate.pass());
    }));
    thread.addTask(makeTask(diary, 1));
    thread.run();
    ASSERT_TRUE(started.pass());
    std::jthread stopper([&] {
        // Opens once the stop has begun, so that the wait ends by the stop and not by the last task.
        std::jthread opener([&] {
            while (thread.isRunning())
                std::this_thread::yield();
            gate.open();
        });
        thread.stop();
    });
    thread.waitForAll(); // comes back, before or after the waiting task is dropped
    stopper.join();
    EXPECT_EQ(diary.getWorked(), std::vector<int>{0});
}

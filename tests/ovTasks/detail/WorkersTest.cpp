#include <ovTasks/detail/Workers.h>
#include <pthread.h>
#include <support/Probes.h>

using namespace ovTasks::probes;
using ovTasks::detail::Workers;

TEST(WorkersThreadTest, NamesItsThreads) {
    Diary diary;
    char name[32] = "";
    Workers workers(1, {"a name that is too long", {}}, ovTasks::detail::WorkQueue::DONE::DESTROYED);
    workers.add(makeTask(diary, 0, [&] { pthread_getname_np(pthread_self(), name, sizeof(name)); }), 0);
    workers.run();
    EXPECT_TRUE(workers.getQueue().waitForAll());
    EXPECT_STREQ(name, "a name that is ");
}

TEST(WorkersThreadTest, StartsAsManyThreadsAsItWasAskedFor) {
    constexpr int COUNT = 3;
    Diary diary;
    Gate gates[COUNT];
    Workers workers(COUNT, {}, ovTasks::detail::WorkQueue::DONE::DESTROYED);
    for (int i = 0; i < COUNT; ++i) // each holds a thread until all have begun
        workers.add(makeTask(diary, i,
                             [&, i] {
                                 gates[i].open();
                                 for (Gate& gate : gates)
                                     EXPECT_TRUE(gate.pass());
                             }),
                    0);
    EXPECT_TRUE(workers.run());
    EXPECT_TRUE(workers.getQueue().waitForAll());
    EXPECT_FALSE(workers.getQueue().isCalledByWorker());
}

TEST(WorkersThreadTest, SaysThatTheSystemGivesNoThreadAndStartsLater) {
    pthread_attr_t usual;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    pthread_attr_t greedy = usual;
    ASSERT_EQ(pthread_attr_setstacksize(&greedy, std::size_t(1) << 46), 0); // more than there are addresses
    Diary diary;
    Failures failures;
    Workers workers(2, failures.settings("pool"), ovTasks::detail::WorkQueue::DONE::DESTROYED);
    workers.add(makeTask(diary, 0), 0);

    ASSERT_EQ(pthread_setattr_default_np(&greedy), 0);
    EXPECT_FALSE(workers.run());
    ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
    EXPECT_FALSE(workers.getQueue().isOpen());
    EXPECT_FALSE(workers.getQueue().waitForAll());
    EXPECT_EQ(
        failures.getLines(),
        std::vector<std::string>{"'pool' could not start a thread: Resource temporarily unavailable. Its "
                                 "tasks wait; end other threads and run it again."});

    EXPECT_TRUE(workers.run());
    EXPECT_TRUE(workers.getQueue().waitForAll());
    EXPECT_EQ(diary.getWorked(), std::vector<int>{0});
    pthread_attr_destroy(&usual);
}

#include <ovTasks/detail/Work.h>
#include <stdexcept>
#include <support/Probes.h>

using namespace ovTasks::probes;
using ovTasks::TASK_STATE;
using ovTasks::detail::Work;

namespace {

Work makeWork(Diary& diary) {
    return {makeTask(diary, 1), std::make_shared<ovTasks::detail::WorkRecord>(), 3, {}};
}

} // namespace

TEST(WorkTest, CallGuardedKeepsAndReportsTheReason) {
    Diary diary;
    Failures failures;
    const ovTasks::WorkerSettings settings = failures.settings("name");
    Work work = makeWork(diary);
    ovTasks::detail::callGuarded(settings, work, "part", [] {});
    EXPECT_EQ(work.failure, "");
    ovTasks::detail::callGuarded(settings, work, "part", [] { throw std::logic_error("why"); });
    EXPECT_EQ(work.failure,
              "The part of task 3 of 'name' ended by an exception: why. The task counts as failed and "
              "those behind it run; catch the exception in the task.");
    EXPECT_EQ(failures.getLines(), std::vector<std::string>{work.failure});
}

TEST(WorkTest, ALineIsToldAlthoughItsReceiverFails) {
    const ovTasks::WorkerSettings settings{"name", [](ovMemory::StringView) { throw 1; }};
    testing::internal::CaptureStderr();
    ovTasks::detail::report(settings, "a line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[ovTasks] a line\n");
}

TEST(WorkTest, TheTaskIsGoneBeforeItsEndIsTold) {
    Diary diary;
    for (const bool done : {true, false}) {
        const auto record = std::make_shared<ovTasks::detail::WorkRecord>();
        Work work = {makeTask(diary, 1, {},
                              [&] { EXPECT_EQ(record->getState(), TASK_STATE::QUEUED) << "not told yet"; }),
                     record, 1, done ? "why" : ""};
        const TASK_STATE end = done ? ovTasks::detail::endOf(work) : TASK_STATE::DROPPED;
        ovTasks::detail::destroyAs(end, std::move(work));
        EXPECT_EQ(record->getState(), done ? TASK_STATE::FAILED : TASK_STATE::DROPPED);
        EXPECT_EQ(record->getFailure(), done ? "why" : "");
    }
    EXPECT_EQ(diary.getDestroyed(), (std::vector<int>{1, 1}));
}

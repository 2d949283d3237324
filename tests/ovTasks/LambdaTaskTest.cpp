#include <gtest/gtest.h>
#include <memory>
#include <ovTasks/LambdaTask.h>
#include <string>

using ovTasks::LambdaTask;

TEST(LambdaTaskTest, DoesItsHalvesByThemselves) {
    std::string done;
    LambdaTask task([&] { done += "a"; });
    task.setSyncWorkFunction([&] { done += "s"; });
    task.work();
    EXPECT_EQ(done, "a");
    task.finish();
    EXPECT_EQ(done, "as");
    task.setAsyncWorkFunction([&] { done += "b"; });
    task.work();
    EXPECT_EQ(done, "asb");
}

TEST(LambdaTaskTest, DoesNothingWithoutFunctions) {
    LambdaTask task;
    task.work();
    task.finish();
    task.setAsyncWorkFunction({});
    task.work();
}

TEST(LambdaTaskTest, DestroysWhatItsFunctionsHold) {
    const auto held = std::make_shared<int>(1);
    {
        LambdaTask task([held] {});
        task.setSyncWorkFunction([held] {});
        EXPECT_EQ(held.use_count(), 3);
    }
    EXPECT_EQ(held.use_count(), 1);
}

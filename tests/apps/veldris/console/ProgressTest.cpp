#include <veldris/console/Progress.h>

#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/console/ProgramTesting.h"

#include <chrono>
#include <thread>

namespace {

using ovMemory::String;

TEST(ProgressTest, longStepsAreEstimated) {
    EXPECT_EQ(veldris::progressText("drawing", 0.9, 0.5), "");
    EXPECT_EQ(veldris::progressText("drawing", 3.2, 0.0), "drawing, 3 s");
    EXPECT_EQ(veldris::progressText("", 3.2, 0.0), "");
    EXPECT_EQ(veldris::progressText("drawing", 4.0, 0.4), "drawing, 40 %, about 6 s left");
    EXPECT_EQ(veldris::progressText("drawing", 4.0, 1.0), "drawing, 100 %, about 0 s left");
}

TEST(ProgressTest, stepsFollowEachOtherWithoutAGap) {
    const auto start = std::chrono::steady_clock::now();
    veldris::Progress progress(false);
    progress.step("decoding");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    progress.step("drawing");
    progress.step("decoding");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const auto steps = progress.getSteps();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(steps[0].name, "starting");
    EXPECT_EQ(steps[1].name, "decoding");
    EXPECT_EQ(steps[2].name, "drawing");
    EXPECT_GE(steps[1].milliseconds, 40.0);
    const double sum = steps[0].milliseconds + steps[1].milliseconds + steps[2].milliseconds;
    EXPECT_LE(sum, wall.count());
    EXPECT_GE(sum, 0.95 * wall.count());
}

// Loading goes from picture to picture: what is shown is the whole, what is timed the parts.
TEST(ProgressTest, partsAreTimedWhileTheStepIsShown) {
    testing::internal::CaptureStderr();
    {
        veldris::Progress progress(true);
        progress.step("decoding");
        progress.share(0.25);
        for (int i = 0; i < 13; ++i) {
            const veldris::TimedPart part(&progress, "uploading");
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            const veldris::TimedPart inner(&progress, "conversion");
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        const veldris::TimedPart nobody(nullptr, "nothing");
        const auto steps = progress.getSteps();
        ASSERT_EQ(steps.size(), 4u);
        EXPECT_EQ(steps[1].name, "decoding");
        EXPECT_LT(steps[1].milliseconds, 200.0);
        for (const std::size_t i : {2u, 3u}) {
            EXPECT_EQ(steps[i].name, i == 2 ? "uploading" : "conversion");
            EXPECT_GE(steps[i].milliseconds, 13 * 50.0);
        }
    }
    const String shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find("decoding, 25 %, about 3 s left"), String::npos) << shown;
    EXPECT_EQ(shown.find("uploading"), String::npos) << shown;
}

TEST(ProgressTest, aTerminalShowsWhatLasts) {
    testing::internal::CaptureStderr();
    {
        veldris::Progress progress(true);
        progress.step("thinking");
        progress.share(0.5);
        std::this_thread::sleep_for(std::chrono::milliseconds(1300));
    }
    const String shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find("thinking, 50 %, about 1 s left"), String::npos) << shown;
    EXPECT_TRUE(shown.ends_with("\r\x1b[K")) << "the line is taken away";
}

TEST(ProgressTest, shortStepsAreNotShownHoweverMany) {
    testing::internal::CaptureStderr();
    {
        veldris::Progress progress(true);
        for (const char* name : {"first", "second", "third"}) {
            progress.step(name);
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ProgressTest, aPipeSeesNothing) {
    testing::internal::CaptureStderr();
    {
        veldris::Progress progress(false);
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace

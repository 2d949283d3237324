#include <veldris/scene/ModelReading.h>

#include "veldris/commands/ModelFile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <veldris/Session.h>
#include <veldris/console/Console.h>

namespace {

using ovMemory::String;

TEST(ModelReadingTest, itsPartsAreTimedAndItsWarningsTold) {
    const TemporaryFolder folder;
    const String model = writeQuad(folder);
    std::ofstream(folder.getPath("quad.png")) << "no picture";
    testing::internal::CaptureStderr();
    {
        veldris::Console console(false);
        veldris::Session session(&console.getProgress());
        veldris::DrawingOptions options;
        options.device = "software";
        options.noCache = true;
        String error;
        EXPECT_TRUE(session.open(options, error)) << error;
        const ovVeldris::ModelLoadResult loaded = readModel(console, session, model);
        EXPECT_TRUE(loaded) << loaded.error;
        const auto steps = console.getProgress().getSteps();
        for (const char* name : {"decoding", "uploading"})
            EXPECT_EQ(std::ranges::count(steps, name, &veldris::StepTime::name), 1) << name;
        EXPECT_FALSE(readModel(console, session, folder.getPath("nowhere.glb")));
        console.finish(0);
    }
    const String told = testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find("warning: image 0: the picture is missing"), String::npos) << told;
}

} // namespace

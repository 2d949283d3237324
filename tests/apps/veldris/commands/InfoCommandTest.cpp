#include "veldris/commands/CommandTesting.h"

namespace {

TEST(InfoCommandTest, tellsTheDeviceAndItsLimits) {
    const Outcome text = runVeldris({"info", "--device", "software", "--no-cache"});
    ASSERT_EQ(text.status, 0) << text.error;
    for (const char* part :
         {"veldris", "(software)", "limits", "compilers", "devices of --device:", "\n  0: "})
        EXPECT_NE(text.output.find(part), ovMemory::String::npos) << part;

    const Outcome json =
        runVeldris({"info", "--device", "software", "--no-cache", "--json", "--language", "hlsl"});
    ASSERT_EQ(json.status, 0) << json.error;
    const auto report = parseJson(json);
    EXPECT_TRUE(report["software"].GetBool());
    EXPECT_STREQ(report["language"].GetString(), "hlsl");
    EXPECT_GE(report["limits"]["textureSize"].GetInt(), 1024);
    EXPECT_GE(report["limits"]["colourTargets"].GetInt(), 8);
    EXPECT_FALSE(report["devices"].Empty());
}

TEST(InfoCommandTest, aMissingDeviceFails) {
    const Outcome outcome = runVeldris({"info", "--device", "4000"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("4000"), ovMemory::String::npos) << outcome.error;
}

} // namespace

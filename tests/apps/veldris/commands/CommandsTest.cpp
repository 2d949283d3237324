#include <veldris/commands/Commands.h>

#include "veldris/commands/CommandTesting.h"

#include <gtest/gtest.h>

namespace {

TEST(CommandsTest, helpAndVersionSucceed) {
    for (const char* option : {"--help", "--version", "--help-all"}) {
        const Outcome outcome = runVeldris({option});
        EXPECT_EQ(outcome.status, 0) << option;
        EXPECT_FALSE(outcome.output.empty()) << option;
    }
    const Outcome help = runVeldris({"--help"});
    for (const char* command : {"apply", "bake", "demo", "info", "shaders"})
        EXPECT_NE(help.output.find(command), ovMemory::String::npos) << command;
}

TEST(CommandsTest, wrongUsageIsStatusTwo) {
    const ovMemory::Buffer<ovMemory::Buffer<ovMemory::String>> cases = {
        {}, {"paint"}, {"apply"}, {"apply", "a.png"}, {"info", "--language", "cg"}, {"demo", "--width", "0"}};
    for (const auto& arguments : cases) {
        const Outcome outcome = runVeldris(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_FALSE(outcome.error.empty());
    }
}

} // namespace

#include "veldris/commands/CommandTesting.h"

namespace {

TEST(CompletionCommandTest, knowsItsShells) {
    EXPECT_EQ(runVeldris({"completion", "bash"}).status, 0);
    EXPECT_EQ(runVeldris({"completion", "zsh"}).status, 0);
    EXPECT_EQ(runVeldris({"completion", "fish"}).status, 2);
    EXPECT_EQ(runVeldris({"completion"}).status, 2);
    EXPECT_NE(runVeldris({"manual"}).output.find(".TH VELDRIS 1"), ovMemory::String::npos);
}

} // namespace

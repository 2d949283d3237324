#include "veldris/commands/CommandTesting.h"

namespace {

TEST(HelpCommandTest, showsTheHelpOfASubcommandOfASubcommand) {
    const Outcome outcome = runVeldris({"help", "bake", "irradiance"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find("--coefficients"), ovMemory::String::npos);
    EXPECT_EQ(runVeldris({"help", "bake", "iradiance"}).status, 2);
}

} // namespace

#include <veldris/usage/ProgramDescription.h>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

namespace {

using ovMemory::Buffer;
using ovMemory::String;

TEST(ProgramDescriptionTest, tellsWhatTheParserKnows) {
    CLI::App program("does things", "tool");
    CLI::App* paint = program.add_subcommand("paint", "draws");
    paint->footer("the end");
    String text = "red";
    bool flag = false;
    paint->add_option("WALL", text, "where")->required();
    paint->add_option("-c,--color", text, "how")
        ->check(CLI::IsMember({"red", "blue"}))
        ->capture_default_str();
    paint->add_flag("--wet,!--dry", flag, "how long");
    const veldris::CommandDescription described = veldris::describe(program);
    EXPECT_EQ(described.path, "tool");
    EXPECT_EQ(described.help, "does things");
    ASSERT_EQ(described.subcommands.size(), 1u);
    const veldris::CommandDescription& command = described.subcommands[0];
    EXPECT_EQ(command.path, "tool paint");
    EXPECT_EQ(command.footer, "the end");
    ASSERT_EQ(command.options.size(), 4u); // the first is --help
    EXPECT_EQ(command.options[0].longNames, Buffer<String>{"--help"});
    EXPECT_EQ(command.options[1].place, "WALL");
    EXPECT_TRUE(command.options[1].isRequired);
    EXPECT_TRUE(command.options[1].longNames.empty());
    EXPECT_EQ(command.options[2].longNames, Buffer<String>{"--color"});
    EXPECT_EQ(command.options[2].shortName, "-c");
    EXPECT_EQ(command.options[2].choices, (Buffer<String>{"red", "blue"}));
    EXPECT_EQ(command.options[2].defaultValue, "red");
    EXPECT_TRUE(command.options[2].takesValue);
    EXPECT_FALSE(command.options[3].takesValue);
    EXPECT_EQ(command.options[3].longNames, (Buffer<String>{"--wet", "--dry"}));
}

} // namespace

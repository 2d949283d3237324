#include <veldris/usage/ManualPage.h>

#include "veldris/commands/CommandTesting.h"
#include "veldris/commands/ModelFile.h"
#include "veldris/console/ProgramTesting.h"

namespace {

using ovMemory::String;

TEST(ManualPageTest, hasEverySubcommandAndOption) {
    veldris::CommandDescription tool{"tool", "does 'things'", "", {}, {}};
    veldris::CommandDescription paint{"tool paint", "draws", ".5 is\n'enough'\\n", {}, {}};
    paint.options.push_back({{}, "", "WALL", "where", true, true, {}, ""});
    paint.options.push_back({{"--color"}, "-c", "", "how", true, false, {"red", "blue"}, "red"});
    tool.subcommands.push_back(paint);
    EXPECT_EQ(veldris::manualPage(tool, "1.2"),
              ".TH VELDRIS 1 \"\" \"tool 1.2\"\n.SH NAME\ntool \\- does 'things'\n.SH SYNOPSIS\n"
              "\\fBtool\\fR \\fISUBCOMMAND\\fR...\n.SH OPTIONS\n.SH SUBCOMMANDS\n"
              ".SS \"tool paint\"\n\\fBtool paint\\fR \\fIWALL\\fR [\\fIOPTION\\fR]...\n.PP\ndraws\n"
              ".TP\n\\fIWALL\\fR\nwhere\n"
              ".TP\n\\fB\\-\\-color\\fR, \\fB\\-c\\fR red|blue\nhow (default: red)\n"
              ".PP\n.nf\n\\&.5 is\n\\&'enough'\\en\n.fi\n"
              ".SH EXIT STATUS\n0 when the work is done, 1 when it failed, 2 when the call was wrong.\n");
}

TEST(ManualPageTest, theProgramsPageIsSetWithoutWarnings) {
    if (runShell("command -v groff >/dev/null") != 0)
        GTEST_SKIP() << "groff is not installed";
    const TemporaryFolder folder;
    EXPECT_EQ(runShell("cd " + folder.getPath() + "; $V manual | groff -man -ww -Tutf8 >page 2>errors"), 0);
    std::ifstream errors(folder.getPath("errors"));
    EXPECT_EQ(String(std::istreambuf_iterator<char>(errors), {}), "");
}

} // namespace

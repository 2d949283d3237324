#include <veldris/scripting/Prompt.h>

#include <csignal>
#include <cstdio>
#include <gtest/gtest.h>
#include <iostream>
#include <ovScripts/Environment.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <sstream>
#include <veldris/console/Console.h>
#include <veldris/scripting/ScriptLogger.h>

namespace {

struct Session {
    int status = -1;
    std::string output;
    std::string error;
};

// What a pipe of these lines gives. Scripts find the function "pressCtrlC".
Session typed(const std::string& lines, const ovScripts::EnvironmentOptions& options = {}) {
    veldris::Console console(false);
    veldris::ScriptLogger logger(console);
    ovVeldris::System system;
    system.getLogManager()->setReceiver(&logger);
    ovVeldris::ScriptsEngine engine(&system);
    engine.initialize(options);
    engine.getEnvironment()->setFunc("pressCtrlC")->setFunction([](auto) {
        std::raise(SIGINT);
        return ovScripts::FunctionParameter();
    });
    std::istringstream input(lines);
    std::streambuf* const before = std::cin.rdbuf(input.rdbuf());
    std::cin.clear();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Session session;
    session.status = veldris::runPrompt(console, *engine.getEnvironment());
    session.output = testing::internal::GetCapturedStdout();
    session.error = testing::internal::GetCapturedStderr();
    std::cin.rdbuf(before);
    return session;
}

TEST(PromptTest, expressionsAreShownAndStatementsRun) {
    EXPECT_EQ(typed("x = 20\nx + 1, 'two'\nprint('said')\nnil\n").output, "21\ntwo\nsaid\n");
}

TEST(PromptTest, unfinishedLinesGoOn) {
    const Session session = typed("for i = 1, 2 do\nprint(i)\nend\nf = function(a)\nreturn a\nend\nf(\n7)\n");
    EXPECT_EQ(session.output, "1\n2\n7\n") << session.error;
    EXPECT_EQ(session.status, 0);
}

TEST(PromptTest, errorsAreToldAndTheNextLineRuns) {
    const Session session = typed("error('no')\n= =\nprint('still here')\n");
    EXPECT_EQ(session.output, "still here\n");
    EXPECT_NE(session.error.find("prompt:1: no"), std::string::npos) << session.error;
    EXPECT_NE(session.error.find("unexpected symbol near '='"), std::string::npos) << session.error;
    EXPECT_EQ(session.status, 1);
}

TEST(PromptTest, theLineThatRunsCanBeInterrupted) {
    const Session session =
        typed("pressCtrlC() while true do pcall(error) end\nprint('next')\nfor i = 1, 10000 do end\n",
              {.isInterruptible = true});
    EXPECT_EQ(session.output, "next\n");
    EXPECT_NE(session.error.find("prompt:1: the script was interrupted"), std::string::npos) << session.error;
    EXPECT_EQ(session.error.find("interrupted"), session.error.rfind("interrupted")) << session.error;
}

TEST(PromptTest, anUnfinishedEndIsAnError) {
    const Session session = typed("print(");
    EXPECT_EQ(session.status, 1);
    EXPECT_NE(session.error.find("near <eof>"), std::string::npos) << session.error;
}

} // namespace

// What starting scripts costs: an environment with every declaration, and a thread with one of its own.
#include "support/Aims.h"
#include "support/Pairs.h"

#include <ovScripts/Environment.h>
#include <ovVeldris/scripts/ScriptsEngine.h>

namespace {

constexpr int ROUNDS = 31;

void setUpEnvironment(benchmark::State& state) {
    ovVeldris::ScriptsEngine engine(nullptr);
    const ovBenchmarks::Side ours{[] {}, [&engine] { engine.initialize(); }};
    ovBenchmarks::aimAtMilliseconds(state, ovBenchmarks::runAlone(state, ours, ROUNDS), 5.0);
}

// In CPU time of the process, so that the worker's own set-up counts too.
void runEmptyTaskOnNewThread(benchmark::State& state) {
    ovVeldris::ScriptsEngine engine(nullptr);
    engine.initialize();
    ovScripts::Script script;
    script.setName("thread");
    script.setTargetInterpreter(ovScripts::INTERPRETER::LUA);
    script.setSources("local thread, task = ovTasks.Thread(), ovTasks.Task() task._workFunc = function() end "
                      "thread:addTask(task) thread:run() "
                      "assert(task:getSubmittedWork():waitFor(10)) thread:releaseTaskRef(task)");
    script.load();
    bool isDone = true;
    const ovBenchmarks::Side ours{[&engine] { engine.getEnvironment()->collectGarbage(); },
                                  [&] { isDone &= engine.getEnvironment()->execute(script); }};
    ovBenchmarks::aimAtMilliseconds(state, ovBenchmarks::runAlone(state, ours, ROUNDS), 10.0);
    if (!isDone)
        state.SkipWithError(engine.getEnvironment()->getLastExecutionResult().error.c_str());
}

BENCHMARK(setUpEnvironment)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(runEmptyTaskOnNewThread)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

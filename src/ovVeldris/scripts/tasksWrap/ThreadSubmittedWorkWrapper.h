// Views of submitted tasks in scripts.
#pragma once

namespace ovScripts {
class Environment;
}

namespace ovTasksWrap {

/// Binds ovTasks::ThreadSubmittedWork: how a script knows that a task is done.
class ThreadSubmittedWorkWrapper {
public:
    static void updateEnvironment(ovScripts::Environment* environment);
};

} // namespace ovTasksWrap

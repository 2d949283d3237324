// An environment whose scripts start threads.
#pragma once

#include "../support/Cases.h"

#include <mutex>
#include <ovVeldris/core/LogManager.h>

namespace luaTest {

/// Keeps the lines of several threads.
class LockedLogger : public ovLog::Logger {
public:
    void log(ovLog::StringView message, ovLog::StringView sender) override {
        const std::lock_guard lock(_mutex);
        _lines.push_back("[" + ovMemory::String(sender) + "] " + ovMemory::String(message));
    }
    ovMemory::Buffer<ovMemory::String> getLines() const {
        const std::lock_guard lock(_mutex);
        return _lines;
    }

private:
    mutable std::mutex _mutex;
    ovMemory::Buffer<ovMemory::String> _lines;
};

/// With a function "run(work, prepare)", which does one task on a new thread, waits for its end, and gives
/// the task and the thread.
class TaskEnvironment {
public:
    explicit TaskEnvironment(const ovScripts::EnvironmentOptions& options = {})
        : _environment(luaEnvironment(options)) {
        _logManager.setReceiver(&_logger);
        ovVeldris::ScriptsEngine::setupScriptsEnvironment(_environment.get(), &_logManager);
        EXPECT_EQ(evaluate(*_environment, R"(
            function finish(task) assert(task:getSubmittedWork():waitFor(60), 'the task does not end') end
            function script(text) local s = ovScripts.Script() s:setName('inner')
                s:setTargetInterpreter(ovScripts.INTERPRETER.LUA) s:setSources(text) s:load() return s end
            function run(work, prepare)
                local task, thread = ovTasks.Task(), ovTasks.Thread()
                if work then task._workFunc = work end
                if prepare then prepare(task) end
                thread:addTask(task) thread:run() finish(task)
                return task, thread
            end)"),
                  "nil");
    }

    ovScripts::Environment& get() { return *_environment; }
    void close() { _environment.reset(); }
    ovMemory::Buffer<ovMemory::String> getLines() const { return _logger.getLines(); }

private:
    LockedLogger _logger;
    ovVeldris::LogManager _logManager;
    ovMemory::UniquePtr<ovScripts::Environment> _environment;
};

using Lines = ovMemory::Buffer<ovMemory::String>;

} // namespace luaTest

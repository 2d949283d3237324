// Tasks that tell what happens to them, and a gate to hold a thread at.
#pragma once

#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <ovTasks/SchedulerTask.h>
#include <ovTasks/WorkerSettings.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ovTasks::probes {

/// Longer than anything takes here, even under sanitizers: a test that waits so long has failed.
constexpr std::chrono::seconds LONG(60);

/// What happened to tasks. Any thread may write and read.
class Diary {
public:
    void worked(int id) { _write(_worked, id); }
    void destroyed(int id) { _write(_destroyed, id); }

    /// The tasks in the order in which their work began, and in which they were destroyed.
    std::vector<int> getWorked() const { return _read(_worked); }
    std::vector<int> getDestroyed() const { return _read(_destroyed); }
    /// The threads on which a task was destroyed: one, unless something is wrong.
    std::vector<std::thread::id> getDestroyers(int id) const { return _threadsOf(_destroyed, id); }
    std::vector<std::thread::id> getWorkers(int id) const { return _threadsOf(_worked, id); }

private:
    using Entries = std::vector<std::pair<int, std::thread::id>>;

    void _write(Entries& entries, int id) {
        const std::lock_guard lock(_mutex);
        entries.emplace_back(id, std::this_thread::get_id());
    }
    std::vector<int> _read(const Entries& entries) const {
        const std::lock_guard lock(_mutex);
        std::vector<int> ids;
        for (const auto& [id, thread] : entries)
            ids.push_back(id);
        return ids;
    }
    std::vector<std::thread::id> _threadsOf(const Entries& entries, int id) const {
        const std::lock_guard lock(_mutex);
        std::vector<std::thread::id> threads;
        for (const auto& [entry, thread] : entries)
            if (entry == id)
                threads.push_back(thread);
        return threads;
    }

    mutable std::mutex _mutex;
    Entries _worked;
    Entries _destroyed;
};

/// A task that writes a diary, and does something more if asked to.
class DiaryTask : public SchedulerTask {
public:
    DiaryTask(Diary& diary, int id, std::function<void()> more = {}, std::function<void()> atEnd = {})
        : _diary(diary)
        , _id(id)
        , _more(std::move(more))
        , _atEnd(std::move(atEnd)) {}
    ~DiaryTask() override {
        _diary.destroyed(_id);
        if (_atEnd)
            _atEnd();
    }
    void work() override {
        _diary.worked(_id);
        if (_more)
            _more();
    }

private:
    Diary& _diary;
    int _id;
    std::function<void()> _more;
    std::function<void()> _atEnd;
};

inline std::unique_ptr<DiaryTask> makeTask(Diary& diary, int id, std::function<void()> more = {},
                                           std::function<void()> atEnd = {}) {
    return std::make_unique<DiaryTask>(diary, id, std::move(more), std::move(atEnd));
}

/// Closed at first; those who pass wait until it is opened.
class Gate {
public:
    void open() {
        const std::lock_guard lock(_mutex);
        _isOpen = true;
        _opened.notify_all();
    }
    /// False when nobody opens it.
    bool pass() {
        std::unique_lock lock(_mutex);
        return _opened.wait_for(lock, LONG, [this] { return _isOpen; });
    }

private:
    std::mutex _mutex;
    std::condition_variable _opened;
    bool _isOpen = false;
};

/// Lines of failures, and the settings that send them here.
class Failures {
public:
    WorkerSettings settings(std::string name) {
        return {std::move(name), [this](ovMemory::StringView line) {
                    const std::lock_guard lock(_mutex);
                    _lines.emplace_back(line);
                }};
    }
    std::vector<std::string> getLines() const {
        const std::lock_guard lock(_mutex);
        return _lines;
    }

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _lines;
};

} // namespace ovTasks::probes

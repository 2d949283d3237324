// Loops over all cores.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <ovCommon/WorkProgress.h>
#include <system_error>
#include <thread>
#include <vector>

namespace ovCommon {

/// Calls task(0) to task(count - 1), each once, and returns when all have ended. The calling thread and as
/// many others as there are further cores take the next number each, so that long and short tasks may mix.
/// Results must not depend on which thread takes which task, nor on the order. Nothing may be thrown from a
/// task.
///
/// Starting threads takes some 20 microseconds each; give tasks of a millisecond and more in all. Where no
/// thread can be started, the calling one does everything.
template <typename Task>
void parallelFor(std::size_t count, const Task& task) {
    std::atomic<std::size_t> next = 0;
    const auto work = [&next, count, &task] {
        for (std::size_t i = next++; i < count; i = next++)
            task(i);
    };
    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::jthread> others;
    try {
        for (std::size_t i = 1; i < std::min(cores, count); ++i)
            others.emplace_back(work);
    } catch (const std::system_error&) { // no more threads: those that run and this one suffice
    }
    work();
} // the others are joined here

/// The same, and tells the share of the tasks that are done after each of them.
template <typename Task>
void parallelFor(std::size_t count, const WorkProgress& progress, const Task& task) {
    std::atomic<std::size_t> done = 0;
    parallelFor(count, [&](std::size_t i) {
        task(i);
        if (progress)
            progress(static_cast<double>(++done) / static_cast<double>(count));
    });
}

} // namespace ovCommon

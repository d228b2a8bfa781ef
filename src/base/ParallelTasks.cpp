// Tasks for all cores of the machine.
#include "base/ParallelTasks.h"

#include <algorithm>
#include <atomic>
#include <thread>

std::vector<std::exception_ptr> RunParallelTasks(std::size_t count, const std::function<void(std::size_t)>& task) {
    std::vector<std::exception_ptr> exceptions(count);
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            try {
                task(i);
            } catch (...) {
                exceptions[i] = std::current_exception();
            }
        }
    };

    const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::jthread> helpers;  // joined at the end, after the calling thread has found no task any more
    try {
        helpers.reserve(std::min(cores, count));
        while (helpers.size() + 1 < std::min(cores, count)) helpers.emplace_back(work);
    } catch (const std::exception&) {
        // The system refuses another thread or its memory: those that exist do all the work.
    }
    work();
    helpers.clear();
    return exceptions;
}

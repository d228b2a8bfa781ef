// Tasks for all cores of the machine.
#include "files/ParallelTasks.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace FileStorage {

namespace {

std::vector<std::exception_ptr> RunOn(std::size_t threads, std::size_t count,
                                      const std::function<void(std::size_t)>& task) {
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

    std::vector<std::jthread> helpers;  // joined at the end, after the calling thread has found no task any more
    try {
        helpers.reserve(std::min(threads, count));
        while (helpers.size() + 1 < std::min(threads, count)) helpers.emplace_back(work);
    } catch (const std::exception&) {
        // The system refuses another thread or its memory: those that exist do all the work.
    }
    work();
    helpers.clear();
    return exceptions;
}

}  // namespace

std::vector<std::exception_ptr> RunParallelTasks(std::size_t count, const std::function<void(std::size_t)>& task) {
    return RunOn(AllowedCores(), count, task);
}

void RunTasks(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& task) {
    if (threads <= 1 || count <= 1) {
        for (std::size_t i = 0; i < count; ++i) task(i);
        return;
    }
    for (const std::exception_ptr& exception : RunOn(threads, count, task))
        if (exception) std::rethrow_exception(exception);
}

unsigned ThreadsFor(std::size_t items, std::size_t itemsPerThread, unsigned threads) {
    return static_cast<unsigned>(std::clamp<std::size_t>(items / itemsPerThread, 1, std::max(threads, 1u)));
}

}  // namespace FileStorage

// Tasks for all cores of the machine.
#pragma once
#include <cstddef>
#include <exception>
#include <functional>
#include <vector>

#include "files/Cores.h"

namespace FileStorage {

/// Runs task(0) to task(count - 1) on as many threads as there are allowed cores, the calling one included, and returns
/// when all have ended. Indices are started in their order. Fewer threads work when the system refuses one.
/// @param task  called from several threads at once
/// @return the exception of each task, null where it returned
std::vector<std::exception_ptr> RunParallelTasks(std::size_t count, const std::function<void(std::size_t)>& task);

/// The same on at most @p threads threads. With 1 no thread is started.
/// @throws the exception of the lowest index, after all tasks have ended; with one thread the tasks after it do not run
void RunTasks(std::size_t count, unsigned threads, const std::function<void(std::size_t)>& task);

/// Threads for work that consists of @p items equal items: at most @p threads, and each with at least @p
/// itemsPerThread, so that small work starts none. At least 1.
[[nodiscard]] unsigned ThreadsFor(std::size_t items, std::size_t itemsPerThread, unsigned threads);

}  // namespace FileStorage

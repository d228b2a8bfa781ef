// Tasks for all cores of the machine.
#pragma once
#include <cstddef>
#include <exception>
#include <functional>
#include <vector>

/// Runs task(0) to task(count - 1) on as many threads as the machine has cores, the calling one included, and returns
/// when all have ended. Indices are started in their order. Fewer threads work when the system refuses one.
/// @param task  called from several threads at once
/// @return the exception of each task, null where it returned
std::vector<std::exception_ptr> RunParallelTasks(std::size_t count, const std::function<void(std::size_t)>& task);

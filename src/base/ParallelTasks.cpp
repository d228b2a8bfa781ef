// Tasks for all cores of the machine.
#include "base/ParallelTasks.h"

std::vector<std::exception_ptr> RunParallelTasks(std::size_t count, const std::function<void(std::size_t)>& task) {
    std::vector<std::exception_ptr> exceptions(count);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            task(i);
        } catch (...) {
            exceptions[i] = std::current_exception();
        }
    }
    return exceptions;
}

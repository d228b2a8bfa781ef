// The cores of the machine and the affinity of the thread.
#include "files/Cores.h"

#include <sched.h>

#include <algorithm>
#include <thread>

namespace FileStorage {

unsigned AllowedCores() {
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    cpu_set_t allowed;
    // Fails on machines with more cores than the set has bits: their number is then the only limit.
    if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0) return cores;
    return std::clamp(static_cast<unsigned>(CPU_COUNT(&allowed)), 1u, cores);
}

}  // namespace FileStorage

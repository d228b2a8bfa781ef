// How many threads can run at the same time.
#pragma once

namespace FileStorage {

/// Cores that this thread, and those that it starts, may run on: those of the machine, or fewer where the process is
/// restricted to some of them (taskset, containers with a set of cores). At least 1.
[[nodiscard]] unsigned AllowedCores();

}  // namespace FileStorage

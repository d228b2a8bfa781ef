// What scenepane-read may do: little, because the libraries that parse foreign files crash on bad ones, and worse.
#pragma once
#include <cstdint>

/// Limits of the whole process.
struct SandboxLimits {
    std::uint64_t memoryBytes = 0;  ///< address space, and as much again for the result; 0 for no limit
    std::uint64_t seconds = 0;      ///< processor time; 0 for no limit
};

/// Sets the limits and ends the process together with the one that started it. No core file is written.
/// @throws std::system_error
void SetLimits(const SandboxLimits& limits);

/// From here on, for the rest of the process: no network, no other process, no thread, and files are opened for reading
/// only. A call that is not allowed fails with EPERM. Needs no privileges.
/// @throws std::system_error where the kernel has no such filter
void EnterSandbox();

// What kv_interrupted_writer and its test agree about.
#pragma once
#include <cstddef>

inline constexpr std::size_t kInterruptedBytes = 64 * 1024;  ///< of the file that is written

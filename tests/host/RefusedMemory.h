// Memory that is short for a while, for all of the test program.
#pragma once
#include <cstddef>
#include <cstdint>

// The address sanitizer replaces the same operators.
#ifndef __SANITIZE_ADDRESS__
/// Allocations of at least this many bytes fail; SIZE_MAX for none.
extern std::size_t g_refusedBytes;
#endif

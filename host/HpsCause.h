// What is wrong with the length of an hps file: the library that reads it refuses a short one with the same text as
// other damage, and does not report a long one.
#pragma once
#include <string>

/// @param file  path in bytes
/// @return a sentence about a file that is shorter or longer than its header announces; empty for any other, and for
/// one
///         that cannot be read
[[nodiscard]] std::string WrongHpsLength(const std::string& file);

// Why the viewer refuses an hps file as invalid: the library that reads it has one text for all causes.
#pragma once
#include <string>

/// @param file  path in bytes
/// @return a sentence about a file that is shorter or longer than its header announces; empty for any other, and for
/// one
///         that cannot be read
[[nodiscard]] std::string CauseOfInvalidHps(const std::string& file);

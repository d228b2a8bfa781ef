// Numbers as text: the shortest text that gives the same number when it is read. Independent of the locale.
#pragma once
#include <cstdint>
#include <string>

namespace simulate {

/// @return digits, with a sign where the number is negative
[[nodiscard]] std::string NumberText(int number);
[[nodiscard]] std::string NumberText(std::uint64_t number);
/// @return a fixed or scientific notation, whichever is shorter; valid JSON for finite numbers
[[nodiscard]] std::string NumberText(float number);

}  // namespace simulate

// Numbers as text: the shortest text that gives the same number when it is read. Independent of the locale.
#pragma once
#include <cstdint>
#include <string>

namespace simulate {

[[nodiscard]] std::string NumberText(int number);
[[nodiscard]] std::string NumberText(std::uint64_t number);
[[nodiscard]] std::string NumberText(float number);

}  // namespace simulate

// The order of names that hold numbers.
#pragma once
#include <string_view>

/// Whether @p a comes before @p b: "scan2" before "scan10". Runs of ASCII digits are compared as numbers, other bytes
/// as they are, with ASCII letters of both cases next to each other. A strict total order: names that differ are never
/// equal.
[[nodiscard]] bool NaturalLess(std::string_view a, std::string_view b);

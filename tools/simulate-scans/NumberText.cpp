// By std::to_chars, which ignores the locale.
#include "NumberText.h"

#include <array>
#include <charconv>

namespace simulate {
namespace {

template <typename Number>
std::string Print(Number number) {
    std::array<char, 64> buffer{};
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

}  // namespace

std::string NumberText(int number) { return Print(number); }
std::string NumberText(std::uint64_t number) { return Print(number); }
std::string NumberText(float number) { return Print(number); }

}  // namespace simulate

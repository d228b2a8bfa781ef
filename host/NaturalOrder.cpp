// Names are compared in pieces: a run of digits, or one byte.
#include "NaturalOrder.h"

#include <algorithm>
#include <cstddef>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

unsigned char Folded(char c) { return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c); }

/// The digits that @p text begins with, without zeros in front of the number.
std::string_view NumberAt(std::string_view text, std::size_t& length) {
    length = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsDigit) - text.begin());
    std::string_view number = text.substr(0, length);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

}  // namespace

bool NaturalLess(std::string_view a, std::string_view b) {
    const std::string_view wholeA = a, wholeB = b;
    while (!a.empty() && !b.empty()) {
        std::size_t lengthA = 1, lengthB = 1;
        if (IsDigit(a.front()) && IsDigit(b.front())) {
            const std::string_view numberA = NumberAt(a, lengthA), numberB = NumberAt(b, lengthB);
            if (numberA.size() != numberB.size()) return numberA.size() < numberB.size();
            if (numberA != numberB) return numberA < numberB;
        } else if (Folded(a.front()) != Folded(b.front())) {
            return Folded(a.front()) < Folded(b.front());
        }
        a.remove_prefix(lengthA);
        b.remove_prefix(lengthB);
    }
    if (a.empty() != b.empty()) return a.empty();
    return wholeA < wholeB;  // "a01" and "a1", "A" and "a"
}

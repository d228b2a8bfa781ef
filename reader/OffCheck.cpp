// A vertex or a face per line, as the library reads them. What follows the coordinates and the indices, as colours,
// does not matter, so the forms of the header (COFF, NOFF) are alike.
#include "OffCheck.h"

#include <cstdint>
#include <limits>
#include <vector>

#include "NumberWords.h"

namespace {

/// The current word as a number.
double NumberOf(const NumberWords& words) {
    double value = 0;
    if (!words.Number(value)) throw words.NoNumber();
    return value;
}

double NextOfLine(NumberWords& words) {
    if (!words.NextOfLine()) throw UnreadableFile(kCutShort);
    return NumberOf(words);
}

double FirstOfLine(NumberWords& words) {
    if (!words.Next()) throw UnreadableFile(kCutShort);
    return NumberOf(words);
}

std::int32_t IndexOf(double value) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return value >= 0 && value <= kMost ? static_cast<std::int32_t>(value) : -1;
}

void RequireFaces(NumberWords& words, double faces, std::size_t vertices) {
    std::vector<std::int32_t> corners;
    for (std::size_t i = 0; static_cast<double>(i) < faces; ++i) {
        corners.clear();
        for (double left = FirstOfLine(words); left >= 1; --left) corners.push_back(IndexOf(NextOfLine(words)));
        RequireCorners(corners, vertices, i);
        words.SkipLine();
    }
}

}  // namespace

void RequireWholeOff(std::string_view text) {
    NumberWords words(text);
    if (!words.Next() || !words.Word().ends_with("OFF") || !words.Next() || words.Is("binary")) return;
    const double vertices = NumberOf(words);
    const double faces = NextOfLine(words);
    words.SkipLine();
    for (double left = vertices; left >= 1; --left) {
        (void)FirstOfLine(words);
        for (int i = 1; i < 3; ++i) (void)NextOfLine(words);
        words.SkipLine();
    }
    RequireFaces(words, faces, vertices >= 1 ? static_cast<std::size_t>(vertices) : 0);
}

// Reads the text from left to right. Numbers are read by std::from_chars, whose result does not depend on the locale.
#include "CutOption.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace {

using KV_ScenePane::LassoPoint;
using KV_ScenePane::SegmentationMode;

struct NamedMode {
    std::string_view name;
    SegmentationMode mode;
    std::size_t fewestPoints;
};

constexpr NamedMode kModes[] = {{"inside", KV_ScenePane::PolygonInside, 2},
                                {"outside", KV_ScenePane::PolygonOutside, 2},
                                {"visible", KV_ScenePane::PolygonVisible, 2},
                                {"freehand-inside", KV_ScenePane::FreehandInside, 1},
                                {"freehand-outside", KV_ScenePane::FreehandOutside, 1},
                                {"freehand-visible", KV_ScenePane::FreehandVisible, 1}};

/// In quotes, on one line, and short: a lasso may have thousands of points.
std::string Quoted(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    std::string quoted = "\"";
    quoted.append(text.substr(0, kLongest)).append(text.size() > kLongest ? "...\"" : "\"");
    std::ranges::replace_if(
        quoted, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
    return quoted;
}

/// Empty for a text that is not one finite number as a whole.
std::optional<double> FiniteNumber(std::string_view text) {
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

/// Empty for a text that is not "X,Y".
std::optional<LassoPoint> ReadPoint(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    const auto x = FiniteNumber(text.substr(0, comma)), y = FiniteNumber(text.substr(comma + 1));
    return x && y ? std::optional(LassoPoint{*x, *y}) : std::nullopt;
}

/// Cuts the text off up to the separator, which is dropped, or all of it.
std::string_view TakeUpTo(char separator, std::string_view& text) {
    const std::string_view part = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

}  // namespace

std::variant<LassoCut, LassoError> ParseLasso(std::string_view text) {
    if (text.find(':') == std::string_view::npos) return LassoError{"there is no colon after the mode"};
    const std::string_view name = TakeUpTo(':', text);
    const auto* const mode = std::ranges::find(kModes, name, &NamedMode::name);
    if (mode == std::end(kModes)) return LassoError{Quoted(name) + " is no mode"};
    LassoCut cut{mode->mode, {}};
    cut.points.reserve(static_cast<std::size_t>(std::ranges::count(text, ';')) + 1);
    // A semicolon at the end leaves an empty last point, which is refused as any other.
    for (bool hasMore = true; hasMore;) {
        const std::size_t rest = text.size();
        const std::string_view part = TakeUpTo(';', text);
        const auto point = ReadPoint(part);
        if (!point)
            return LassoError{"point " + std::to_string(cut.points.size() + 1) + " is " + Quoted(part) +
                              " and not X,Y, two finite numbers"};
        cut.points.push_back(*point);
        hasMore = part.size() < rest;
    }
    if (cut.points.size() < mode->fewestPoints) return LassoError{"a polygon needs at least two points"};
    return cut;
}

std::string_view LassoModeName(SegmentationMode mode) {
    const auto* const found = std::ranges::find(kModes, mode, &NamedMode::mode);
    return found == std::end(kModes) ? std::string_view("unknown") : found->name;
}

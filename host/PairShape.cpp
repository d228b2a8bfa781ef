// The distances of the points from the line through two that are far apart, in double: coordinates are floats, whose
// squares it holds.
#include "PairShape.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentPoint;
using Vector = std::array<double, 3>;
using Side = AlignmentPoint AlignmentPair::*;

Vector FromTo(const AlignmentPoint& a, const AlignmentPoint& b) {
    Vector v{};
    for (std::size_t i = 0; i < v.size(); ++i) v[i] = double{b.point[i]} - double{a.point[i]};
    return v;
}

double LengthOf(const Vector& v) { return std::hypot(v[0], v[1], v[2]); }

Vector Cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

const AlignmentPoint& FarthestFrom(const AlignmentPoint& from, std::span<const AlignmentPair> pairs, Side side) {
    const auto distance = [&](const AlignmentPair& pair) { return LengthOf(FromTo(from, pair.*side)); };
    return (*std::ranges::max_element(pairs, {}, distance)).*side;
}

bool AreOnALine(std::span<const AlignmentPair> pairs, Side side) {
    const AlignmentPoint& begin = FarthestFrom(pairs.front().*side, pairs, side);
    const Vector line = FromTo(begin, FarthestFrom(begin, pairs, side));
    const double length = LengthOf(line);
    return std::ranges::all_of(pairs, [&](const AlignmentPair& pair) {
        // The cross product has the length of the line times the distance from it.
        return LengthOf(Cross(line, FromTo(begin, pair.*side))) <= kOnLineTolerance * length * length;
    });
}

}  // namespace

bool AreOnALine(std::span<const AlignmentPair> pairs) {
    if (pairs.size() < 2) return false;
    return AreOnALine(pairs, &AlignmentPair::moving) || AreOnALine(pairs, &AlignmentPair::fixed);
}

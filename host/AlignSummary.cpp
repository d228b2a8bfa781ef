// Sentences about alignments, and the numbers in them.
#include "AlignSummary.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "PairShape.h"

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentPoint;
using KV_ScenePane::AlignmentResult;

struct AlignSummary {
    Q_DECLARE_TR_FUNCTIONS(AlignSummary)
};

QString ObjectsText(int count) {
    return count == 1 ? AlignSummary::tr("1 object") : AlignSummary::tr("%1 objects").arg(count);
}

bool IsFinite(const AlignmentPoint& point) {
    return std::ranges::all_of(point.point, [](float value) { return std::isfinite(value); });
}

/// Largest distance of a point from the first one.
double Spread(const AlignmentResult& result, AlignmentPoint AlignmentPair::*side) {
    double spread = 0;
    const auto& first = (result.pairs.front().*side).point;
    for (const AlignmentPair& pair : result.pairs) {
        const auto& p = (pair.*side).point;
        spread = std::max(spread, std::hypot(static_cast<double>(p[0]) - first[0], static_cast<double>(p[1]) - first[1],
                                             static_cast<double>(p[2]) - first[2]));
    }
    return spread;
}

QString HandSummary(const AlignOutcome& outcome) {
    if (outcome.movedObjects == 0) return AlignSummary::tr("Alignment by hand: nothing was moved.");
    const QString text =
        outcome.movedObjects == 1
            ? AlignSummary::tr("Aligned by hand: %1 turned by %2°, its centre moved by %3 mm.")
            : AlignSummary::tr("Aligned by hand: %1 turned by %2°, the centre of the first moved by %3 mm.");
    return text.arg(ObjectsText(outcome.movedObjects), QString::number(outcome.displacement.degrees, 'f', 2),
                    QString::number(outcome.displacement.distance, 'f', 2));
}

QString PointsSummary(const AlignOutcome& outcome) {
    const AlignmentResult& result = outcome.result;
    if (result.pairs.empty()) return AlignSummary::tr("Alignment by points: ended, nothing was moved.");
    if (!result.isFound)
        return AlignSummary::tr("No transform was found: %1. Nothing was moved.").arg(FailureReason(result));
    const QString moved = ObjectsText(outcome.movedObjects);
    if (result.pairs.size() == 1)
        return AlignSummary::tr("Aligned by one point and the surface normals there: %1 moved.").arg(moved);
    const int largest = LargestResidual(result);
    const QString summary =
        AlignSummary::tr("Aligned by %1 points: %2 moved; residual %3 mm (RMS), at most %4 mm at pair %5.")
            .arg(QString::number(result.pairs.size()), moved, LengthText(result.rms),
                 LengthText(result.residuals[static_cast<std::size_t>(largest)]), QString::number(largest + 1));
    // Small residuals do not show it.
    return AreOnALine(result.pairs)
               ? summary + AlignSummary::tr(" The points are on one line: they do not fix the turn about it.")
               : summary;
}

}  // namespace

Displacement DisplacementBetween(const Matrix4& before, const Matrix4& after, const std::array<double, 3>& point) {
    const auto at = [](const Matrix4& m, std::size_t row, std::size_t column) {
        return static_cast<double>(m[4 * row + column]);
    };
    // The point in the frame of the sensor: the inverse of the first rotation is its transpose.
    std::array<double, 3> local{}, moved{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) local[i] += at(before, j, i) * (point[j] - at(before, j, 3));
    double squares = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        moved[i] = at(after, i, 3);
        for (std::size_t j = 0; j < 3; ++j) {
            moved[i] += at(after, i, j) * local[j];
            const double change = at(after, i, j) - at(before, i, j);
            squares += change * change;
        }
    }
    // Two rotations differ by sqrt(8) sin(angle / 2). Unlike the cosine of the trace, this is exact for small angles.
    const double sine = std::min(1.0, std::sqrt(squares / 8.0));
    return {.degrees = 2.0 * std::asin(sine) * 180.0 / std::numbers::pi,
            .distance = std::hypot(moved[0] - point[0], moved[1] - point[1], moved[2] - point[2])};
}

QString SummaryOf(const AlignOutcome& outcome) {
    return outcome.way == AlignWay::ByHand ? HandSummary(outcome) : PointsSummary(outcome);
}

QString FailureReason(const AlignmentResult& result) {
    const bool areFinite = std::ranges::all_of(
        result.pairs, [](const AlignmentPair& pair) { return IsFinite(pair.moving) && IsFinite(pair.fixed); });
    if (!areFinite) return AlignSummary::tr("a point has no finite coordinates");
    // The only other reason: the points of a side do not differ.
    return Spread(result, &AlignmentPair::moving) <= Spread(result, &AlignmentPair::fixed)
               ? AlignSummary::tr("the points on the moving scans are all at one place")
               : AlignSummary::tr("the points on the fixed scans are all at one place");
}

int LargestResidual(const AlignmentResult& result) {
    if (result.residuals.size() < 2) return -1;
    return static_cast<int>(std::ranges::max_element(result.residuals) - result.residuals.begin());
}

QString LengthText(double length) { return QString::number(length, 'f', 4); }

QString SetupHint(AlignWay way, int objects, int moving) {
    if (objects == 0) return AlignSummary::tr("There is no object to align.");
    if (moving == 0)
        return AlignSummary::tr(
            "Nothing may move: check \"May move\" in the list of objects for each scan that the alignment moves.");
    if (way == AlignWay::ByPoints && moving == objects)
        return objects == 1 ? AlignSummary::tr("Points need a second scan that stays: open it first.")
                            : AlignSummary::tr(
                                  "All objects may move: uncheck \"May move\" in the list of objects for at least one "
                                  "that stays.");
    return {};
}

// What an alignment did, as sentences for the operator. No viewer and no window.
#pragma once
#include <QString>

#include "AlignProgress.h"
#include "KV_ScenePane/Alignment.h"
#include "TransformFile.h"

/// A rigid motion as an operator sees it.
struct Displacement {
    double degrees = 0;   ///< 0 to 180
    double distance = 0;  ///< of a given point, scene units
};
/// @param before, after  of one object
/// @param point          of the object, world frame, before the motion
[[nodiscard]] Displacement DisplacementBetween(const Matrix4& before, const Matrix4& after,
                                               const std::array<double, 3>& point);

/// The end of an alignment.
struct AlignOutcome {
    AlignWay way = AlignWay::ByHand;
    int movedObjects = 0;
    Displacement displacement;             ///< of the first one that moved, at the centre of its box
    KV_ScenePane::AlignmentResult result;  ///< by points: no pairs when the operator has ended it before the last one
};
/// One sentence.
[[nodiscard]] QString SummaryOf(const AlignOutcome& outcome);

/// Why pairs of points gave no transform, as the end of a sentence.
[[nodiscard]] QString FailureReason(const KV_ScenePane::AlignmentResult& result);
/// Index of the pair with the largest residual; -1 for less than two pairs and without a transform.
[[nodiscard]] int LargestResidual(const KV_ScenePane::AlignmentResult& result);
/// Digits of a length for the screen, scene units.
[[nodiscard]] QString LengthText(double length);

/// What the operator must change before an alignment can start; empty when it can.
[[nodiscard]] QString SetupHint(AlignWay way, int objects, int moving);

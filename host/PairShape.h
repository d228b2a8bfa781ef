// Whether points of pairs are far enough from one line to fix the turn about it.
#pragma once
#include <span>

#include "KV_ScenePane/Alignment.h"

/// Points that are all nearer to a line than this part of their extent count as on the line.
inline constexpr double kOnLineTolerance = 0.01;

/// Whether the moving or the fixed points of two pairs or more are on one line, or nearly: no point is farther from it
/// than kOnLineTolerance times its length. The turn about that line is then arbitrary. The line goes through the point
/// that is farthest from the first one, and through the point that is farthest from that. False for a single pair,
/// whose normals fix the tilt. Any thread.
[[nodiscard]] bool AreOnALine(std::span<const KV_ScenePane::AlignmentPair> pairs);

// Alignment of scans: what a running alignment shows, pairs of points, and what an alignment by points found.
#pragma once
#include <cstdint>
#include <vector>

namespace KV_ScenePane {

/// What an alignment waits for.
enum class AlignmentPhase : std::int32_t {
    /// No alignment is running. (Xlib defines None as a macro.)
    Idle = 0,
    /// The mouse turns and moves the variable objects: AlignInteractive().
    ByHand = 1,
    /// Points are picked on the variable objects: AlignPickPoints().
    PickMoving = 2,
    /// As many points are picked on the other objects.
    PickFixed = 3
};

/// A point of a surface, world frame, scene units.
struct AlignmentPoint {
    float point[3] = {};
    /// Of length 1, or 0 where it is unknown. A single pair needs both of its normals: see ScenePane::AlignByPairs().
    float normal[3] = {};
};

/// Two points that belong together.
struct AlignmentPair {
    /// On the objects that move, as they are before the alignment.
    AlignmentPoint moving;
    /// On the objects that stay.
    AlignmentPoint fixed;
};

/// The state of a running alignment.
struct AlignmentPicks {
    AlignmentPhase phase = AlignmentPhase::Idle;
    /// The points so far, in the order of the picks; point i of both lists is a pair.
    std::vector<AlignmentPoint> moving, fixed;
};

/// What an alignment by points found.
struct AlignmentResult {
    /// Whether a transform was found. It was applied to every variable object.
    bool isFound = false;
    /// The rigid transform of moving points to fixed points, world frame: 4 x 4, row by row, last row 0, 0, 0, 1.
    double transform[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    /// The pairs that it was computed from, in the order of the picks.
    std::vector<AlignmentPair> pairs;
    /// Per pair the distance of the transformed moving point from the fixed point, scene units; empty when not found.
    std::vector<double> residuals;
    /// Root of the mean of the squared residuals, scene units.
    double rms = 0;
};

}  // namespace KV_ScenePane

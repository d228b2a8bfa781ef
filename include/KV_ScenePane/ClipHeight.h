// What a placement of the clip plane at the data found.
#pragma once
#include <cstdint>

namespace KV_ScenePane {

/// The rule that gave the height.
enum ClipHeightKind : std::int32_t {
    /// No height was found.
    HeightNotDecided = 0,
    /// Too few points lie near the spot that is looked at: the mean height of all points, weighted by how much their
    /// surfaces face up or sideways. A vertex that faces straight down does not count.
    HeightFromAllPoints = 1,
    /// The spot is flat: the next level above the main one that has clearly fewer points, or else a standard deviation
    /// above the main level.
    HeightFlatSpot = 2,
    /// The spot is curved: the foot of its main level.
    HeightCurvedSpot = 3
};

struct ClipHeight {
    bool found = false;
    /// z of the plane, scene units, world frame; -20 when none was found.
    float height = -20.0f;
    ClipHeightKind kind = HeightNotDecided;
};

}  // namespace KV_ScenePane

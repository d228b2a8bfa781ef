// What a placement of the clip plane at the data found.
#pragma once
#include <cstdint>

namespace KV_ScenePane {

/// The rule that gave the height.
enum ClipHeightKind : std::int32_t {
    HeightNotDecided = 0,     ///< no height was found
    HeightFromAllPoints = 1,  ///< mean height of all points, as too few lie near the spot that is looked at
    HeightFlatSpot = 2,       ///< the spot is flat: a lower level above its main level, or just above the main level
    HeightCurvedSpot = 3      ///< the spot is curved: the foot of its main level
};

struct ClipHeight {
    bool found = false;
    /// z of the plane, scene units, world frame; -20 when none was found.
    float height = -20.0f;
    ClipHeightKind kind = HeightNotDecided;
};

}  // namespace KV_ScenePane

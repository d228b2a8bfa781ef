// The height estimate a second time, written in the plainest way and in double precision: it shares no code with the
// viewer or the component library. Slow: every sample is spread over its bins one by one.
#pragma once
#include <memory>
#include <span>
#include <vector>

#include "KV_ScenePane/ClipHeight.h"
#include "geometry/Mesh.h"

struct ReferenceClipHeight {
    bool found = false;
    double height = -20;
    KV_ScenePane::ClipHeightKind kind = KV_ScenePane::HeightNotDecided;
    double binWidth = 0;
    double rms = 0;            ///< distance from the best plane; 0 when too few points are near the spot
    bool secondLevel = false;  ///< of a flat spot: a second level gave the height
};

/// Of finite vertices, all of which are sampled.
ReferenceClipHeight ReferenceEstimate(std::span<const std::shared_ptr<Mesh>> meshes);

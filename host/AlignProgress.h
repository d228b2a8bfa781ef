// How far an alignment is, as the tools and the hint show it.
#pragma once
#include "KV_ScenePane/Alignment.h"

/// How the operator aligns.
enum class AlignWay {
    ByHand,   ///< the mouse turns and moves the scans
    ByPoints  ///< pairs of points are picked
};

struct AlignProgress {
    KV_ScenePane::AlignmentPhase phase = KV_ScenePane::AlignmentPhase::Idle;
    /// Points that were picked on the scans that move, and on the others.
    int moving = 0, fixed = 0;
    bool operator==(const AlignProgress&) const = default;
};

// Which vectors this processor has. Asked once: the answer is the same for the whole run.
#include "geometry/FloatLanes.h"

LaneCount BestLaneCount() {
#if defined(KV_HAS_EIGHT_LANES)
    static const bool hasEight = __builtin_cpu_supports("avx2") != 0;
    if (hasEight) return LaneCount::kEight;
#endif
    return LaneCount::kFour;
}

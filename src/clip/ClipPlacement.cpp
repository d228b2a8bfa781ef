// Places the clip plane at the data. The estimate of its height is clip/ClipHeight.h.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

#include "clip/ClipHeight.h"
#include "control/ScenePaneCtrl.h"
#include "log/Log.h"
#include "platform/WaitCursor.h"

using KV_ScenePane::ClipHeight;

namespace {

void LogClipHeight(const ClipHeight& estimate) {
    Log(LogLevel::Debug) << (estimate.found ? "clip height automatically calculated to "
                                            : "Error calculating clip height. Defaulting to ")
                         << estimate.height << "mm" << std::endl;
}

}  // namespace

ClipHeight CKV_ScenePaneCtrl::EstimateClipHeight() const {
    const std::vector<PointSpan> spans = SpansOf(m_vpMeshes);
    std::int64_t total = 0;
    for (const PointSpan& span : spans) total += span.count;
    return EstimateFromSpans(spans, ClipHeightStep(total));
}

// What can throw comes before the first change.
void CKV_ScenePaneCtrl::PlaceClipPlaneAtData() {
    const WaitCursor wait(*m_pWindow);
    const ClipHeight estimate = EstimateClipHeight();
    const Float3 middle = GetSceneBoundingBox().Center();
    LogClipHeight(estimate);
    m_clipHeight = estimate;
    m_clipPlane.SetNormal({0, 0, 1});
    Double3 center = m_clipPlane.GetCenter();
    for (std::size_t i = 0; i < 2; ++i)
        if (std::isfinite(middle[i])) center[i] = middle[i];
    center[2] = estimate.height;
    m_clipPlane.SetCenter(center);
}

// Places the clip plane at the data.
#include "control/ScenePaneCtrl.h"

KV_ScenePane::ClipHeight CKV_ScenePaneCtrl::EstimateClipHeight() const { return {}; }

void CKV_ScenePaneCtrl::PlaceClipPlaneAtData() { m_clipHeight = EstimateClipHeight(); }

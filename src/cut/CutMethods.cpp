// The methods that start and cancel a cut.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::StartSegmentation(std::int16_t /*mode*/) {}

void CKV_ScenePaneCtrl::EndSegmentation() {}

void CKV_ScenePaneCtrl::SetLassoCuttingColors(std::int32_t /*inside*/, float /*insideOpacity*/,
                                              std::int32_t /*outside*/, float /*outsideOpacity*/) {}

bool CKV_ScenePaneCtrl::CutWithLasso(KV_ScenePane::SegmentationMode /*mode*/,
                                     std::span<const KV_ScenePane::LassoPoint> /*points*/) {
    return false;
}

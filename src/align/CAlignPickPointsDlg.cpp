#include "align/CAlignPickPointsDlg.h"

#include "control/ScenePaneCtrl.h"

void CAlignPickPointsDlg::OnInteractionKey(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    CInteractionDlg::OnInteractionKey(nChar, nRepCnt, nFlags);
}
bool CAlignPickPointsDlg::PreTranslateKey(std::int32_t /*nChar*/) { return false; }
void CAlignPickPointsDlg::DrawInteraction() {}
void CAlignPickPointsDlg::OnObjectPicked(const std::shared_ptr<Mesh>& /*mesh*/, std::int32_t /*triangleIndex*/,
                                         const Float3& /*hitPoint*/, std::uint32_t /*flags*/) {}
KV_ScenePane::AlignmentPicks CAlignPickPointsDlg::GetPicks() const { return {}; }
void CAlignPickPointsDlg::OnInitDialog() {}
void CAlignPickPointsDlg::PostNcDestroy() { OnInteractionClosed(); }

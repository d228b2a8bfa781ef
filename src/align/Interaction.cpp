// Ends a running alignment, for the host and for the keys.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::FinishInteraction() {
    if (m_pInteractionDlg == nullptr) return;
    m_pInteractionDlg->Finish();
    m_nInteractionMode = ModeIdle;
}

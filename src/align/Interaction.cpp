// The running alignment as the host and the input see it.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::FinishInteraction() {
    if (m_pInteractionDlg == nullptr) return;
    m_pInteractionDlg->Finish();
    m_nInteractionMode = ModeIdle;
}

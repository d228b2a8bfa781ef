// What both alignments share: clicks, Escape, the end.
#include "align/CInteractionDlg.h"

#include "KV_ScenePane/Input.h"
#include "control/ScenePaneCtrl.h"

void CInteractionDlg::OnInteractionKey(std::int32_t nChar, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {
    if (nChar == KV_ScenePane::kKeyEscape) DestroyWindow();
}

void CInteractionDlg::OnClick(std::int32_t /*x*/, std::int32_t /*y*/, std::uint32_t /*flags*/) {}

void CInteractionDlg::OnInteractionClosed() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    if (control.m_pInteractionDlg == this) {
        control.m_pInteractionDlg = nullptr;
        control.m_nInteractionMode = ModeIdle;
    }
    std::erase_if(control.m_vInteractionDlgs, [this](const auto& dialog) { return dialog.get() == this; });
}

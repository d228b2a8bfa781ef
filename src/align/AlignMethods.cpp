// The methods that start and end an alignment.
#include <memory>

#include "align/CAlignInteractiveDlg.h"
#include "align/CAlignPickPointsDlg.h"
#include "control/ScenePaneCtrl.h"

namespace {

/// A dialog that is open already stays open without input.
template <typename Dialog>
void OpenDialog(CKV_ScenePaneCtrl& control, InteractionMode mode) {
    auto dialog = std::make_unique<Dialog>();
    dialog->m_pControl = &control;
    Dialog& opened = *dialog;
    control.m_vInteractionDlgs.push_back(std::move(dialog));
    control.m_pInteractionDlg = &opened;
    control.m_nInteractionMode = mode;
    opened.Create();  // last: a handler of the host may end it already
}

}  // namespace

void CKV_ScenePaneCtrl::AlignInteractive() { OpenDialog<CAlignInteractiveDlg>(*this, ModeAlignInteractive); }

void CKV_ScenePaneCtrl::AlignPickPoints() { OpenDialog<CAlignPickPointsDlg>(*this, ModeAlignPickPoints); }

void CKV_ScenePaneCtrl::FinishInteraction() {
    if (m_pInteractionDlg == nullptr) return;
    m_pInteractionDlg->Finish();
    // A handler of AlignmentDone may have started the next alignment.
    if (m_pInteractionDlg == nullptr) m_nInteractionMode = ModeIdle;
}

KV_ScenePane::AlignmentPicks CKV_ScenePaneCtrl::GetAlignmentPicks() const {
    return m_pInteractionDlg == nullptr ? KV_ScenePane::AlignmentPicks{} : m_pInteractionDlg->GetPicks();
}

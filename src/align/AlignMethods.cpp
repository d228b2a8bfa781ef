// The methods that start and end an alignment.
#include <memory>

#include "align/CAlignInteractiveDlg.h"
#include "align/CAlignPickPointsDlg.h"
#include "control/ScenePaneCtrl.h"

namespace {

/// A dialog that is open already goes on without input: mouse and keys go to the new one.
template <typename Dialog>
void OpenDialog(CKV_ScenePaneCtrl& control, InteractionMode mode) {
    auto dialog = std::make_unique<Dialog>();
    dialog->m_pControl = &control;
    dialog->m_nMode = mode;
    Dialog& opened = *dialog;
    control.m_vInteractionDlgs.push_back(std::move(dialog));
    control.m_pInteractionDlg = &opened;
    control.m_nInteractionMode = mode;
    control.m_nSavedInteractionMode = mode;  // for the release of a button that is held
    opened.Create();                         // last: the sink of the debugger output may end it already
}

}  // namespace

void CKV_ScenePaneCtrl::AlignInteractive() { OpenDialog<CAlignInteractiveDlg>(*this, ModeAlignInteractive); }

void CKV_ScenePaneCtrl::AlignPickPoints() { OpenDialog<CAlignPickPointsDlg>(*this, ModeAlignPickPoints); }

void CKV_ScenePaneCtrl::FinishInteraction() {
    const CInteractionDlg* const dialog = m_pInteractionDlg;
    if (dialog == nullptr) return;
    m_pInteractionDlg->Finish();
    // The handler of AlignmentDone may have started the next alignment.
    if (m_pInteractionDlg == nullptr || m_pInteractionDlg == dialog) LeaveAlignmentMode(*this);
}

KV_ScenePane::AlignmentPicks CKV_ScenePaneCtrl::GetAlignmentPicks() const {
    // In the handler of AlignmentDone the alignment is over.
    const bool runs = m_pInteractionDlg != nullptr && m_pInteractionDlg->HasWindow();
    return runs ? m_pInteractionDlg->GetPicks() : KV_ScenePane::AlignmentPicks{};
}

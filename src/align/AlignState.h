// The open alignment dialog, and the objects that an alignment may move.
#pragma once
#include <memory>
#include <vector>

#include "KV_ScenePane/Alignment.h"
#include "align/CInteractionDlg.h"
#include "geometry/Mesh.h"

/// Written by align/ and by the methods that fill the list of variable objects.
///
/// Invariants: m_pInteractionDlg is null or the last of m_vInteractionDlgs that has a window, or had one until its
/// AlignmentDone, which is firing. It is null, too, when that one has ended and only those are left that it was opened
/// over.
struct AlignState {
    CInteractionDlg* m_pInteractionDlg = nullptr;  ///< the one that receives input; owned by m_vInteractionDlgs
    /// Every dialog that has not ended yet, oldest first; a dialog without a window is about to remove itself. One that
    /// was opened over another one leaves that without input.
    std::vector<std::unique_ptr<CInteractionDlg>> m_vInteractionDlgs;
    std::vector<Mesh*> m_vpVariableObjects;            ///< not owned, may dangle: read it by LiveVariableObjects()
    std::vector<std::weak_ptr<Mesh>> m_vVariableRefs;  ///< of the entry of m_vpVariableObjects at the same index
    KV_ScenePane::AlignmentResult m_lastAlignment;     ///< of the last alignment by points
};

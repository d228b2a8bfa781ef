// The open alignment dialog, and the objects that an alignment may move.
#pragma once
#include <memory>
#include <vector>

#include "align/CInteractionDlg.h"
#include "geometry/Mesh.h"

/// Written by align/ and by the methods that fill the list of variable objects.
///
/// Invariant: m_pInteractionDlg is set exactly while an alignment runs; the dialog resets it when it ends.
struct AlignState {
    CInteractionDlg* m_pInteractionDlg = nullptr;      ///< not owned: the dialog deletes itself
    std::vector<Mesh*> m_vpVariableObjects;            ///< not owned, may dangle: read it by LiveVariableObjects()
    std::vector<std::weak_ptr<Mesh>> m_vVariableRefs;  ///< of the entry of m_vpVariableObjects at the same index
};

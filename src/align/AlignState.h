// The open alignment dialog, and the objects that an alignment may move.
#pragma once
#include <vector>

#include "align/CInteractionDlg.h"
#include "geometry/Mesh.h"

/// Written by align/ and by the methods that fill the list of variable objects.
///
/// Invariant: m_pInteractionDlg is set exactly while an alignment runs; the dialog resets it when it ends.
struct AlignState {
    CInteractionDlg* m_pInteractionDlg = nullptr;  ///< not owned: the dialog deletes itself
    std::vector<Mesh*>
        m_vpVariableObjects;  ///< not owned; dangling pointers after ClearData() until the host resets the list
};

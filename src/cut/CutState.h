// The lasso, the freehand session and the undo stack.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "KV_ScenePane/Cutting.h"
#include "cut/CutSession.h"
#include "geometry/Mesh.h"

/// The objects after a cut while CutMaskApplied runs: they are in no list yet, and its handler may recreate the
/// context.
struct PendingCut {
    std::vector<std::shared_ptr<Mesh>>& m_vpMeshes;
    PendingCut* m_pOuter;  ///< a handler may cut again
};

/// Written by cut/; the mouse handlers of view/ move the rubber band. ClearData() deletes the undo steps, the textures
/// and the freehand session; the interaction mode stays.
///
/// Invariants: a step of m_vUndoStack is a whole object list; the objects are shared with m_vpMeshes and never edited.
/// The points of a polygon stay until the next session is started, and so do textures that wait in m_pCutMask; a
/// freehand session may be left over when another one was started before its end.
struct CutState {
    using LassoPoint = KV_ScenePane::LassoPoint;
    std::int32_t m_nSegmentationKind = 0;  ///< 0, 1 or 2
    std::vector<LassoPoint> m_vLassoPoints;
    LassoPoint m_lassoCursor;         ///< end of the rubber band
    std::uint8_t m_bLassoCursor = 0;  ///< the window shows the lasso cursor
    bool m_bSessionEnds = false;      ///< the session of the mode is past its cut: it cannot end once more
    LassoTint m_lassoInside{0xFF, 0.5f};
    LassoTint m_lassoOutside{0, 0.0f};
    std::unique_ptr<CutMaskTextures> m_pCutMask;  ///< of a freehand session that waits for its first click
    std::unique_ptr<CutSession> m_pCutSession;    ///< running freehand session

    std::vector<std::vector<std::shared_ptr<Mesh>>> m_vUndoStack;
    PendingCut* m_pPendingCut = nullptr;                        ///< of the innermost event; not owned
    std::vector<KV_ScenePane::CutSaveEntry> m_vCutSaveResults;  ///< of the last SaveCuttingToPcms()
};

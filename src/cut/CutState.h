// The lasso, the freehand session and the undo stack.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "cut/CutSession.h"
#include "geometry/Mesh.h"

/// Written by cut/; the mouse handlers of view/ move the rubber band. ClearData() empties all of it.
///
/// Invariants: m_vLassoPoints is empty unless a lasso runs. A step of m_vUndoStack is a whole object list; the objects
/// are shared with m_vpMeshes and never edited. At most one of m_pCutMask and m_pCutSession owns the mask textures.
struct CutState {
    struct LassoPoint {
        double x = 0.0, y = 0.0;  ///< fractions of the window
    };
    struct LassoTint {
        std::uint32_t color = 0;  ///< 0x00BBGGRR
        float opacity = 0.0f;
    };
    std::int32_t m_nSegmentationKind = 0;  ///< 0, 1 or 2
    std::vector<LassoPoint> m_vLassoPoints;
    LassoPoint m_lassoCursor;         ///< end of the rubber band
    std::uint8_t m_bLassoCursor = 0;  ///< the window shows the lasso cursor
    LassoTint m_lassoInside{0xFF, 0.5f};
    LassoTint m_lassoOutside{0, 0.0f};
    std::unique_ptr<CutMaskTextures> m_pCutMask;  ///< kept for the next freehand session
    std::unique_ptr<CutSession> m_pCutSession;    ///< running freehand session

    std::vector<std::vector<std::shared_ptr<Mesh>>> m_vUndoStack;
};

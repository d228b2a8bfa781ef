// The end of a session: the cut itself, or its cancellation.
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include "base/DebugOutput.h"
#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "cut/ApplyCut.h"
#include "cut/PolygonRaster.h"
#include "markers/ReadDepth.h"
#include "platform/WaitCursor.h"

using KV_ScenePane::_DKV_ScenePaneEvents;

namespace {

/// Runs steps that call the host; what the first of them throws is kept until all have run.
class HostCalls {
public:
    template <typename Step>
    void Run(Step step) {
        try {
            step();
        } catch (...) {
            if (m_first == nullptr) m_first = std::current_exception();
        }
    }
    void Rethrow() const {
        if (m_first != nullptr) std::rethrow_exception(m_first);
    }

private:
    std::exception_ptr m_first;
};

/// What a session has cut.
struct CutResult {
    std::shared_ptr<const ACAD::CutMask> mask;
    std::vector<std::shared_ptr<Mesh>> meshes;  ///< all objects after the cut; empty when none has changed
    std::string failure;                        ///< why the cut failed, for the user; else empty
};

void DeleteCutSession(CKV_ScenePaneCtrl& control) {
    if (control.m_pCutSession == nullptr) return;
    control.MakeContextCurrent();  // in which its textures are deleted
    control.m_pCutSession.reset();
}

/// Back to the mode before the session. A session that a handler has started during the events of this one is over with
/// it.
void LeaveLassoMode(CKV_ScenePaneCtrl& control) {
    const bool startedByHandler = !std::exchange(control.m_bSessionEnds, false);
    const std::int32_t mode = std::exchange(control.m_nInteractionMode, RestingMode(control));
    const bool lassoCursor = HasLassoCursorAtRest(control);
    if (lassoCursor) control.ShowLassoCursor(true);
    if (mode == ModeMaskLasso) DeleteCutSession(control);  // clicks of a handler may have made one
    if (!startedByHandler || (mode != ModeLasso && mode != ModeMaskLasso)) return;
    control.ShowLassoCursor(lassoCursor);
    control.m_bToggleAnimationOnSpacebar = 1;
    DeleteCutSession(control);
}

/// What a cut leaves of an object that an alignment has dimmed is copied with the dimmed colour.
void PassCopiesToAlignments(CKV_ScenePaneCtrl& control, const std::vector<std::shared_ptr<Mesh>>& cut) {
    for (const auto& dialog : control.m_vInteractionDlgs)
        for (std::size_t i = 0; i < cut.size(); ++i)
            if (cut[i] != control.m_vpMeshes[i]) dialog->OnObjectCut(*control.m_vpMeshes[i], cut[i]);
}

/// The cut of the running session. No code of the host runs in it: texts wait until the session is deleted.
CutResult Cut(CKV_ScenePaneCtrl& control) {
    const DelayedDebugOutput delayed;
    const bool freehand = control.m_nInteractionMode == ModeMaskLasso;
    CutResult result;
    try {
        const WaitCursor wait(*control.m_pWindow);
        const ScopeExit sessionOver([&] {
            if (freehand) DeleteCutSession(control);
        });
        CutSource source = control.m_pCutSession.get();
        if (!freehand) {
            control.m_vLassoPoints.push_back(control.m_vLassoPoints.front());
            source = control.m_vLassoPoints;
        }
        result.mask = control.CreateCutMask(static_cast<std::uint32_t>(control.m_nSegmentationKind), source);
        if (result.mask != nullptr) result.meshes = ApplyCutMask(control.m_vpMeshes, result.mask);
        PassCopiesToAlignments(control, result.meshes);
    } catch (const std::exception& error) {
        result.failure = error.what();
    }
    return result;
}

/// A session that has changed nothing ends. @param failure  shown to the user unless it is empty
void EndUnchanged(CKV_ScenePaneCtrl& control, const std::string& failure) {
    HostCalls host;
    LeaveLassoMode(control);
    host.Run([&] { control.InvalidateControl(true); });
    host.Run([&] { control.Fire(&_DKV_ScenePaneEvents::SegmentationDone, std::int16_t{-1}); });
    // Last, when the session is over for the host: a message box runs an event loop.
    if (!failure.empty() && !control.m_bClosed)
        host.Run([&] { control.m_pWindow->ShowModalMessage(std::string("The cut has failed: ").append(failure)); });
    host.Rethrow();
}

void Abandon(CKV_ScenePaneCtrl& control) {
    HostCalls host;
    DeleteCutSession(control);
    LeaveLassoMode(control);
    host.Run([&] { control.RefreshControl(); });
    host.Run([&] { control.Fire(&_DKV_ScenePaneEvents::SegmentationDone, std::int16_t{-1}); });
    host.Rethrow();
}

/// The former list becomes an undo step and the result the list. @return why not, else empty
std::string TakeResult(CKV_ScenePaneCtrl& control, CutResult& result) {
    try {
        control.m_vUndoStack.push_back(control.m_vpMeshes);
    } catch (const std::bad_alloc& error) {
        control.MakeContextCurrent();  // an object that a handler has removed may only be in the result
        result.meshes.clear();
        return error.what();
    }
    control.m_vpMeshes = std::move(result.meshes);
    return {};
}

/// The handler of the first event may do anything: its changes of the list go on the undo step.
bool EndChanged(CKV_ScenePaneCtrl& control, CutResult result) {
    HostCalls host;
    const auto address = static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(result.mask.get()));
    PendingCut pending{result.meshes, control.m_pPendingCut};
    control.m_pPendingCut = &pending;
    host.Run([&] { control.Fire(&_DKV_ScenePaneEvents::CutMaskApplied, address); });
    control.m_pPendingCut = pending.m_pOuter;
    if (const std::string failure = TakeResult(control, result); !failure.empty()) {
        host.Run([&] { EndUnchanged(control, failure); });
        host.Rethrow();
        return false;
    }
    LeaveLassoMode(control);
    host.Run([&] { control.RefreshControl(); });
    host.Run([&] { control.Fire(&_DKV_ScenePaneEvents::SegmentationDone, control.GetNumObjects()); });
    host.Rethrow();
    return true;
}

}  // namespace

// A handler of the events at the end may call this again for the same session: it has no effect then.
bool CKV_ScenePaneCtrl::FinishSegmentation(bool cancel) {
    if (m_bSessionEnds) return false;
    m_bSessionEnds = true;
    ShowLassoCursor(false);
    m_bToggleAnimationOnSpacebar = 1;
    m_pFrozenImage.reset();
    const bool hasRegion = m_nInteractionMode == ModeMaskLasso ? m_pCutSession != nullptr : m_vLassoPoints.size() >= 2;
    if (cancel || !hasRegion) {
        Abandon(*this);
        return false;
    }
    CutResult result = Cut(*this);
    if (result.meshes.empty()) {
        result.mask.reset();
        EndUnchanged(*this, result.failure);
        return false;
    }
    return EndChanged(*this, std::move(result));
}

// Matrices and viewport are those that the last frame was drawn with: what the operator has seen.
std::shared_ptr<const ACAD::CutMask> CKV_ScenePaneCtrl::CreateCutMask(std::uint32_t kind, const CutSource& source) {
    if (!MakeContextCurrent()) return nullptr;
    const bool needsDepths = kind == ACAD::CutKindVisibleInside;
    const WindowSize size = m_pWindow->ClientSize();
    const bool sizeChanged = size.width != m_nWidth || size.height != m_nHeight;
    if (needsDepths && (sizeChanged || !m_bObjectDepths)) DrawObjectDepths();
    auto mask = std::make_shared<ACAD::CutMask>();
    mask->m_nKind = kind;
    mask->m_dModelView = m_viewMatrices.ModelView();
    mask->m_dProjection = m_viewMatrices.Projection();
    mask->m_nViewport = m_viewMatrices.Viewport();
    const auto* const session = std::get_if<const CutSession*>(&source);
    MaskBits bits = session != nullptr ? (*session)->CreateMaskBits(m_nWidth, m_nHeight)
                                       : ::CreateMaskBits(m_nWidth, m_nHeight, std::get<0>(source));
    mask->m_rcBounds = bits.m_rcBounds;
    mask->m_vBits = std::move(bits.m_vBits);
    if (needsDepths) {
        m_frameTarget.Bind();
        mask->m_vDepth = ReadDepths(m_nWidth, m_nHeight);
    }
    return mask;
}

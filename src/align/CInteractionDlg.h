// The dialog of a running alignment, without a visible window. It receives the mouse and the keys through the control.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "KV_ScenePane/Alignment.h"
#include "align/DimmedColors.h"
#include "geometry/Vector3.h"
#include "platform/Dialog.h"

class CKV_ScenePaneCtrl;
class Mesh;

/// The mode without a drag and a lasso: that of the running alignment, else idle.
[[nodiscard]] std::int32_t RestingMode(const CKV_ScenePaneCtrl& control);
/// Whether the cursor of that mode is the one of a lasso: while points are picked.
[[nodiscard]] bool HasLassoCursorAtRest(const CKV_ScenePaneCtrl& control);
/// Back to idle at the end of an alignment. A lasso that was started meanwhile goes on.
void LeaveAlignmentMode(CKV_ScenePaneCtrl& control);

/// The end of the window is the end of the alignment: FinishInteraction(), Escape and a closing of the window all
/// destroy it, and none of them takes a movement back.
class CInteractionDlg : public CDialog {
public:
    /// Ends the alignment. The object deletes itself, so nothing of it may be used afterwards.
    virtual void Finish() { DestroyWindow(); }
    /// Every key press, after the control has handled it.
    virtual void OnInteractionKey(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags);
    // ---- drags, in pixels of the drawing area, y downward
    virtual void OnRotateDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnMoveDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnRotateEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnMoveEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
    /// The next drag call begins a drag: the release of the one under way has been lost, or will be.
    virtual void ForgetDrag() {}
    /// Draws over the scene; the rendering context is current.
    virtual void DrawInteraction() {}
    /// A click has hit an object. @param triangleIndex  negative for none. @param hitPoint  three floats, world frame
    virtual void OnObjectPicked(const std::shared_ptr<Mesh>& /*mesh*/, std::int32_t /*triangleIndex*/,
                                const Float3& /*hitPoint*/, std::uint32_t /*flags*/) {}
    /// The mouse has moved the view or the clip plane up to this pixel: the next step of a drag of the objects that is
    /// under way starts here.
    virtual void OnViewDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    /// Whether the next move of the mouse may begin a drag.
    [[nodiscard]] virtual bool AwaitsDrag() const { return false; }
    [[nodiscard]] virtual KV_ScenePane::AlignmentPicks GetPicks() const { return {}; }

    /// A click of the left button: passes the nearest hit of m_vpPickableObjects to OnObjectPicked().
    void OnClick(std::int32_t x, std::int32_t y, std::uint32_t flags);

    /// A button that is held drags nothing any more: its release may find a mode in which it ends no drag.
    void AbandonMouseDrag();

    /// A cut replaces a dimmed object by @p copy, which has the dimmed colour.
    void OnObjectCut(const Mesh& original, const std::shared_ptr<Mesh>& copy) { m_savedColors.AddCopy(original, copy); }

    CKV_ScenePaneCtrl* m_pControl = nullptr;  ///< not owned; set before Create()
    std::int32_t m_nMode = 0;                 ///< InteractionMode while it runs
    bool m_bEndsWithWindow = false;           ///< the end of the control's window, which is under way, ends it
    std::vector<std::weak_ptr<Mesh>> m_vpPickableObjects;  ///< objects that clicks may hit

protected:
    static constexpr int kFixedTag = -1, kVariableTag = 0;  ///< of Mesh::m_iObjectTag

    /// Tags all objects of the scene as fixed, then these as variable.
    void MarkObjects(const std::vector<std::shared_ptr<Mesh>>& moving);
    /// The last step of PostNcDestroy(): the control forgets the dialog, which is deleted. When the control has another
    /// dialog open by now, that one and its mode stay.
    void OnInteractionClosed();

    DimmedColors m_savedColors;  ///< of the objects that cannot be moved or picked at the moment
};

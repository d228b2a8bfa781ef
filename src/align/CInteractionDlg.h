// The dialog of a running alignment, without a visible window. It receives the mouse and the keys through the control.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "KV_ScenePane/Alignment.h"
#include "geometry/Vector3.h"
#include "platform/Dialog.h"

class CKV_ScenePaneCtrl;
class Mesh;

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
    /// Draws over the scene; the rendering context is current.
    virtual void DrawInteraction() {}
    /// A click has hit an object. @param triangleIndex  negative for none. @param hitPoint  three floats, world frame
    virtual void OnObjectPicked(const std::shared_ptr<Mesh>& /*mesh*/, std::int32_t /*triangleIndex*/,
                                const Float3& /*hitPoint*/, std::uint32_t /*flags*/) {}
    /// The running drag has moved the view up to this pixel, in place of the objects: the next step starts here.
    virtual void OnViewDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    [[nodiscard]] virtual KV_ScenePane::AlignmentPicks GetPicks() const { return {}; }

    /// A click of the left button: passes the nearest hit of m_vpPickableObjects to OnObjectPicked().
    void OnClick(std::int32_t x, std::int32_t y, std::uint32_t flags);

    CKV_ScenePaneCtrl* m_pControl = nullptr;               ///< not owned; set before Create()
    std::vector<std::weak_ptr<Mesh>> m_vpPickableObjects;  ///< objects that clicks may hit

protected:
    /// The last step of PostNcDestroy(): the control forgets the dialog, which is deleted. When the control has another
    /// dialog open by now, that one and its mode stay.
    void OnInteractionClosed();
};

// The events of the viewer.
#pragma once
#include <cstdint>

#include "KV_ScenePane/Types.h"

namespace KV_ScenePane {

/// A host derives from this, overrides what it wants to hear, and connects it (ScenePane.h). Events fire synchronously
/// inside the method or input that caused them; a handler may call back into the control.
class _DKV_ScenePaneEvents {
public:
    /// By the platform
    virtual void ReadyStateChange() {}
    /// A view direction was picked; no input leads here yet
    virtual void SelectViewDirection(float /*px*/, float /*py*/, float /*pz*/, float /*vx*/, float /*vy*/,
                                     float /*vz*/) {}
    /// The user picks a point on an object, in pick modes 2, 3 and 5. The point is in the world frame; shiftModifiers
    /// are the mouse flags (Input.h)
    virtual void SelectObjCoords(std::int16_t /*idx*/, float /*px*/, float /*py*/, float /*pz*/,
                                 std::int32_t /*shiftModifiers*/, std::int32_t /*mouseX*/, std::int32_t /*mouseY*/) {}
    /// A lasso or cut ended
    virtual void SegmentationDone(std::int16_t /*numObj*/) {}
    /// The view moved or was set while m_bTracingMode is on
    virtual void ViewDirectionChanged(float /*vx*/, float /*vy*/, float /*vz*/) {}
    /// An alignment dialog's window is finally gone
    virtual void AlignmentDone() {}
    /// By CreateNeedle, CreateNeedles or the mouse
    virtual void NeedleCreated(std::int32_t /*id*/) {}
    /// By SelectNeedle or the mouse
    virtual void NeedleSelected(std::int32_t /*id*/) {}
    /// By DeleteNeedle, DeleteNeedles, SetMaxNumberOfNeedles or the keyboard
    virtual void NeedleDeleted(std::int32_t /*id*/) {}
    /// By the deselecting methods, by SetNeedlePickingMode off, and before a deletion of a selected needle
    virtual void NeedleDeselected(std::int32_t /*id*/) {}
    /// Every key press, before the viewer acts on it (codes in Input.h)
    virtual void CustomKeyDown(std::int32_t /*nChar*/, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {}
    /// The sphere list changed
    virtual void PickPointCountChanged(std::int32_t /*newCount*/) {}
    /// A cut mask was applied; addr is the address of the ACAD::CutMask
    virtual void CutMaskApplied(std::int64_t /*addr*/) {}

protected:
    ~_DKV_ScenePaneEvents() = default;
};

}  // namespace KV_ScenePane

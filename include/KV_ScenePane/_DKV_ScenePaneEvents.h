// The 13 events of the viewer.
#pragma once
#include <cstdint>

#include "KV_ScenePane/Types.h"

namespace KV_ScenePane {

/// Events fire synchronously inside the method or the input that caused them, on the viewer's thread. A handler may
/// call methods of the viewer and destroy it. Points and directions are in the world frame.
///
/// In C++ a host derives from this class, overrides the events that it needs, and connects an object with
/// ScenePane::Connect(). Bodies are empty by default.
class _DKV_ScenePaneEvents {
public:
    /// The property ReadyState has changed: to 0 in the ProcessEvents() after the host destroyed the window or
    /// terminated its display, or when RecreateOpenglContext() has failed; to 4 when a later one succeeds. A recreation
    /// of a window that is there fires nothing when it succeeds, and the end of the viewer fires nothing.
    virtual void ReadyStateChange() {}
    /// A view direction was picked in pick mode 1: the surface point on the view axis and the unit direction to the
    /// viewer. No input of this version fires it.
    virtual void SelectViewDirection(float /*px*/, float /*py*/, float /*pz*/, float /*vx*/, float /*vy*/,
                                     float /*vz*/) {}
    /// The user picked a point on an object, in pick modes 2, 3 and 5.
    /// @param idx             index of the object
    /// @param px, py, pz      the surface point
    /// @param shiftModifiers  mouse flags of Input.h
    /// @param mouseX, mouseY  pixels of the drawing area, y downward
    virtual void SelectObjCoords(std::int16_t /*idx*/, float /*px*/, float /*py*/, float /*pz*/,
                                 std::int32_t /*shiftModifiers*/, std::int32_t /*mouseX*/, std::int32_t /*mouseY*/) {}
    /// A session of a cut ended, by a cut or cancelled: once per session. A session that a handler of CutMaskApplied
    /// started and did not end has ended with it.
    /// @param numObj  objects in the list afterwards; -1 when nothing was changed
    virtual void SegmentationDone(std::int16_t /*numObj*/) {}
    /// The view moved or was set, after TracingMode(1); once per step of a drag. The unit direction to the viewer.
    virtual void ViewDirectionChanged(float /*vx*/, float /*vy*/, float /*vz*/) {}
    /// An alignment has ended, whether anything has moved or not: once per alignment. The handler may start the next
    /// one. The end of the viewer fires nothing.
    virtual void AlignmentDone() {}
    /// A needle was created by CreateNeedle(), CreateNeedles() or the mouse. -1 after a double click while the
    /// list is full: no needle was created, and the double click has its other effects.
    virtual void NeedleCreated(std::int32_t /*id*/) {}
    /// A needle was selected by SelectNeedle() or the mouse, after all others were deselected. Fired again for one that
    /// was selected already.
    virtual void NeedleSelected(std::int32_t /*id*/) {}
    /// A needle was deleted by DeleteNeedle(), DeleteNeedles(), SetMaxNumberOfNeedles() or the keyboard. It comes
    /// without NeedleCreated for one that a handler deletes between a double click and that event.
    virtual void NeedleDeleted(std::int32_t /*id*/) {}
    /// A needle was deselected by a method, by mouse or key, by SetNeedlePickingMode() off, or before the deletion of a
    /// selected needle, except for one by SetMaxNumberOfNeedles().
    virtual void NeedleDeselected(std::int32_t /*id*/) {}
    /// Every key press, before the viewer acts on it. Codes, counts and flags as in KeyInput (Input.h).
    virtual void CustomKeyDown(std::int32_t /*nChar*/, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {}
    /// A pick-point sphere was added or removed, or the list was emptied, also one that was empty before.
    /// @param newCount  number of spheres afterwards; 0 after SetPickMode() and ClearPickPointSpheres()
    virtual void PickPointCountChanged(std::int32_t /*newCount*/) {}
    /// A cut has its result: the list of objects is still the former one and is replaced afterwards, also when the
    /// handler throws. What the handler changes in the list goes on the undo step of the cut and is replaced, too.
    /// @param addr  address of the ACAD::CutMask (CutMask.h), owned by the viewer
    virtual void CutMaskApplied(std::int64_t /*addr*/) {}

protected:
    ~_DKV_ScenePaneEvents() = default;
};

}  // namespace KV_ScenePane

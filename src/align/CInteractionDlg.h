// The dialog of a running alignment. It receives the mouse and the keys through the control.
#pragma once
#include <cstdint>

class CInteractionDlg {
public:
    virtual ~CInteractionDlg() = default;
    /// Ends the alignment: the object resets the control's pointer to it and deletes itself.
    virtual void Finish() = 0;
    /// Every key press, after the control has handled it.
    virtual void OnInteractionKey(std::int32_t /*nChar*/, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {}
    // ---- drags, in pixels of the drawing area, y downward
    virtual void OnRotateDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnMoveDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnRotateEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnMoveEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
    /// Draws over the scene; the rendering context is current.
    virtual void DrawInteraction() {}

    /// A click of the left button while points are picked. No dialog uses it yet.
    void OnClick(std::int32_t /*x*/, std::int32_t /*y*/, std::uint32_t /*flags*/) {}
};

// The hidden window object that owns a running alignment. The mouse and the keys reach it through the control.
#pragma once
#include <cstdint>

class CInteractionDlg {
public:
    virtual ~CInteractionDlg() = default;
    /// Ends the interaction; the object forgets itself from the control.
    virtual void Finish() = 0;
    /// Every key press, behind the control's own answer to it.
    virtual void OnInteractionKey(std::int32_t /*nChar*/, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {}
    // ---- drags, in pixels of the drawing area
    virtual void OnRotateDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnMoveDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnRotateEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
    virtual void OnMoveEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
    /// Draws over the scene; the rendering context is current.
    virtual void DrawInteraction() {}

    /// A click of the left button while points are picked. No dialog looks for them yet.
    void OnClick(std::int32_t /*x*/, std::int32_t /*y*/, std::uint32_t /*flags*/) {}
};

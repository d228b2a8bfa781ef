// Clicks of the right button, which a viewer does not report: for it every press begins a drag.
#pragma once
#include <QPoint>
#include <optional>

#include "KV_ScenePane/Input.h"

/// Recognises a press and a release of the right button at one place, without another button. A drag is none, also when
/// it returns to its start.
class RightClickWatch {
public:
    /// Must see every mouse input of the viewer.
    /// @param slack  pixels of the drawing area by which the pointer may move during a click
    /// @return where the button was pressed, pixels of the drawing area, when this input completes a click
    [[nodiscard]] std::optional<QPoint> See(const KV_ScenePane::MouseInput& input, double slack);

private:
    std::optional<QPoint> m_press;  // of a click that may be under way
};

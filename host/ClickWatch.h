// Clicks, which a viewer does not report: for it every press begins a drag.
#pragma once
#include <QPoint>
#include <optional>

#include "KV_ScenePane/Input.h"

/// Recognises a press and a release of one button at one place, without another button. A drag is none, also when it
/// returns to its start, and neither is the second press of a double click.
class ClickWatch {
public:
    enum class Button { Left, Right };

    explicit ClickWatch(Button button) : m_button(button) {}

    /// Must see every mouse input of the viewer.
    /// @param slack  pixels of the drawing area by which the pointer may move during a click
    /// @return where the button was pressed, pixels of the drawing area, when this input completes a click
    [[nodiscard]] std::optional<QPoint> See(const KV_ScenePane::MouseInput& input, double slack);
    /// The release of a press so far completes no click.
    void Reset() { m_press.reset(); }

private:
    Button m_button;
    std::optional<QPoint> m_press;  // of a click that may be under way
};

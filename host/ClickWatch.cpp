// The state between the press and the release is the point of the press.
#include "ClickWatch.h"

#include <cmath>
#include <utility>

using Kind = KV_ScenePane::MouseInput::Kind;

std::optional<QPoint> ClickWatch::See(const KV_ScenePane::MouseInput& input, double slack) {
    const QPoint point(input.x, input.y);
    const auto isNear = [&] { return std::hypot(point.x() - m_press->x(), point.y() - m_press->y()) <= slack; };
    const bool isLeft = m_button == Button::Left;
    const std::uint32_t others =
        KV_ScenePane::kMouseMiddle | (isLeft ? KV_ScenePane::kMouseRight : KV_ScenePane::kMouseLeft);
    if (input.kind == (isLeft ? Kind::LeftDown : Kind::RightDown)) {
        m_press.reset();
        if ((input.flags & others) == 0) m_press = point;
        return std::nullopt;
    }
    if (input.kind == (isLeft ? Kind::LeftUp : Kind::RightUp)) {
        if (m_press && !isNear()) m_press.reset();
        return std::exchange(m_press, std::nullopt);
    }
    if (input.kind == Kind::Move) {
        if (m_press && !isNear()) m_press.reset();
    } else if (input.kind != Kind::Wheel) {  // another button, or a double click
        m_press.reset();
    }
    return std::nullopt;
}

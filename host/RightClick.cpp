// The state between the press and the release is the point of the press.
#include "RightClick.h"

#include <cmath>
#include <utility>

using Kind = KV_ScenePane::MouseInput::Kind;

std::optional<QPoint> RightClickWatch::See(const KV_ScenePane::MouseInput& input, double slack) {
    const QPoint point(input.x, input.y);
    const auto isNear = [&] { return std::hypot(point.x() - m_press->x(), point.y() - m_press->y()) <= slack; };
    switch (input.kind) {
        case Kind::RightDown:
            m_press.reset();
            if ((input.flags & (KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseMiddle)) == 0) m_press = point;
            return std::nullopt;
        case Kind::Move:
            if (m_press && !isNear()) m_press.reset();
            return std::nullopt;
        case Kind::RightUp:
            if (m_press && !isNear()) m_press.reset();
            return std::exchange(m_press, std::nullopt);
        case Kind::Wheel:
            return std::nullopt;
        default:  // another button
            m_press.reset();
            return std::nullopt;
    }
}

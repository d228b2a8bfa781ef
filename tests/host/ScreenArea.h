// Places on the screen of an X server.
#pragma once

/// Pixels of the screen, from its upper left corner.
struct ScreenPoint {
    int x = 0, y = 0;
    bool operator==(const ScreenPoint&) const = default;
};
struct ScreenArea {
    int x = 0, y = 0, width = 0, height = 0;
    [[nodiscard]] ScreenPoint Middle() const { return {x + width / 2, y + height / 2}; }
    [[nodiscard]] bool Holds(const ScreenArea& inner) const {
        return inner.x >= x && inner.y >= y && inner.x + inner.width <= x + width &&
               inner.y + inner.height <= y + height;
    }
    bool operator==(const ScreenArea&) const = default;
};

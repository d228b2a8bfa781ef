// What the tables of presses share: a row, and what must be there after its press. The handlers are called as the
// dispatch calls them.
#pragma once
#include "view/InputHelp.h"

inline constexpr std::int32_t kX = 300, kY = 200;  // within the inscribed circle

enum class Drag { None, Moving };

struct Press {
    const char* name;
    Before before;
    std::uint32_t flags;
    // ---- after
    std::int32_t mode;
    std::int32_t saved;  ///< kNoMode: not written
    bool captured;
    Drag drag;
    Calls calls{};  ///< that the dialog hears
};
inline void PrintTo(const Press& row, std::ostream* out) { *out << row.name; }

inline void ExpectAfter(const InputControl& c, const Press& row) {
    EXPECT_EQ(c->m_nInteractionMode, row.mode);
    EXPECT_EQ(c->m_nSavedInteractionMode, row.saved);
    EXPECT_EQ(c.window->HasCapture(), row.captured);
    EXPECT_EQ(c->m_bAnimationRunning, 0) << "every press stops it";
    if (row.drag == Drag::Moving) {
        EXPECT_TRUE(c.BeganDragAt(kX, kY));
        EXPECT_EQ(c->m_bMoving, 1);
        EXPECT_EQ(c->m_bRollRotation, 0) << "the press was within the circle";
    } else {
        EXPECT_TRUE(c.KeptNoPoint());
        EXPECT_EQ(c->m_bMoving, 0);
    }
    EXPECT_EQ(c.dialog.calls, row.calls);
    EXPECT_TRUE(c.events.events.empty());
}

inline auto RowName() {
    return [](const auto& row) { return std::string(row.param.name); };
}

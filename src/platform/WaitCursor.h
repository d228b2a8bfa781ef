// The wait cursor of a lengthy operation.
#pragma once
#include "platform/PaneWindow.h"

/// Shows the wait cursor from its construction to its destruction, also when the operation throws.
class WaitCursor {
public:
    explicit WaitCursor(PaneWindow& window) : m_window(window) { m_window.BeginWaitCursor(); }
    ~WaitCursor() { m_window.EndWaitCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    PaneWindow& m_window;
};

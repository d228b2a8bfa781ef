// The window of the real program, seen from another process, as a window manager sees it.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

struct ScreenRect {
    int x = 0, y = 0, width = 0, height = 0;
    /// Whether all of @p inner is in this one.
    [[nodiscard]] bool Contains(const ScreenRect& inner) const {
        return inner.x >= x && inner.y >= y && inner.x + inner.width <= x + width &&
               inner.y + inner.height <= y + height;
    }
};

/// Starts scenepane on a display and watches its main window. Ends it with itself.
class ProgramWindow {
public:
    /// @param settings     folder of its settings
    /// @param arguments    of the program
    /// @param environment  as for ChildProcess; DISPLAY, XDG_CONFIG_HOME and no QT_QPA_PLATFORM unless they are set
    /// here
    ProgramWindow(const std::string& display, const std::string& settings, std::vector<std::string> arguments = {},
                  std::map<std::string, std::string> environment = {});

    /// Waits until the window is on the screen and its viewer has a window in it. False when the program ends before.
    [[nodiscard]] bool IsShown();
    /// Whole, with the frame that a window manager has added; pixels of the screen.
    [[nodiscard]] ScreenRect Frame() const;
    /// What the window manager leaves to windows.
    [[nodiscard]] ScreenRect WorkArea() const;
    /// Without the frame.
    [[nodiscard]] ScreenRect Inner() const;
    /// Of the viewer's window.
    [[nodiscard]] ScreenRect Viewer() const;
    /// Asks the window to close, as its frame does, and waits for the end of the program. @return its exit status; -1
    /// when it does not end
    [[nodiscard]] int Close();
    [[nodiscard]] ChildProcess& Process() { return m_process; }

private:
    const std::string m_display;
    ChildProcess m_process;
    std::uintptr_t m_window = 0;
};

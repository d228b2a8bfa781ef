// The window of the real program, seen from another process, as a window manager sees it.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "host/ScreenArea.h"
#include "support/ChildProcess.h"

/// Starts scenepane on a display and watches its main window. Ends it with itself.
class ProgramWindow {
public:
    /// @param settings     folder of its settings
    /// @param arguments    of the program
    /// @param environment  as for ChildProcess; unless it has them, DISPLAY and XDG_CONFIG_HOME are set, and
    ///                     QT_QPA_PLATFORM and WAYLAND_DISPLAY are removed
    ProgramWindow(const std::string& display, const std::string& settings, std::vector<std::string> arguments = {},
                  std::map<std::string, std::string> environment = {});

    /// Waits until the window is on the screen and its viewer has a window in it. False when the program ends before.
    [[nodiscard]] bool IsShown();
    /// Whole, with the frame that a window manager has added; pixels of the screen.
    [[nodiscard]] ScreenArea Frame() const;
    /// What the window manager leaves to windows; the screen without one.
    [[nodiscard]] ScreenArea WorkingArea() const;
    /// Without the frame.
    [[nodiscard]] ScreenArea Inner() const;
    /// Of the viewer's window.
    [[nodiscard]] ScreenArea Viewer() const;
    /// Asks the window to close, as its frame does, and waits for the end of the program. @return its exit status; -1
    /// when it does not end
    [[nodiscard]] int Close();
    [[nodiscard]] ChildProcess& Process() { return m_process; }

private:
    const std::string m_display;
    ChildProcess m_process;
    std::uintptr_t m_window = 0;
};

// A window manager on the X server of a test: windows have frames, the desktop has a working area, windows are
// activated.
#pragma once
#include <memory>
#include <string>

#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

/// Openbox with the settings that Debian installs. Ends with the object; the windows lose their frames then.
class WindowManager {
public:
    /// Returns when the window manager handles windows.
    /// @param display  in the form of $DISPLAY; empty: that of $DISPLAY
    /// @throws std::runtime_error when openbox is not installed or does not start
    explicit WindowManager(const std::string& display = "");

private:
    const ScratchFolder m_settings;  // those of the user stay out of the tests
    std::unique_ptr<ChildProcess> m_pProcess;
};

// In a file without Qt, because names of Xlib and Qt collide.
#include "host/WindowManager.h"

#include <cstdlib>
#include <map>
#include <stdexcept>

#include "host/XWindows.h"
#include "support/Wait.h"

namespace {

/// Whether a window manager has registered itself on the display: it sets this property when it is ready.
bool IsManaged(Display* display) {
    const XProperty check = ReadProperty(display, DefaultRootWindow(display), "_NET_SUPPORTING_WM_CHECK");
    return check.type == XA_WINDOW && check.words.size() == 1;
}

}  // namespace

WindowManager::WindowManager(const std::string& display) {
    const char* const fromEnvironment = std::getenv("DISPLAY");
    const std::string name = !display.empty() || fromEnvironment == nullptr ? display : fromEnvironment;
    const XConnection connection = OpenXConnection(name);
    m_pProcess = std::make_unique<ChildProcess>(
        std::vector<std::string>{"openbox", "--sm-disable"},
        std::map<std::string, std::string>{{"DISPLAY", name}, {"XDG_CONFIG_HOME", m_settings.Path().string()}});
    const bool isReady = WaitUntil([&] { return IsManaged(connection.get()) || !m_pProcess->IsRunning(); });
    if (!isReady || !m_pProcess->IsRunning()) throw std::runtime_error("openbox does not start; is it installed?");
}

// In a file without Qt, because names of Xlib and Qt collide.
#include "host/WindowManager.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <cstdlib>
#include <map>
#include <stdexcept>

#include "support/Wait.h"

namespace {

/// Whether a window manager has registered itself on the display: it sets this property when it is ready.
bool IsManaged(Display* display) {
    const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* value = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), check, 0, 1, False, XA_WINDOW, &type, &format, &count,
                       &left, &value);
    if (value != nullptr) XFree(value);
    return type == XA_WINDOW && count == 1;
}

}  // namespace

WindowManager::WindowManager(const std::string& display) {
    const char* const fromEnvironment = std::getenv("DISPLAY");
    const std::string name = !display.empty() || fromEnvironment == nullptr ? display : fromEnvironment;
    Display* const connection = XOpenDisplay(name.c_str());
    if (connection == nullptr) throw std::runtime_error("the X display " + name + " cannot be opened");
    m_pProcess = std::make_unique<ChildProcess>(
        std::vector<std::string>{"openbox", "--sm-disable"},
        std::map<std::string, std::string>{{"DISPLAY", name}, {"XDG_CONFIG_HOME", m_settings.Path().string()}});
    const bool isReady = WaitUntil([&] { return IsManaged(connection) || !m_pProcess->IsRunning(); });
    XCloseDisplay(connection);
    if (!isReady || !m_pProcess->IsRunning()) throw std::runtime_error("openbox does not start; is it installed?");
}
